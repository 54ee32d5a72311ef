// The small readers and writers of kesp: characters, tables, what is typed at the terminal, boxes, times.
#include <string>
#include <vector>

#include "console/csv.h"
#include "console/error_box_text.h"
#include "console/library.h"
#include "console/regional_time.h"
#include "console/since.h"
#include "console/table.h"
#include "console/terminal_line.h"
#include "console/trace_bytes.h"
#include "console/usage_error.h"
#include "console/utf8_character.h"
#include "support/text.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/require.h"

namespace kesp::console {
namespace {

constexpr LocalSeconds kNow = 1'763'820'309;

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    const Character character = CharacterAt(text);
    if (character.length == 0) return false;
    text.remove_prefix(character.length);
  }
  return true;
}

void ReadCharacters(std::string_view bytes) {
  const std::string readable = Readable(bytes);
  Require(IsUtf8(readable), "what is readable is UTF-8");
  Require(readable.find_first_of(std::string_view("\0\r\n\t\x1B\x7F", 6)) == std::string::npos,
          "on one line");
  const std::string text = TextOfBytes(bytes);
  Require(IsUtf8(text) && CharactersIn(text) == bytes.size(), "each byte is a character");
  // The library's own conversion, and the way back of it through UTF-8.
  std::string utf8;
  for (const wchar_t c : Windows1252().FromBytes(bytes)) AppendUtf8(static_cast<char32_t>(c), utf8);
  Require(WireBytesOfUtf8(utf8) == std::string(bytes), "bytes of the wire come back from a trace in UTF-8");
}

// The fields of a line, read as RFC 4180 has it.
std::vector<std::string> FieldsOf(std::string_view line) {
  std::vector<std::string> fields(1);
  bool quoted = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '"' && quoted && line.substr(i).starts_with("\"\"")) {
      fields.back() += line[++i];
    } else if (line[i] == '"') {
      quoted = !quoted;
    } else if (line[i] == ',' && !quoted) {
      fields.emplace_back();
    } else {
      fields.back() += line[i];
    }
  }
  return fields;
}

void WriteRows(FuzzInput& input) {
  std::vector<TableRow> rows;
  while (input.HasMore() && rows.size() < 8) {
    TableRow& row = rows.emplace_back();
    for (std::size_t count = 1 + input.Below(5); count > 0; --count)
      row.emplace_back(input.Bytes(input.Below(12)));
    const std::string line = CsvOf(row);
    Require(line.ends_with("\r\n"), "a line has its end");
    Require(FieldsOf(std::string_view(line).substr(0, line.size() - 2)) == row, "the fields are read again");
  }
  Require(TableOf(rows).empty() == rows.empty(), "a table has its rows");
}

void ReadTyped(std::string_view text) {
  using Kind = TerminalLine::Kind;
  const TerminalLine line = ReadTerminalLine(text);
  Require(line.text.size() <= text.size(), "nothing is added");
  Require(text.find(line.text) != std::string_view::npos, "the text is a part of the line");
  if (line.kind == Kind::kQuery) {
    Require(!line.text.empty(), "a query is something");
    Require(ReadTerminalLine((line.text.starts_with(':') ? ":" : "") + line.text) == line,
            "it is read again");
  }
}

void ReadBox(std::string_view text) {
  const LibraryError error = ErrorOfBox(text);
  if (error.status().empty()) {
    Require(std::string(text).c_str() == std::string(error.what()), "another text is the description");
  } else {
    const std::string told = "Error: " + error.status().substr(6) + " - " + error.what();
    Require(text.find(told) != std::string_view::npos, "number and description stand in the text");
    Require(text.find(error.source()) != std::string_view::npos, "so does the source");
  }
}

void ReadTimes(std::string_view text) {
  if (const std::optional<RegionalTime> time = ReadRegionalTime(text)) {
    Require(time->hour >= 0 && time->hour < 24 && time->minute >= 0 && time->minute < 60,
            "a time is of a day");
    Require(time->second >= 0 && time->second < 60, "a second is of a minute");
    for (const DateOrder order : {DateOrder::kYearFirst, DateOrder::kDayFirst, DateOrder::kMonthFirst}) {
      const std::optional<LocalSeconds> seconds = SecondsOf(*time, order);
      Require(!seconds || ((*seconds % 60) + 60) % 60 == time->second, "the seconds are those of the time");
    }
  }
  try {
    ReadSince(text, kNow, kNow - 5);
  } catch (const UsageError&) {
    // No time.
  }
}

void DeriveOrders(FuzzInput& input) {
  std::vector<RegionalTime> times;
  while (input.HasMore() && times.size() < 20) {
    if (const std::optional<RegionalTime> time = ReadRegionalTime(input.Line())) times.push_back(*time);
  }
  const DerivedOrder derived = DeriveOrder(times, kNow);
  Require(!times.empty() || !derived.certain, "nothing tells nothing");
}

}  // namespace
}  // namespace kesp::console

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesp::FuzzInput input(data, size);
  switch (input.Below(6)) {
    case 0:
      kesp::console::ReadCharacters(input.Rest());
      break;
    case 1:
      kesp::console::WriteRows(input);
      break;
    case 2:
      kesp::console::ReadTyped(input.Rest());
      break;
    case 3:
      kesp::console::ReadBox(input.Rest());
      break;
    case 4:
      kesp::console::DeriveOrders(input);
      break;
    default:
      kesp::console::ReadTimes(input.Rest());
  }
  return 0;
}
