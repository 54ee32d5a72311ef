// The settings text of a serial port, read.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace kesp {

enum class LineParity { kNone, kOdd, kEven, kMark, kSpace };
enum class LineStopBits { kOne, kOneAndAHalf, kTwo };

struct LineSettings {
  std::int32_t bits_per_second = 9600;
  LineParity parity = LineParity::kNone;
  int data_bits = 8;  // 4 to 8
  LineStopBits stop_bits = LineStopBits::kOne;

  friend bool operator==(const LineSettings&, const LineSettings&) = default;
};

// Reads "rate,parity,data bits,stop bits": a rate that has a name (baud_rate.h), one of N O E M S, 4 to 8,
// and 1, 1.5 or 2, as in "9600,N,8,1". Nothing for any other text; blanks, small letters and missing parts
// are not forgiven.
std::optional<LineSettings> ReadLineSettings(std::wstring_view text);

}  // namespace kesp
