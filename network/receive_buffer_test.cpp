// Tests of the buffer of received bytes.
#include "network/receive_buffer.h"

#include <gtest/gtest.h>

namespace kesp {
namespace {

constexpr DatagramSender kSender{.address = 0x0A000007, .port = 30718};

TEST(ReceiveBufferTest, Stream_PiecesMakeOneRunThatIsTakenWhole) {
  ReceiveBuffer buffer;
  EXPECT_EQ(buffer.TakeFront(), "");
  EXPECT_TRUE(buffer.AppendToStream("AB"));
  EXPECT_FALSE(buffer.FrontSender());
  EXPECT_TRUE(buffer.AppendToStream(std::string_view("\0C", 2)));
  EXPECT_EQ(buffer.Front(), std::string_view("AB\0C", 4));
  EXPECT_EQ(buffer.TakeFront(), std::string("AB\0C", 4));
  EXPECT_EQ(buffer.Front(), "");
  EXPECT_TRUE(buffer.AppendToStream("D"));
  EXPECT_EQ(buffer.Front(), "D");
}

TEST(ReceiveBufferTest, Stream_IsHeldUpToTheLimitAndDroppedOneByteOverIt) {
  ReceiveBuffer buffer(8);
  EXPECT_TRUE(buffer.AppendToStream("12345"));
  EXPECT_TRUE(buffer.AppendToStream("678"));
  EXPECT_EQ(buffer.Front(), "12345678");
  EXPECT_FALSE(buffer.AppendToStream("9"));
  EXPECT_EQ(buffer.Front(), "");
  EXPECT_TRUE(buffer.AppendToStream("87654321"));
  EXPECT_FALSE(ReceiveBuffer(3).AppendToStream("1234"));
}

TEST(ReceiveBufferTest, Stream_LimitIs64MebibytesUnlessGiven) {
  ReceiveBuffer buffer;
  EXPECT_TRUE(buffer.AppendToStream(std::string(std::size_t{64} * 1024 * 1024, 'x')));
  EXPECT_FALSE(buffer.AppendToStream("x"));
}

TEST(ReceiveBufferTest, Stream_TakenBetween_TheLimitCountsWhatIsHeld) {
  ReceiveBuffer buffer(8);
  for (int i = 0; i < 10; ++i) {
    EXPECT_TRUE(buffer.AppendToStream("12345678"));
    EXPECT_EQ(buffer.TakeFront().size(), 8U);
  }
}

TEST(ReceiveBufferTest, Stream_TakenWithoutACopy) {
  ReceiveBuffer buffer;
  EXPECT_TRUE(buffer.AppendToStream(std::string(1000, 'x')));
  const char* const bytes = buffer.Front().data();
  const std::string taken = buffer.TakeFront();
  EXPECT_EQ(taken.data(), bytes);
}

TEST(ReceiveBufferTest, Datagrams_AreKeptApartAndHaveTheirSendersBesideThem) {
  ReceiveBuffer buffer;
  EXPECT_FALSE(buffer.FrontSender());
  EXPECT_TRUE(buffer.AddDatagram("", {.address = 1, .port = 2}));
  EXPECT_TRUE(buffer.AddDatagram("B", {.address = 3, .port = 4}));
  EXPECT_EQ(buffer.FrontSender()->address, 1U);
  EXPECT_EQ(buffer.FrontSender()->port, 2U);
  EXPECT_EQ(buffer.TakeFront(), "");
  EXPECT_EQ(buffer.FrontSender()->address, 3U);
  EXPECT_EQ(buffer.FrontSender()->port, 4U);
  EXPECT_EQ(buffer.Front(), "B");
  EXPECT_EQ(buffer.TakeFront(), "B");
  EXPECT_FALSE(buffer.FrontSender());
  EXPECT_EQ(buffer.TakeFront(), "");
}

TEST(ReceiveBufferTest, Datagrams_WithoutRoom_AreDroppedAndTheOthersStay) {
  ReceiveBuffer buffer(1000);
  EXPECT_TRUE(buffer.AddDatagram(std::string(600, 'a'), kSender));
  EXPECT_FALSE(buffer.AddDatagram(std::string(600, 'b'), kSender));
  EXPECT_TRUE(buffer.AddDatagram("c", kSender));
  EXPECT_EQ(buffer.TakeFront(), std::string(600, 'a'));
  EXPECT_EQ(buffer.TakeFront(), "c");
}

TEST(ReceiveBufferTest, Datagrams_Empty_AreBoundedToo) {
  ReceiveBuffer buffer(1000);
  int taken = 0;
  while (taken < 1000 && buffer.AddDatagram("", kSender)) ++taken;
  EXPECT_GT(taken, 0);
  EXPECT_LE(taken, 1000 / static_cast<int>(sizeof(std::string)));
  for (int i = 0; i < taken; ++i) buffer.TakeFront();
  EXPECT_TRUE(buffer.AddDatagram(std::string(900, 'x'), kSender));
}

TEST(ReceiveBufferTest, Clear_FromDatagramsToAStream_ForgetsEverything) {
  ReceiveBuffer buffer(100);
  EXPECT_TRUE(buffer.AddDatagram("A", kSender));
  buffer.Clear();
  EXPECT_EQ(buffer.Front(), "");
  EXPECT_TRUE(buffer.AppendToStream(std::string(100, 'x')));
  EXPECT_EQ(buffer.TakeFront().size(), 100U);
  EXPECT_TRUE(buffer.AppendToStream(std::string(100, 'x')));
}

}  // namespace
}  // namespace kesp
