// A range of IPv4 addresses, for which one host stands.
#include "simulator/address_range.h"

namespace kesp::simulator {
namespace {

constexpr std::size_t kMostAddresses = 65'536;

}  // namespace

asio::ip::address_v4 AddressRange::At(std::size_t index) const {
  return asio::ip::address_v4(first.to_uint() + static_cast<asio::ip::address_v4::uint_type>(index % size()));
}

std::string AddressRange::Text() const {
  return first == last ? first.to_string() : first.to_string() + "-" + last.to_string();
}

std::optional<AddressRange> ReadAddressRange(std::string_view text) {
  const std::size_t dash = text.find('-');
  const std::string_view end = dash == std::string_view::npos ? text : text.substr(dash + 1);
  asio::error_code bad_first;
  asio::error_code bad_last;
  const AddressRange range{asio::ip::make_address_v4(std::string(text.substr(0, dash)), bad_first),
                           asio::ip::make_address_v4(std::string(end), bad_last)};
  if (bad_first || bad_last || range.last < range.first || range.size() > kMostAddresses) return std::nullopt;
  return range;
}

}  // namespace kesp::simulator
