// How long the network transport waits, and that no instrument can hold it for longer.
#include <gtest/gtest.h>

#include <functional>

#include "tests/clients/tcp_fixture.h"

namespace kesp::clients {
namespace {

// Upper bounds leave three seconds for a busy machine.
class TcpTimeoutsTest : public TcpEventsFixture {
 protected:
  DWORD TimeOf(const std::function<void()>& call) {
    const DWORD start = GetTickCount();
    call();
    return GetTickCount() - start;
  }
};

TEST_F(TcpTimeoutsTest, Silent_EndsAfterThreeToFourSeconds) {
  ASSERT_TRUE(Initialize());
  WriteLine(L"SILENT?");
  const DWORD elapsed = TimeOf([&] {
    EXPECT_EQ(RefusalOf(ReadLine()), (Refusal{ERR_TIMEOUT, L"[CKespTCP - ReadLine()]", L"Timeout"}));
  });
  EXPECT_GE(elapsed, 2990u);
  EXPECT_LT(elapsed, 7000u);
}

TEST_F(TcpTimeoutsTest, ShortTimeOut_EndsWithTheSecond) {
  ASSERT_TRUE(Initialize());
  SetTimeOut(1);
  WriteLine(L"SILENT?");
  const DWORD elapsed = TimeOf([&] {
    EXPECT_EQ(RefusalOf(ReadLineBinary()),
              (Refusal{ERR_TIMEOUT, L"[CKespTCP - ReadLineBinary()]", L"Timeout"}));
  });
  EXPECT_LT(elapsed, 4000u);
}

TEST_F(TcpTimeoutsTest, TimedOut_PartStaysForTheNextRead) {
  ASSERT_TRUE(Initialize());
  Write(tcp_, &_CKespTCP::put_EOSChar, L"!");
  SetTimeOut(1000);
  WriteLine(L"ECHO part");
  EXPECT_EQ(ReadLine(), ERR_TIMEOUT);
  EXPECT_EQ(reply_.str(), L"");
  EXPECT_EQ(Exchange(L"ECHO rest!"), L"ECHO part ECHO rest!");
}

TEST_F(TcpTimeoutsTest, Refused_EndsAfterOneAttempt) {
  const RefusingPort nobody;
  Write(tcp_, &_CKespTCP::put_Port, nobody.number());
  SetTimeOut(2000);
  VARIANT_BOOL answer = VARIANT_TRUE;
  const DWORD elapsed = TimeOf([&] { EXPECT_EQ(tcp_->Initialize(&answer), ERR_TIMEOUT); });
  EXPECT_GE(elapsed, 1990u);
  EXPECT_LT(elapsed, 6000u);
}

TEST_F(TcpTimeoutsTest, EndlessTrickleWithoutEnd_EndsInTime) {
  ASSERT_TRUE(Initialize());
  Write(tcp_, &_CKespTCP::put_EOSChar, L"!");
  SetTimeOut(1000);
  WriteLine(L"FLOOD?");
  DWORD elapsed = TimeOf([&] {
    const HRESULT result = ReadLine();
    // On a fast machine the flood reaches the limit of what may wait before the time is up.
    EXPECT_TRUE(result == ERR_TIMEOUT || result == ERR_GET_DATA) << std::hex << result;
  });
  EXPECT_LT(elapsed, 5000u);
  elapsed = TimeOf([&] { EXPECT_TRUE(Uninitialize()); });
  EXPECT_LT(elapsed, 3000u);
  SetTimeOut(3000);
  ASSERT_TRUE(Initialize());
  Write(tcp_, &_CKespTCP::put_EOSChar, L"\r");
  EXPECT_EQ(Exchange(L"*IDN?"), L"KESP,TORTURE,SIM00666,1.0");
}

TEST_F(TcpTimeoutsTest, QuietGapThatNeverComes_EndsInTime) {
  ASSERT_TRUE(Initialize());
  Write(tcp_, &_CKespTCP::put_TerminateOnEOS, VARIANT_FALSE);
  SetTimeOut(1000);
  WriteLine(L"ECHO once");
  const DWORD elapsed = TimeOf([&] { EXPECT_EQ(ReadLineBinary(60000), ERR_TIMEOUT); });
  EXPECT_GE(elapsed, 990u);
  EXPECT_LT(elapsed, 5000u);
}

TEST_F(TcpTimeoutsTest, PeerCloses_ReadEndsInTime) {
  for (const wchar_t* cmd : {L"CLOSE?", L"RESET?", L"PARTCLOSE?"}) {
    SetTimeOut(3000);
    ASSERT_TRUE(Initialize());
    SetTimeOut(1000);
    WriteLine(cmd);
    const DWORD elapsed = TimeOf([&] {
      const HRESULT result = ReadLine();
      EXPECT_TRUE(result == ERR_TIMEOUT || result == ERR_NO_CONNECTION) << std::hex << result;
    });
    EXPECT_LT(elapsed, 5000u);
    EXPECT_NE(Read(tcp_, &_CKespTCP::get_State), sckConnected);
    EXPECT_EQ(RefusalOf(WriteLine(L"t")).result, ERR_NO_CONNECTION);
    EXPECT_TRUE(Uninitialize());
  }
}

}  // namespace
}  // namespace kesp::clients
