// Tests of the sender's address as text.
#include "network/datagram_sender.h"

#include <gtest/gtest.h>

namespace kesp {
namespace {

TEST(DatagramSenderTest, AddressText_IsDottedFromTheHighestByteOn) {
  EXPECT_EQ((DatagramSender{.address = 0x0A000007, .port = 9}.AddressText()), L"10.0.0.7");
  EXPECT_EQ((DatagramSender{.address = 0xFFFEFDFC, .port = 9}.AddressText()), L"255.254.253.252");
  EXPECT_EQ(DatagramSender{}.AddressText(), L"0.0.0.0");
}

}  // namespace
}  // namespace kesp
