// Hints by status, transport, and what had come.
#include "console/hint.h"

#include <string_view>

#include "console/counted.h"
#include "console/port_hint.h"

namespace kesp::console {
namespace {

constexpr int kUsualTimeoutMs = 3000;

std::string SilenceHint(const LibraryError& error, const TcpAddress& address) {
  if (*error.received == 0)
    return "Nothing was received: the instrument may not know the command, or take longer (--timeout).";
  const std::string end = address.eos.empty() ? "13" : std::to_string(address.eos.back());
  return Counted(*error.received, "byte") + " came without the end character " + end +
         ": \",eos=CODE\" behind the address names another one, \",any\" takes what comes.";
}

// What stands behind the port, and the port alone; nothing of an address of another kind.
struct Line {
  const LineOptions& options;
  std::string port;
};
std::optional<Line> LineOf(const Address& address) {
  if (const auto* com = std::get_if<ComAddress>(&address))
    return Line{com->line, TextOf(ComAddress{.port = com->port})};
  if (const auto* usb = std::get_if<UsbAddress>(&address))
    return Line{usb->line, TextOf(UsbAddress{.serial = usb->serial})};
  return std::nullopt;
}

std::string SilenceHint(const LibraryError& error, const Line& line) {
  if (*error.received == 0)
    return "Nothing was received: \"kesp detect " + line.port + "\" looks for the bit rate.";
  const std::string end = line.options.cr ? " came without a carriage return, the last were "
                                          : " came without a line feed, the last were ";
  return Counted(*error.received, "byte") + end + error.last_received + ": \"kesp detect " + line.port +
         "\" tells whether the bit rate is right.";
}

std::string TimeoutHint(const LibraryError& error, const Address& address) {
  if (!error.received) return "";
  if (const auto* tcp = std::get_if<TcpAddress>(&address)) return SilenceHint(error, *tcp);
  const auto line = LineOf(address);
  return line ? SilenceHint(error, *line) : "";
}

std::string NoTextHint(const Address& address) {
  const std::string hint = "The reply has bytes that are no text: --hex, or :hex in the terminal, shows them";
  const auto line = LineOf(address);
  return line ? hint + "; \"kesp detect " + line->port + "\" tells whether the bit rate is right."
              : hint + ".";
}

}  // namespace

std::string HintFor(const LibraryError& error, const Address& address) {
  if (std::string_view(error.what()).starts_with("Invalid characters received")) return NoTextHint(address);
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

std::string LoneReturnHint(const Address& address, std::optional<int> timeout_ms,
                           std::optional<std::chrono::milliseconds> waited) {
  const auto line = LineOf(address);
  if (!line || line->options.cr || line->options.modem || line->options.precidia) return "";
  if (!waited || waited->count() < timeout_ms.value_or(kUsualTimeoutMs)) return "";
  return "no line feed came, a lone carriage return ended the data when the time was up: add \",cr\" to the "
         "address";
}

}  // namespace kesp::console
