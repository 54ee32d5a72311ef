// The bytes that are to be sent, and what of them is still to be reported.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kesp {

// What one SendProgress notification says.
struct SendProgress {
  std::int32_t sent = 0;       // since the last report
  std::int32_t remaining = 0;  // not yet sent
};

// Keeps what the system did not take at once. Taking from its front costs no copy of the rest.
class SendQueue {
 public:
  // Adds bytes that are still to be sent.
  void Add(std::string_view bytes) { bytes_ += bytes; }

  // What is to be sent next; empty when everything is.
  std::string_view Unsent() const { return std::string_view(bytes_).substr(taken_); }

  // The system took that many bytes from the front of Unsent.
  void TookFromFront(std::size_t count);

  // The system took that many bytes which were never in the queue.
  void TookDirectly(std::size_t count) { unreported_ += count; }

  // What to report, which then counts as reported.
  SendProgress Report();

  // Forgets everything.
  void Clear();

 private:
  std::string bytes_;
  std::size_t taken_ = 0;
  std::size_t unreported_ = 0;
};

}  // namespace kesp
