// Tests of the message numbers of socket notifications.
#include "network/notification_code.h"

#include <gtest/gtest.h>

namespace kesp {
namespace {

constexpr NotificationKind kKinds[] = {NotificationKind::kSocket, NotificationKind::kHostLookup};

TEST(NotificationCodeTest, For_AnyConnection_LiesInTheRangeOfApplications) {
  for (const unsigned connection : {0U, 1U, 8191U, 8192U, 123456789U, 0xFFFFFFFFU}) {
    for (const NotificationKind kind : kKinds) {
      const unsigned message = NotificationCode::For(kind, connection);
      EXPECT_TRUE(NotificationCode::IsOne(message));
      EXPECT_EQ(NotificationCode::KindOf(message), kind);
      EXPECT_TRUE(NotificationCode::BelongsTo(message, connection));
    }
  }
}

TEST(NotificationCodeTest, BelongsTo_OtherConnection_IsFalse) {
  for (const NotificationKind kind : kKinds) {
    const unsigned message = NotificationCode::For(kind, 8191);
    EXPECT_FALSE(NotificationCode::BelongsTo(message, 8190));
    EXPECT_FALSE(NotificationCode::BelongsTo(message, 8192));
    EXPECT_FALSE(NotificationCode::BelongsTo(message, 0));
  }
}

TEST(NotificationCodeTest, IsOne_MessagesOfTheSystem_AreNot) {
  for (const unsigned message : {0U, 0x0012U, 0x0400U, 0x7FFFU, 0xC000U, 0xFFFFU}) {
    EXPECT_FALSE(NotificationCode::IsOne(message)) << message;
  }
}

}  // namespace
}  // namespace kesp
