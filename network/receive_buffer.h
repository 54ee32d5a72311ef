// The bytes that a socket has received and nobody has taken yet.
#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

#include "network/datagram_sender.h"
#include "network/socket_control.h"

namespace kesp {

// Holds either the bytes of a stream, as one run, or datagrams, whole and in order. What it may hold is
// bounded.
class ReceiveBuffer {
 public:
  explicit ReceiveBuffer(std::size_t limit = kReceiveLimit) : limit_(limit) {}

  // Adds to the stream. False when it would hold more than the limit, or memory ran out: then it holds
  // nothing any more.
  bool AppendToStream(std::string_view bytes) noexcept;

  // Adds a datagram. False when there is no room for it: then it is dropped, as networks drop datagrams. Each
  // counts for a little more than its bytes, so that small ones are bounded too.
  bool AddDatagram(std::string_view bytes, const DatagramSender& sender) noexcept;

  // The stream, or the oldest datagram; empty when there is nothing. Holds until the next change.
  std::string_view Front() const { return pieces_.empty() ? std::string_view() : pieces_.front().bytes; }

  // Where the oldest datagram came from; nothing when there is none.
  std::optional<DatagramSender> FrontSender() const;

  // Takes that out. The cost does not depend on the number of bytes.
  std::string TakeFront();

  void Clear();

 private:
  struct Piece {
    std::string bytes;
    DatagramSender sender;  // of a datagram
  };
  static constexpr std::size_t kDatagramOverhead = sizeof(Piece);

  std::size_t limit_;
  std::size_t held_ = 0;  // bytes, with the overhead of datagrams
  bool datagrams_ = false;
  std::deque<Piece> pieces_;
};

}  // namespace kesp
