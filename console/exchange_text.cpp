// Exchanges as lines for the reader, and as comma-separated values.
#include "console/exchange_text.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "console/csv.h"
#include "console/trace_bytes.h"
#include "console/utf8_character.h"

namespace kesp::console {
namespace {

constexpr std::size_t kWhenColumns = 22;
constexpr std::size_t kMillisecondsColumns = 7;
constexpr std::size_t kPlaceColumns = 22;
constexpr std::size_t kCommandColumns = 18;

std::string Padded(std::string text, std::size_t columns) {
  const std::size_t has = CharactersIn(text);
  if (has < columns) text.append(columns - has, ' ');
  return text + "  ";
}

std::string PaddedLeft(const std::string& text, std::size_t columns) {
  return (text.size() < columns ? std::string(columns - text.size(), ' ') : "") + text + "  ";
}

std::string Line(std::string text, int width) {
  while (text.ends_with(' ')) text.pop_back();
  const auto columns = static_cast<std::size_t>(width);
  // The last column stays free: some consoles begin a new line when it is written to.
  if (width > 4 && CharactersIn(text) >= columns) {
    std::size_t kept = 0;
    std::size_t end = 0;
    for (; end < text.size(); ++end) {
      if (BeginsCharacter(text[end]) && ++kept > columns - 4) break;
    }
    text.resize(end);
    text += "...";
  }
  return text + "\n";
}

std::string_view WithoutLineEnd(std::string_view text) {
  const std::size_t last = text.find_last_not_of("\r\n");
  return last == std::string_view::npos ? std::string_view() : text.substr(0, last + 1);
}

// What came, without its line end.
std::string ReplyOf(const Exchange& exchange) {
  if (exchange.reply) return Readable(WithoutLineEnd(*exchange.reply));
  return exchange.received ? Readable(WithoutLineEnd(*exchange.received)) : std::string();
}

std::string CommandOf(const Exchange& exchange) {
  if (exchange.command) return Readable(*exchange.command);
  if (exchange.sent_bytes > 0) return "(" + std::to_string(exchange.sent_bytes) + " bytes)";
  return exchange.kind == Exchange::Kind::kDiscovery ? "(broadcast)" : "";
}

std::string OutcomeOf(const Exchange& exchange) {
  if (!exchange.has_failed) return exchange.kind == Exchange::Kind::kUpdate ? "(sent)" : ReplyOf(exchange);
  std::string text = "FAILED: " + Readable(exchange.description);
  if (!exchange.source.empty()) text += " (" + Readable(exchange.source) + ")";
  const std::string reply = ReplyOf(exchange);
  return reply.empty() ? text : text + "; received: " + reply;
}

std::string_view NameOf(Exchange::Kind kind) {
  switch (kind) {
    case Exchange::Kind::kQuery:
      return "query";
    case Exchange::Kind::kBinaryQuery:
      return "binary query";
    case Exchange::Kind::kUpdate:
      return "update";
    case Exchange::Kind::kOpening:
      return "opening";
    case Exchange::Kind::kDiscovery:
      return "discovery";
    default:
      return "call";
  }
}

std::string PlaceOf(const Exchange& exchange) {
  return exchange.settings.empty() ? exchange.place : exchange.place + "@" + exchange.settings;
}

}  // namespace

std::string TableHead(int width) {
  return Line(Padded("WHEN", kWhenColumns) + PaddedLeft("MS", kMillisecondsColumns) +
                  Padded("PLACE", kPlaceColumns) + Padded("COMMAND", kCommandColumns) + "REPLY",
              width);
}

std::string TableLine(const Exchange& exchange, int width) {
  return Line(Padded(Readable(exchange.when), kWhenColumns) +
                  PaddedLeft(std::to_string(exchange.duration_ms), kMillisecondsColumns) +
                  Padded(Readable(PlaceOf(exchange)), kPlaceColumns) +
                  Padded(CommandOf(exchange), kCommandColumns) + OutcomeOf(exchange),
              width);
}

std::string CsvHead() {
  return CsvOf({"when", "counter", "ms", "kind", "place", "command", "reply", "failure", "source"});
}

std::string CsvLine(const Exchange& exchange) {
  return CsvOf({Readable(exchange.when), std::to_string(exchange.counter),
                std::to_string(exchange.duration_ms), std::string(NameOf(exchange.kind)),
                Readable(PlaceOf(exchange)), CommandOf(exchange), ReplyOf(exchange),
                Readable(exchange.description), Readable(exchange.source)});
}

}  // namespace kesp::console
