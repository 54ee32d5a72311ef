// The queue of look-up buffers that were given up.
#include "network/lookup_buffers.h"

#include <new>

namespace kesp {

std::unique_ptr<LookupBuffer> LookupBuffers::Take() noexcept {
  if (count_ < kMost) return std::unique_ptr<LookupBuffer>(new (std::nothrow) LookupBuffer);
  LookupBuffer* const buffer = oldest_;
  oldest_ = buffer->next;
  buffer->next = nullptr;
  --count_;
  return std::unique_ptr<LookupBuffer>(buffer);
}

void LookupBuffers::GiveUp(std::unique_ptr<LookupBuffer> buffer) noexcept {
  LookupBuffer* const given_up = buffer.release();
  (oldest_ == nullptr ? oldest_ : newest_->next) = given_up;
  newest_ = given_up;
  ++count_;
}

}  // namespace kesp
