// The status bits and error numbers of the NI-488.2 driver's public interface, as far as the simulation
// reports them.
#pragma once

#include <cstdint>

namespace kesp::simulator::gpib {

// Bits of the status word.
inline constexpr std::int32_t kError = 0x8000;
inline constexpr std::int32_t kTimedOut = 0x4000;
inline constexpr std::int32_t kEnd = 0x2000;
inline constexpr std::int32_t kServiceRequested = 0x0800;
inline constexpr std::int32_t kComplete = 0x0100;

// Error numbers; they count only while the status word has the error bit.
inline constexpr std::int32_t kSystemError = 0;       // EDVR, also for descriptors that are not open
inline constexpr std::int32_t kNoListener = 2;        // ENOL
inline constexpr std::int32_t kBadArgument = 4;       // EARG
inline constexpr std::int32_t kAborted = 6;           // EABO, with or without the time-out bit
inline constexpr std::int32_t kNoBoard = 7;           // ENEB
inline constexpr std::int32_t kFileSystemError = 12;  // EFSO

// What a call reports: the status word, the error number and how many bytes were transferred.
struct Outcome {
  std::int32_t status = kComplete;
  std::int32_t error = 0;
  std::int32_t count = 0;

  friend bool operator==(const Outcome&, const Outcome&) = default;
};

// The outcome of a call that failed at once.
constexpr Outcome FailedWith(std::int32_t error) {
  return {kError | kComplete, error, 0};
}

}  // namespace kesp::simulator::gpib
