// The IEEE-488 transport's commands and replies.
#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

#include "gpib/eos_character.h"
#include "gpib/kesp_ieee.h"
#include "support/error_numbers.h"
#include "support/failure.h"
#include "support/text.h"

namespace kesp {

namespace {

constexpr wchar_t kWritingSource[] = L"[CKespIEEE - WriteLine()]";
constexpr wchar_t kReadingSource[] = L"[CKespIEEE - ReadLine()]";

// What one call of ReadLine takes at the most.
constexpr std::int32_t kPieceLength = 50;

}  // namespace

bool CKespIEEE::WriteLine(const std::wstring& cmd) {
  const std::uint8_t terminator = EosByteOfNumber(eos_char_, kWritingSource);
  driver_.Load(kWritingSource);
  const GpibStatus status =
      driver_.ibwrt(device_, SystemCodePage().ToBytes(cmd) + static_cast<char>(terminator));
  if (status.Failed()) {
    throw Failure(ieee_error::ERR_IBWRT, kWritingSource,
                  L"Error calling ibwrt() with command '" + cmd + L"' on device " + std::to_wstring(device_) +
                      L": " + status.ErrorText());
  }
  return true;
}

bool CKespIEEE::ReadLine(std::wstring& result) {
  driver_.Load(kReadingSource);
  std::array<char, kPieceLength> buffer;
  buffer.fill(' ');
  const GpibStatus status = driver_.ibrd(device_, buffer);
  const auto received = static_cast<std::size_t>(std::clamp(status.ibcntl, 0, kPieceLength));
  result = SystemCodePage().FromBytes(std::string_view(buffer.data(), received));
  if (status.Failed()) {
    throw Failure(ieee_error::ERR_IBRD, kReadingSource,
                  L"Error calling ibrd() on device " + std::to_wstring(device_) + L": " + status.ErrorText());
  }
  return true;
}

}  // namespace kesp
