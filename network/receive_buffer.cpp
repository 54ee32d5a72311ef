// The bounded buffer of received bytes.
#include "network/receive_buffer.h"

#include <new>
#include <utility>

namespace kesp {

bool ReceiveBuffer::AppendToStream(std::string_view bytes) noexcept {
  try {
    if (bytes.size() <= limit_ - held_) {
      if (pieces_.empty()) pieces_.emplace_back();
      pieces_.back().bytes.append(bytes);
      held_ += bytes.size();
      return true;
    }
  } catch (const std::bad_alloc&) {
    // As when the limit is reached.
  }
  Clear();
  return false;
}

bool ReceiveBuffer::AddDatagram(std::string_view bytes, const DatagramSender& sender) noexcept {
  const std::size_t cost = bytes.size() + kDatagramOverhead;
  if (cost > limit_ - held_) return false;
  try {
    pieces_.push_back({.bytes = std::string(bytes), .sender = sender});
  } catch (const std::bad_alloc&) {
    return false;
  }
  datagrams_ = true;
  held_ += cost;
  return true;
}

std::optional<DatagramSender> ReceiveBuffer::FrontSender() const {
  if (!datagrams_ || pieces_.empty()) return std::nullopt;
  return pieces_.front().sender;
}

std::string ReceiveBuffer::TakeFront() {
  if (pieces_.empty()) return {};
  std::string front = std::move(pieces_.front().bytes);
  pieces_.pop_front();
  held_ -= front.size() + (datagrams_ ? kDatagramOverhead : 0);
  return front;
}

void ReceiveBuffer::Clear() {
  pieces_.clear();
  held_ = 0;
  datagrams_ = false;
}

}  // namespace kesp
