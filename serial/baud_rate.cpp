// The serial bit rates: which indices name one, and their texts.
#include "serial/baud_rate.h"

#include <array>
#include <cstddef>

namespace kesp {

namespace {

// In the order of the enumeration, from br150 on.
constexpr std::array<const wchar_t*, 14> kNames = {L"150",    L"300",    L"600",    L"1200",  L"2400",
                                                   L"4800",   L"9600",   L"19200",  L"38400", L"57600",
                                                   L"115200", L"230400", L"460800", L"921600"};

}  // namespace

bool IsBaudRate(EKespBaudRate3 rate) {
  return rate >= EKespBaudRate3::brNone && rate <= EKespBaudRate3::br921600;
}

std::wstring BaudRateName(EKespBaudRate3 rate) {
  if (rate == EKespBaudRate3::brNone || !IsBaudRate(rate)) return L"<unknown>";
  return kNames.at(static_cast<std::size_t>(rate));
}

}  // namespace kesp
