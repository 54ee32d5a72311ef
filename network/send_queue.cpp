// The queue of bytes to be sent.
#include "network/send_queue.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace kesp {

namespace {

std::int32_t Saturated(std::size_t count) {
  return static_cast<std::int32_t>(std::min<std::size_t>(count, std::numeric_limits<std::int32_t>::max()));
}

}  // namespace

void SendQueue::TookFromFront(std::size_t count) {
  taken_ += count;
  unreported_ += count;
  if (taken_ < bytes_.size()) return;
  bytes_ = {};
  taken_ = 0;
}

SendProgress SendQueue::Report() {
  return {Saturated(std::exchange(unreported_, 0)), Saturated(Unsent().size())};
}

void SendQueue::Clear() {
  *this = {};
}

}  // namespace kesp
