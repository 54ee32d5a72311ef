// The time of characters on a serial line.
#include "serial/transmission.h"

#include <algorithm>

namespace kesp {

namespace {

constexpr std::int64_t kMicrosecondsPerSecond = 1'000'000;

// USB carries bytes to an adapter in frames of a millisecond; the line may begin that much later.
constexpr std::int64_t kAdapterMicroseconds = 2000;

// In halves, because of the one and a half stop bits.
std::int64_t HalfBitsPerCharacter(const LineSettings& line) {
  const int parity = line.parity == LineParity::kNone ? 0 : 1;
  const int whole_bits = 1 + line.data_bits + parity;
  switch (line.stop_bits) {
    case LineStopBits::kOneAndAHalf:
      return 2 * whole_bits + 3;
    case LineStopBits::kTwo:
      return 2 * whole_bits + 4;
    default:
      return 2 * whole_bits + 2;
  }
}

}  // namespace

void Transmission::Begin(const LineSettings& line) {
  line_ = line;
  End();
}

void Transmission::Add(std::size_t bytes) {
  if (bytes == 0) return;
  // Behind the bytes that are under way already.
  const std::int64_t start = std::max(clock_.Microseconds() + kAdapterMicroseconds, end_microseconds_);
  end_microseconds_ = start + MicrosecondsOf(bytes);
}

void Transmission::TakeBack(std::size_t bytes) {
  if (bytes == 0 || Left() == 0) return;
  end_microseconds_ -= MicrosecondsOf(bytes);
}

std::int64_t Transmission::MicrosecondsOf(std::size_t bytes) const {
  const std::int64_t half_bits = HalfBitsPerCharacter(line_) * static_cast<std::int64_t>(bytes);
  const std::int64_t half_bits_per_second = std::int64_t{2} * line_.bits_per_second;
  return (half_bits * kMicrosecondsPerSecond - 1) / half_bits_per_second + 1;
}

std::int64_t Transmission::Left() const {
  if (end_microseconds_ == 0) return 0;
  return std::max<std::int64_t>(end_microseconds_ - clock_.Microseconds(), 0);
}

}  // namespace kesp
