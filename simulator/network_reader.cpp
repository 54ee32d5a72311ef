// Reads a network: instruments with their addresses.
#include "simulator/network_reader.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

#include "simulator/personality_reader.h"

namespace kesp::simulator {
namespace {

constexpr Range kPort{1, 65'535};
constexpr int kParts = 4;

// Takes a number up to 255 without leading zeros, if the text begins with one.
bool TakePart(std::string_view& text) {
  unsigned number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  const std::string written = std::to_string(number);
  if (number > 255 || !text.starts_with(written)) return false;
  text.remove_prefix(written.size());
  return true;
}

// Asio would bring the system's sockets into the GPIB driver, which reads descriptions, too.
bool IsAddress(std::string_view text) {
  for (int part = 0; part < kParts; ++part) {
    if (part > 0 && !text.starts_with('.')) return false;
    if (part > 0) text.remove_prefix(1);
    if (!TakePart(text)) return false;
  }
  return text.empty();
}

TcpAddress ReadAddress(const Entry& entry) {
  Fields fields(entry);
  TcpAddress address;
  if (const std::optional<Entry> host = fields.Find("host")) {
    address.host = host->Text();
    if (!IsAddress(address.host)) host->Wrong("must be an IPv4 address such as 127.0.0.2");
  }
  if (const std::optional<Entry> port = fields.Need("port"))
    address.port = static_cast<std::uint16_t>(port->Whole(kPort));
  fields.Finish();
  return address;
}

NetworkDevice ReadNetworkDevice(const Entry& entry) {
  Fields fields(entry);
  NetworkDevice device;
  if (const std::optional<Entry> address = fields.Need("tcp")) device.address = ReadAddress(*address);
  if (const std::optional<Entry> other = fields.Find("gpib"))
    other->Wrong("is an address on a bus, which goes without \"tcp\"");
  device.personality = ReadPersonality(fields, Place::kOwnLine);
  if (!fields.Has("discovery")) device.personality.discovery = DiscoveryAnswer();
  fields.Finish();
  return device;
}

}  // namespace

bool IsNetwork(const Entry& entry) {
  const std::optional<Entry> list = entry.Member("devices");
  const std::vector<Entry> devices = list ? list->Items() : std::vector<Entry>();
  return std::any_of(devices.begin(), devices.end(),
                     [](const Entry& device) { return device.Member("tcp").has_value(); });
}

NetworkDescription ReadNetwork(const Entry& entry) {
  Fields fields(entry);
  NetworkDescription network;
  for (const Entry& each : fields.List("devices")) {
    if (each.Member("device")) {
      each.Wrong("is a device at a serial line; on a network there are instruments only");
      continue;
    }
    NetworkDevice device = ReadNetworkDevice(each);
    const auto stands_there = [&device](const auto& other) { return other.address == device.address; };
    if (std::any_of(network.devices.begin(), network.devices.end(), stands_there))
      each.Wrong("has the address of another device");
    network.devices.push_back(std::move(device));
  }
  fields.Finish();
  return network;
}

}  // namespace kesp::simulator
