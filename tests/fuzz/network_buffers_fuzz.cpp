// The socket control's buffers and queues, against the simplest containers that do the same.
#include <deque>
#include <memory>
#include <optional>
#include <string>

#include "network/lookup_buffers.h"
#include "network/notification_code.h"
#include "network/receive_buffer.h"
#include "network/send_queue.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/require.h"

namespace kesp {
namespace {

void UseStream(FuzzInput& input) {
  const std::size_t limit = input.Below(64);
  ReceiveBuffer buffer(limit);
  std::string held;
  while (input.HasMore()) {
    switch (input.Below(4)) {
      case 0:
        Require(buffer.TakeFront() == held, "a stream is taken as one run");
        held.clear();
        break;
      case 1:
        buffer.Clear();
        held.clear();
        break;
      default: {
        const std::string_view bytes = input.Bytes(input.Below(32));
        const bool fits = held.size() + bytes.size() <= limit;
        held = fits ? held.append(bytes) : std::string();
        Require(buffer.AppendToStream(bytes) == fits, "a stream takes up to its limit");
      }
    }
    Require(buffer.Front() == held, "a stream holds what came and was not taken");
    Require(!buffer.FrontSender(), "a stream has no sender");
  }
}

struct Datagram {
  std::string bytes;
  std::uint16_t port = 0;
};

void UseDatagrams(FuzzInput& input) {
  constexpr std::size_t kMostOverhead = 64;
  const std::size_t limit = input.Below(1024);
  ReceiveBuffer buffer(limit);
  std::deque<Datagram> held;
  std::size_t bytes_held = 0;
  for (std::uint16_t port = 0; input.HasMore(); ++port) {
    if (input.Below(3) == 0) {
      const std::string front = buffer.TakeFront();
      Require(front == (held.empty() ? "" : held.front().bytes), "datagrams are taken in order");
      bytes_held -= front.size();
      if (!held.empty()) held.pop_front();
    } else {
      const std::string_view bytes = input.Bytes(input.Below(128));
      if (buffer.AddDatagram(bytes, {.address = 7, .port = port})) {
        held.push_back({std::string(bytes), port});
        bytes_held += bytes.size();
      } else {
        const std::size_t cost = bytes_held + bytes.size() + (held.size() + 1) * kMostOverhead;
        Require(cost > limit, "a datagram for which there is room is taken");
      }
    }
    Require(bytes_held + held.size() <= limit, "datagrams stay within the limit");
    Require(buffer.Front() == (held.empty() ? "" : held.front().bytes), "the oldest datagram is in front");
    const std::optional<DatagramSender> sender = buffer.FrontSender();
    Require(sender.has_value() == !held.empty(), "a datagram has a sender");
    Require(!sender || sender->port == held.front().port, "the sender is that of the oldest datagram");
  }
}

void UseSendQueue(FuzzInput& input) {
  SendQueue queue;
  std::string unsent;
  std::size_t sent = 0;
  while (input.HasMore()) {
    switch (input.Below(6)) {
      case 0: {
        const std::size_t count = unsent.empty() ? 0 : input.Below(unsent.size() + 1);
        queue.TookFromFront(count);
        unsent.erase(0, count);
        sent += count;
        break;
      }
      case 1: {
        const std::size_t count = input.Byte();
        queue.TookDirectly(count);
        sent += count;
        break;
      }
      case 2: {
        const SendProgress progress = queue.Report();
        Require(progress.sent == static_cast<std::int32_t>(sent), "what was sent is reported once");
        Require(progress.remaining == static_cast<std::int32_t>(unsent.size()), "the rest is reported");
        sent = 0;
        break;
      }
      case 3:
        queue.Clear();
        unsent.clear();
        sent = 0;
        break;
      default: {
        const std::string_view bytes = input.Bytes(input.Below(32));
        queue.Add(bytes);
        unsent += bytes;
      }
    }
    Require(queue.Unsent() == unsent, "the queue holds what the system did not take");
  }
}

void UseLookupBuffers(FuzzInput& input) {
  LookupBuffers buffers;
  std::deque<LookupBuffer*> given_up;
  constexpr std::size_t kRounds = 4;
  for (std::size_t round = 0; round < kRounds && input.HasMore(); ++round) {
    // Each byte is a number of look-ups, so that a short input reaches the limit.
    for (int left = input.Byte(); left > 0; --left) {
      std::unique_ptr<LookupBuffer> buffer = buffers.Take();
      if (given_up.size() == LookupBuffers::kMost) {
        Require(buffer.get() == given_up.front(), "the oldest buffer is used again");
        given_up.pop_front();
      }
      buffer->bytes[0] = buffer->bytes[LookupBuffer::kSize - 1] = 'x';
      if (left % 3 == 0) continue;
      given_up.push_back(buffer.get());
      buffers.GiveUp(std::move(buffer));
    }
    Require(given_up.size() <= LookupBuffers::kMost, "the buffers given up are bounded");
  }
  for (const LookupBuffer* buffer : given_up) delete buffer;
}

void UseNotificationCodes(FuzzInput& input) {
  const auto connection = static_cast<unsigned>(input.Long());
  const auto other = input.Flag() ? connection + input.Below(3) * 8192U : static_cast<unsigned>(input.Long());
  for (const NotificationKind kind : {NotificationKind::kSocket, NotificationKind::kHostLookup}) {
    const unsigned message = NotificationCode::For(kind, connection);
    Require(NotificationCode::IsOne(message) && message >= 0x8000 && message <= 0xBFFF, "codes are in range");
    Require(NotificationCode::KindOf(message) == kind, "a code tells its kind");
    Require(NotificationCode::BelongsTo(message, connection), "a code tells its connection");
    Require(NotificationCode::BelongsTo(message, static_cast<unsigned>(other)) ==
                (other % 8192 == connection % 8192),
            "a code tells other connections from its own");
  }
}

}  // namespace
}  // namespace kesp

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesp::FuzzInput input(data, size);
  switch (input.Below(5)) {
    case 0:
      kesp::UseStream(input);
      break;
    case 1:
      kesp::UseDatagrams(input);
      break;
    case 2:
      kesp::UseSendQueue(input);
      break;
    case 3:
      kesp::UseLookupBuffers(input);
      break;
    default:
      kesp::UseNotificationCodes(input);
  }
  return 0;
}
