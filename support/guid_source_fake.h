// A source of GUIDs that a test can foretell.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>

#include "support/failing_call_fake.h"
#include "support/guid_source.h"

namespace kesp {

// Hands out the GUIDs of its queue, then such as count upwards in data1 from 1.
class GuidSourceFake final : public GuidSource {
 public:
  std::optional<GuidFields> NewGuid() override {
    if (faults.IsFailing() || failing_) return std::nullopt;
    if (queue_.empty()) return GuidFields{++count_, 0, 0, {}};
    const GuidFields guid = queue_.front();
    queue_.pop_front();
    return guid;
  }

  // A failing call makes no GUID.
  FailingCallFake faults;

  void Push(const GuidFields& guid) { queue_.push_back(guid); }

  // From now on no GUID can be made.
  void Fail() { failing_ = true; }

 private:
  std::deque<GuidFields> queue_;
  std::uint32_t count_ = 0;
  bool failing_ = false;
};

}  // namespace kesp
