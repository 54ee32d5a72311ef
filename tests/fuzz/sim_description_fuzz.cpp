// The simulator's descriptions: any text is taken, or every mistake has a line of that text.
#include <algorithm>
#include <sstream>
#include <string>

#include "simulator/address_range.h"
#include "simulator/bytes_text.h"
#include "simulator/description.h"
#include "simulator/description_error.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/require.h"

namespace kesp::simulator {
namespace {

// A description may name files, which a fuzzer has no business to read.
bool NamesFiles(std::string_view text) {
  return text.find('/') != std::string_view::npos || text.find('\\') != std::string_view::npos;
}

void RequireMistakes(const DescriptionError& error, std::size_t lines) {
  std::istringstream mistakes(error.what());
  std::size_t count = 0;
  for (std::string mistake; std::getline(mistakes, mistake); ++count) {
    if (!mistake.starts_with("d:")) continue;  // a name with a line feed in it
    const std::size_t line = std::stoul(mistake.substr(2));
    Require(line >= 1 && line <= lines, "a mistake is in a line of the text");
  }
  Require(count > 0, "a mistake is told");
}

template <typename Read>
void Try(const std::string& text, const Read& read) {
  try {
    read();
  } catch (const DescriptionError& error) {
    RequireMistakes(error, static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1);
  }
}

void ReadTexts(std::string_view text) {
  if (const std::optional<std::string> bytes = BytesFromText(text)) {
    Require(bytes->size() <= text.size(), "a character is a byte");
  }
  if (const std::optional<std::uint32_t> number = FromHexadecimal(text)) {
    Require(FromHexadecimal(Hexadecimal(*number)) == number, "a number is read again");
  }
  if (const std::optional<AddressRange> range = ReadAddressRange(text)) {
    Require(range->size() >= 1 && range->size() <= 65536, "a range has an address, and not too many");
    Require(range->At(range->size()) == range->first, "a range goes round");
    const std::optional<AddressRange> again = ReadAddressRange(range->Text());
    Require(again && again->first == range->first && again->last == range->last, "a range is read again");
  }
  Require(Quoted(text, 10).size() <= 4 * 10 + 5, "what is quoted is short");
}

}  // namespace
}  // namespace kesp::simulator

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  namespace simulator = kesp::simulator;
  kesp::FuzzInput input(data, size);
  const std::size_t kind = input.Below(4);
  const std::string text(input.Rest());
  if (kind == 0) {
    simulator::ReadTexts(text);
  } else if (simulator::NamesFiles(text)) {
    return -1;
  } else if (kind == 1) {
    simulator::Try(text, [&] { simulator::ReadBus(text, "d"); });
  } else {
    simulator::Try(text, [&] { simulator::ReadDescription(text, "d", "nowhere"); });
  }
  return 0;
}
