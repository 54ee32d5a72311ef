// Hints by status, transport, and what had come.
#include "console/hint.h"

#include <string_view>

#include "console/port_hint.h"

namespace kesp::console {
namespace {

constexpr int kUsualTimeoutMs = 3000;

// "17 bytes", "1 byte"
std::string Counted(std::int64_t bytes) {
  return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
}

std::string SilenceHint(const LibraryError& error, const TcpAddress& address) {
  if (!error.received) return "";
  if (*error.received == 0)
    return "Nothing was received: the instrument may not know the command, or take longer (--timeout).";
  const std::string end = address.eos.empty() ? "13" : std::to_string(address.eos.back());
  return Counted(*error.received) + " came without the end character " + end +
         ": \",eos=CODE\" behind the address names another one, \",any\" takes what comes.";
}

std::string SilenceHint(const LibraryError& error, const std::string& port) {
  if (!error.received) return "";
  if (*error.received == 0)
    return "Nothing was received: \"kesp detect " + port + "\" looks for the bit rate.";
  return Counted(*error.received) + " came without a line feed, the last were " + error.last_received +
         ": \"kesp detect " + port + "\" tells whether the bit rate is right.";
}

std::string TimeoutHint(const LibraryError& error, const Address& address) {
  if (const auto* tcp = std::get_if<TcpAddress>(&address)) return SilenceHint(error, *tcp);
  if (const auto* com = std::get_if<ComAddress>(&address))
    return SilenceHint(error, TextOf(ComAddress{.port = com->port}));
  if (const auto* usb = std::get_if<UsbAddress>(&address))
    return SilenceHint(error, TextOf(UsbAddress{.serial = usb->serial}));
  return "";
}

}  // namespace

std::string HintFor(const LibraryError& error, const Address& address) {
  const bool is_gpib = std::holds_alternative<GpibAddress>(address);
  if (error.status() == "cfrTimeout" && error.what() != std::string_view("Port already open"))
    return TimeoutHint(error, address);
  if (error.status() == "cfrInitializeFailed" && is_gpib)
    return "\"kesp doctor\" tells which driver was looked for, and what was found.";
  if (error.status() == "cfrWriteFailed" && is_gpib)
    return "\"kesp detect gpib:\" looks for the first device that answers.";
  if (error.status() == "cfrInitializeFailed" && std::holds_alternative<TcpAddress>(address))
    return "Nobody listens at that address and port, or a firewall is between: \"kesp discover\" lists who "
           "answers.";
  return PortHint(error);
}

std::string LoneReturnHint(const Address& address, std::optional<int> timeout_ms, double seconds) {
  const auto* com = std::get_if<ComAddress>(&address);
  if (com == nullptr || com->line.cr || com->line.modem || com->line.precidia) return "";
  if (seconds * 1000 < timeout_ms.value_or(kUsualTimeoutMs)) return "";
  return "no line feed came, a lone carriage return ended the data when the time was up: add \",cr\" to the "
         "address";
}

}  // namespace kesp::console
