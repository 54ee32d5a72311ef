// The memory into which the system writes the results of host look-ups.
#pragma once

#include <cstddef>
#include <memory>

namespace kesp {

// Room for one result, of the size that the system's routine asks for.
struct LookupBuffer {
  static constexpr std::size_t kSize = 1024;
  alignas(std::max_align_t) char bytes[kSize];
  LookupBuffer* next = nullptr;  // among those that were given up
};

// The buffers of look-ups that were given up. The system may have such a look-up's result still to write and
// does not say when it is done, so these buffers are never freed. Their number is bounded: when there are
// more, the next look-up gets the oldest one, which the system has let go of by then unless it is behind by
// that many.
//
// Used by one thread at a time. Owns nothing at its end: what was given up stays.
class LookupBuffers {
 public:
  static constexpr int kMost = 256;

  constexpr LookupBuffers() = default;
  LookupBuffers(const LookupBuffers&) = delete;
  LookupBuffers& operator=(const LookupBuffers&) = delete;

  // A buffer for the next look-up; null when there is no memory.
  std::unique_ptr<LookupBuffer> Take() noexcept;

  // Keeps the buffer of a look-up that may not be done.
  void GiveUp(std::unique_ptr<LookupBuffer> buffer) noexcept;

 private:
  int count_ = 0;
  LookupBuffer* oldest_ = nullptr;
  LookupBuffer* newest_ = nullptr;
};

}  // namespace kesp
