// Which COM ports this process closed a moment ago.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace kesp {

// Drivers, those of adapters above all, may take a moment to let go of a port that was closed; until then it
// is refused as if another program held it. One for the process, for whoever opens a port in it next. Every
// thread may use it. Ticks are those of the system's millisecond counter, which may wrap.
class ClosedPorts {
 public:
  // How long such a driver is given.
  static constexpr std::uint32_t kReleaseMs = 500;

  void NoteClosed(std::int16_t port, std::uint32_t tick) noexcept {
    if (IsPort(port)) Closed(port) = tick | 1;
  }

  // It is in use again: whoever holds it now is not late.
  void NoteOpened(std::int16_t port) noexcept {
    if (IsPort(port)) Closed(port) = 0;
  }

  // Whether the port was closed less than kReleaseMs ago and not opened since.
  bool WasJustClosed(std::int16_t port, std::uint32_t tick) const noexcept {
    if (!IsPort(port)) return false;
    const std::uint32_t closed = closed_[static_cast<std::size_t>(port)];
    return closed != 0 && (tick | 1) - closed < kReleaseMs;
  }

 private:
  static constexpr std::int16_t kHighestPort = 256;

  static bool IsPort(std::int16_t port) { return port >= 0 && port <= kHighestPort; }
  std::atomic<std::uint32_t>& Closed(std::int16_t port) { return closed_[static_cast<std::size_t>(port)]; }

  // When each was closed, as an odd tick; 0 for none.
  std::array<std::atomic<std::uint32_t>, kHighestPort + 1> closed_{};
};

}  // namespace kesp
