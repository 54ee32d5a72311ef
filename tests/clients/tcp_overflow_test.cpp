// An instrument that sends more than the client will hold; it runs with an instrument of its own
// (overflow.json).
#include <gtest/gtest.h>

#include "tests/clients/tcp_fixture.h"

namespace kesp::clients {
namespace {

class TcpOverflowTest : public TcpEventsFixture {};

// At most 64 MiB wait for a read; what waits is dropped then, and the read refused.
TEST_F(TcpOverflowTest, MoreThanTheLimit_IsRefusedAndForgotten) {
  ASSERT_TRUE(Initialize());
  SetTimeOut(30000);
  WriteLine(L"OVERFLOW?");
  const Refusal refusal = RefusalOf(ReadLine());
  EXPECT_EQ(refusal.result, ERR_GET_DATA);
  EXPECT_EQ(refusal.source, L"[CKespTCP - ReadLine()]");
  EXPECT_TRUE(refusal.description.starts_with(L"Unable to get data (10055 - ")) << refusal;
  EXPECT_EQ(recorder_->Count(L"ErrorBegin"), 1u);
  EXPECT_EQ(Read(tcp_, &_CKespTCP::get_State), sckError);
  EXPECT_EQ(ReadLine(), ERR_NO_CONNECTION);
  EXPECT_TRUE(Uninitialize());
  ASSERT_TRUE(Initialize());
  EXPECT_EQ(Exchange(L"*IDN?"), L"KESP,OVERFLOW,SIM64,1.0");
}

TEST_F(TcpOverflowTest, JustBelowTheLimit_Arrives) {
  ASSERT_TRUE(Initialize());
  SetTimeOut(30000);
  WriteLine(L"FILL?");
  EXPECT_EQ(RefusalOf(ReadLineBinary()), Refusal{});
  EXPECT_EQ(BytesOf(*bytes_.get()).size(), 67108863u);
}

}  // namespace
}  // namespace kesp::clients
