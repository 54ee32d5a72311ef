// The number of a window message that carries a socket notification.
#pragma once

namespace kesp {

// Which system service a notification comes from.
enum class NotificationKind : unsigned { kSocket = 0, kHostLookup = 1 };

// Messages that belong to an earlier connection may still be queued when the next one is under way, and the
// system gives the same socket handles out again; so each connection has message numbers of its own. They are
// used again after 8192 connections. All lie in the range that the system leaves to applications, 0x8000 to
// 0xBFFF.
class NotificationCode {
 public:
  static constexpr unsigned kFirst = 0x8000;
  static constexpr unsigned kLast = 0xBFFF;

  // The message number for notifications of that kind of the connection with that running number.
  static constexpr unsigned For(NotificationKind kind, unsigned connection) {
    return kFirst + (connection % kConnections) * kKinds + static_cast<unsigned>(kind);
  }

  static constexpr bool IsOne(unsigned message) { return message >= kFirst && message <= kLast; }

  static constexpr NotificationKind KindOf(unsigned message) {
    return static_cast<NotificationKind>((message - kFirst) % kKinds);
  }

  static constexpr bool BelongsTo(unsigned message, unsigned connection) {
    return (message - kFirst) / kKinds == connection % kConnections;
  }

 private:
  static constexpr unsigned kKinds = 2;
  static constexpr unsigned kConnections = (kLast - kFirst + 1) / kKinds;
};

}  // namespace kesp
