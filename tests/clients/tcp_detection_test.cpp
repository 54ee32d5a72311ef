// Detection at the one address of the network transport, through the interfaces that clients use.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/clients/late_object.h"
#include "tests/clients/released_search_fixture.h"
#include "tests/clients/tcp_fixture.h"

namespace kesp::clients {
namespace {

class TcpDetectionTest : public TcpEventsFixture {
 protected:
  // Settings of the client's own, to be found again afterwards.
  TcpDetectionTest() {
    SetTimeOut(5000);
    EXPECT_EQ(Write(tcp_, &_CKespTCP::put_IPType, ipDynamic), S_OK);
  }

  HRESULT AutoDetect(EDetectLevel level = dlAllCommands) {
    return tcp_->AutoDetect(reply_.in_out(), level, &found_);
  }
  void ExpectRestored() {
    EXPECT_EQ(Read(tcp_, &_CKespTCP::get_TimeOutmSecs), 5000);
    EXPECT_EQ(Read(tcp_, &_CKespTCP::get_IPType), ipDynamic);
    EXPECT_EQ(Read(tcp_, &_CKespTCP::get_Protocol), sckTCPProtocol);
  }

  VARIANT_BOOL found_ = 5;
};

TEST_F(TcpDetectionTest, InstrumentAnswers_FoundAtTheFirstCommand) {
  EXPECT_EQ(AutoDetect(), S_OK);
  EXPECT_EQ(found_, VARIANT_TRUE);
  EXPECT_EQ(reply_.str(), kIdentity);
  ExpectRestored();
  Lines own = journal();
  std::erase_if(own, [](const std::wstring& entry) { return !entry.starts_with(L"AutoDetect"); });
  EXPECT_EQ(own, (Lines{L"AutoDetectBegin()",
                        L"AutoDetectUpdate(*IDN?," + InstrumentHost() + L"," +
                            std::to_wstring(InstrumentPort()) + L",&False)",
                        L"AutoDetectEnd()"}));
  EXPECT_EQ(Exchange(L"ECHO x"), L"ECHO x") << "the connection is there to be used";
}

TEST_F(TcpDetectionTest, Abort_EndsTheSearch) {
  recorder_->handlers[L"AutoDetectUpdate"] = [](DISPPARAMS& arguments) {
    *V_BOOLREF(&arguments.rgvarg[0]) = 1;  // true as some clients write it
  };
  EXPECT_EQ(AutoDetect(), S_OK);
  EXPECT_EQ(found_, VARIANT_FALSE);
  EXPECT_EQ(reply_.str(), L"");
  ExpectRestored();
  EXPECT_EQ(recorder_->Count(L"AutoDetectUpdate"), 1U);
  EXPECT_EQ(recorder_->Count(L"SendCompleteEnd"), 0U);
}

TEST_F(TcpDetectionTest, NoAddress_RaisesAfterTheEndIsToldAndEmptiesTheResult) {
  EXPECT_EQ(Write(tcp_, &_CKespTCP::put_IPAddress, L"0.0.0.0"), S_OK);
  *reply_.in_out() = SysAllocString(L"before");
  EXPECT_EQ(RefusalOf(AutoDetect()),
            (Refusal{ERR_INVALID_IP_ADDRESS, L"[CKespTCP - Initialize()]", L"Invalid IP Address"}));
  EXPECT_EQ(found_, VARIANT_FALSE);
  EXPECT_EQ(reply_.str(), L"");
  ExpectRestored();
  EXPECT_EQ(journal(), (Lines{L"AutoDetectBegin()", L"AutoDetectEnd()"}));
}

TEST_F(TcpDetectionTest, LateBound_WithAVariableAndWithoutTheLevel) {
  Value result(5);
  EXPECT_TRUE(LateObject(tcp_).Call(L"AutoDetect", {Variable(result)}).IsTrue());
  EXPECT_EQ(result.text(), kIdentity);
}

class TcpDetectionLastReferenceTest : public ReleasedSearchFixture {};

TEST_P(TcpDetectionLastReferenceTest, Released_TheSearchEndsAllTheSame) {
  SetTarget(tcp_.Get());
  Text result;
  ExpectFoundAllTheSame(result);
  EXPECT_EQ(result.str(), kIdentity);
}

INSTANTIATE_TEST_SUITE_P(Event, TcpDetectionLastReferenceTest,
                         testing::Values(L"AutoDetectBegin", L"ConnectEnd", L"AutoDetectUpdate",
                                         L"SendCompleteEnd", L"DataArrivalEnd", L"AutoDetectEnd"),
                         EventName);

}  // namespace
}  // namespace kesp::clients
