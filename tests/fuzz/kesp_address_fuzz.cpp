// The addresses and durations of kesp: what is read is written and read again; mistakes have a place.
#include <string>

#include "console/address.h"
#include "console/duration.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/require.h"

namespace kesp::console {
namespace {

void ReadAddress(std::string_view text) {
  // No argument of a program has one.
  if (text.find('\0') != std::string_view::npos) return;
  Address address;
  try {
    address = ParseAddress(text);
  } catch (const AddressError& error) {
    const std::string what = error.what();
    Require(error.place() <= text.size(), "a mistake is at a place of the text");
    Require(what.find(text) != std::string::npos && what.find("^\n") != std::string::npos, "it is shown");
    return;
  }
  const std::string written = TextOf(address);
  Require(written.size() <= text.size(), "what is written is the shortest");
  try {
    Require(ParseAddress(written) == address, "what is written is read again");
    Require(TextOf(ParseAddress(written)) == written, "and written the same");
  } catch (const AddressError&) {
    Require(false, "what is written is an address");
  }
}

void ReadTime(std::string_view text) {
  const std::optional<int> duration = ReadDuration(text);
  if (!duration) return;
  Require(*duration >= 0, "a duration is not negative");
  Require(ReadDuration(std::to_string(*duration) + "ms") == duration, "milliseconds are read again");
}

}  // namespace
}  // namespace kesp::console

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesp::FuzzInput input(data, size);
  if (input.Below(4) == 0) {
    kesp::console::ReadTime(input.Rest());
  } else {
    kesp::console::ReadAddress(input.Rest());
  }
  return 0;
}
