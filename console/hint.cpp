// Hints by status, transport, and what had come.
#include "console/hint.h"

#include <string_view>

#include "console/counted.h"
#include "console/more_at.h"
#include "console/port_hint.h"

namespace kesp::console {
namespace {

constexpr int kUsualTimeoutMs = 3000;

std::string SilenceHint(const LibraryError& error, const TcpAddress& address) {
  if (*error.received == 0) {
    return "Nothing was received: the instrument may not know the command, or take longer (--timeout)" +
           MoreAt("no-answer.md#nothing-comes") + ".";
  }
  const std::string end = address.eos.empty() ? "13" : std::to_string(address.eos.back());
  return Counted(*error.received, "byte") + " came without the end character " + end +
         R"(: ",eos=CODE" behind the address names another one, ",any" takes what comes)" +
         MoreAt("no-answer.md#a-part-comes-then-a-timeout") + ".";
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
  if (*error.received == 0) {
    return "Nothing was received: \"kesp detect " + line.port + "\" looks for the bit rate" +
           MoreAt("no-answer.md#nothing-comes") + ".";
  }
  const std::string end = line.options.cr ? " came without a carriage return, the last were "
                                          : " came without a line feed, the last were ";
  return Counted(*error.received, "byte") + end + error.last_received + ": \"kesp detect " + line.port +
         "\" tells whether the bit rate is right" + MoreAt("no-answer.md#a-part-comes-then-a-timeout") + ".";
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
  const std::string check =
      line ? "; \"kesp detect " + line->port + "\" tells whether the bit rate is right" : "";
  return hint + check + MoreAt("no-answer.md#strange-characters-the-wrong-bit-rate") + ".";
}

}  // namespace

std::string HintFor(const LibraryError& error, const Address& address) {
  if (std::string_view(error.what()).starts_with("Invalid characters received")) return NoTextHint(address);
  const bool is_gpib = std::holds_alternative<GpibAddress>(address);
  if (error.status() == "cfrTimeout" && error.what() != std::string_view("Port already open"))
    return TimeoutHint(error, address);
  if (error.status() == "cfrInitializeFailed" && is_gpib) {
    return "\"kesp doctor\" tells which driver was looked for, and what was found" +
           MoreAt("no-answer.md#the-gpib-driver-is-missing-or-of-the-other-width") + ".";
  }
  if (error.status() == "cfrWriteFailed" && is_gpib) {
    return "\"kesp detect gpib:\" looks for the first device that answers" +
           MoreAt("no-answer.md#nobody-at-the-gpib-address") + ".";
  }
  if (error.status() == "cfrInitializeFailed" && std::holds_alternative<TcpAddress>(address)) {
    return "Nobody listens at that address and port, or a firewall is between: \"kesp discover\" lists who "
           "answers" +
           MoreAt("no-answer.md#refused-after-four-seconds") + ".";
  }
  return PortHint(error);
}

std::string LoneReturnHint(const Address& address, std::optional<int> timeout_ms,
                           std::optional<std::chrono::milliseconds> waited) {
  const auto line = LineOf(address);
  if (!line || line->options.cr || line->options.modem || line->options.precidia) return "";
  if (!waited || waited->count() < timeout_ms.value_or(kUsualTimeoutMs)) return "";
  return "no line feed came, a lone carriage return ended the data when the time was up: add \",cr\" to the "
         "address" +
         MoreAt("no-answer.md#each-reply-takes-exactly-the-timeout");
}

}  // namespace kesp::console
