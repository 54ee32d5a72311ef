// The GPIB transport's texts and numbers: the two readings of EOSChar, addresses, the driver's status.
#include <string>

#include "gpib/device_address.h"
#include "gpib/eos_character.h"
#include "gpib/gpib_status.h"
#include "support/failure.h"
#include "support/text.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/require.h"

namespace kesp {
namespace {

// The number that the text holds, too large ones as 256; -1 for none.
int CodeIn(std::wstring text) {
  while (text.ends_with(L' ')) text.pop_back();
  while (text.starts_with(L' ')) text.erase(0, 1);
  if (text.empty() || text.find_first_not_of(L"0123456789") != std::wstring::npos) return -1;
  const std::size_t first = std::min(text.find_first_not_of(L'0'), text.size() - 1);
  return text.size() - first > 3 ? 256 : std::min(std::stoi(text.substr(first)), 256);
}

void ReadEos(const std::wstring& text) {
  const int code = CodeIn(text);
  try {
    Require(EosByteOfNumber(text, L"source") == code, "the code is the number of the text");
  } catch (const Failure& failure) {
    Require(failure.number() == (code < 0 ? 13 : 5), "what is no code is refused");
    Require(code < 0 || code > 255, "codes up to 255 are taken");
    Require(failure.source() == L"source", "the failure names its member");
  }
  try {
    const std::uint8_t byte = EosByteOfFirstCharacter(text, L"source");
    Require(SystemCodePage().ToBytes(text)[0] == static_cast<char>(byte), "the first character's byte");
  } catch (const Failure& failure) {
    Require(text.empty() && failure.number() == 5, "an empty text has no first character");
  }
}

void CheckAddress(FuzzInput& input) {
  const DeviceAddress address{.board = static_cast<std::int16_t>(input.Word()),
                              .primary = static_cast<std::int16_t>(input.Word()),
                              .secondary = static_cast<std::int16_t>(input.Word())};
  int checks = 0;
  bool is_taken = true;
  try {
    CheckDeviceAddress(address, [&checks](const wchar_t*) { ++checks; });
  } catch (const Failure&) {
    is_taken = false;
  }
  const int expected = address.board < 0 ? 1 : address.primary < 1 ? 2 : 3;
  Require(checks == expected, "the check stops at the first mistake");
  Require(is_taken == (address.board >= 0 && address.primary >= 1 && address.secondary >= 0), "as told");
}

void ReadStatus(FuzzInput& input) {
  const std::int32_t cell = input.Long();
  const GpibStatus status{.ibsta = Low16(cell), .iberr = Low16(input.Long()), .ibcnt = 0, .ibcntl = cell};
  Require(static_cast<std::uint16_t>(status.ibsta) == (static_cast<std::uint32_t>(cell) & 0xFFFFU),
          "16 bits");
  Require(status.Failed() == (status.ibsta < 0), "the error bit is the highest");
  const std::wstring text = status.ErrorText();
  const std::wstring beginning = L"Error: " + std::to_wstring(status.iberr) + L" - ";
  Require(text.starts_with(beginning) && text.size() > beginning.size(), "every number has a message");
}

}  // namespace
}  // namespace kesp

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesp::FuzzInput input(data, size);
  switch (input.Below(4)) {
    case 0:
      kesp::CheckAddress(input);
      break;
    case 1:
      kesp::ReadStatus(input);
      break;
    default:
      kesp::ReadEos(kesp::WideText(input.Rest()));
  }
  return 0;
}
