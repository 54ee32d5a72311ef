// DetectInstrument and SetInputMode of the communication object, through the interfaces that clients use.
#include <gtest/gtest.h>

#include "tests/clients/comm_obj_fixture.h"
#include "tests/clients/late_object.h"
#include "tests/win/box_reader.h"

namespace kesp::clients {
namespace {

constexpr wchar_t kIdentity[] = L"KESP,7100,SIM00001,1.0";

class CommObjDetectionTest : public CommObjFixture {
 protected:
  void SetStyle(ECommStyle style) {
    EXPECT_EQ(WriteByReference(comm_, &_CKespCommObj::put_CommStyle, style), S_OK);
  }
  Refusal Detect(EDetectLevel level = dlAllCommands) {
    found_ = 5;
    return RefusalOf(comm_->DetectInstrument(result_.in_out(), level, &found_));
  }

  Text result_{L"before"};
  VARIANT_BOOL found_ = VARIANT_FALSE;
};

TEST_F(CommObjDetectionTest, Network_InstrumentAnswers_IsFound) {
  EXPECT_EQ(Detect(), Refusal{});
  EXPECT_EQ(found_, VARIANT_TRUE);
  EXPECT_EQ(result_.str(), kIdentity);
  ExpectStatus(cfrSuccess);
  EXPECT_EQ(Read(tcp_, &_CKespTCP::get_State), sckClosed);
  EXPECT_TRUE(Query(L"*VER"));
  EXPECT_EQ(reply_.str(), L"1.0");
}

TEST_F(CommObjDetectionTest, Network_Failure_IsShownAndGivesFalse) {
  EXPECT_EQ(Write(tcp_, &_CKespTCP::put_IPAddress, L"0.0.0.0"), S_OK);
  BoxReader box(L"Kesp Communications Error", Press(IDOK));
  EXPECT_EQ(Detect(), Refusal{});
  EXPECT_EQ(found_, VARIANT_FALSE);
  EXPECT_EQ(result_.str(), L"");
  ASSERT_EQ(box.Contents().texts.size(), 1U);
  EXPECT_EQ(box.Contents().texts[0],
            L"An error occurred while attempting to detect instrument.\r\n"
            L"Error: -2147221264 - Invalid IP Address\r\n"
            L"([CKespTCP - Initialize()])");
  ExpectStatus(cfrSuccess);
}

TEST_F(CommObjDetectionTest, Serial_PortIsNotThere_NothingIsFound) {
  SetStyle(csRS232);
  ComPtr<IDispatch> transport;
  EXPECT_EQ(comm_->get_CommObject(&transport), S_OK);
  const LateObject port(transport);
  EXPECT_EQ(port.Put(L"Port", Plain(Value(99))).result, S_OK);
  EXPECT_EQ(Detect(dlSCPIOnly), Refusal{});
  EXPECT_EQ(found_, VARIANT_FALSE);
  ExpectStatus(cfrSuccess);
}

TEST_F(CommObjDetectionTest, NoTransport_RaisesInsteadOfShowing) {
  SetStyle(csNone);
  EXPECT_EQ(Detect(), (Refusal{ERR_NO_COMM_OBJECT, L"[CKespCommObj - DetectInstrument()]",
                               L"Communications object not initialized"}));
  EXPECT_EQ(found_, VARIANT_FALSE);
  EXPECT_EQ(
      RefusalOf(comm_->SetInputMode(imBinary)),
      (Refusal{ERR_NO_COMM_OBJECT, L"[CKespCommObj - Update()]", L"Communications object not initialized"}));
}

TEST_F(CommObjDetectionTest, LateBound_WithAVariableAndWithoutTheLevel) {
  const LateObject late(comm_);
  Value result;
  EXPECT_TRUE(late.Call(L"DetectInstrument", {Variable(result)}).IsTrue());
  EXPECT_EQ(result.text(), kIdentity);
}

TEST_F(CommObjDetectionTest, SetInputMode_LeavesOtherErrorUntilTheNextExchange) {
  for (const ECommStyle style : {csRS232, csTCPIP, csIEEE}) {
    SetStyle(csTCPIP);
    EXPECT_TRUE(Query(L"*VER"));
    ExpectStatus(cfrSuccess);
    SetStyle(style);
    EXPECT_EQ(comm_->SetInputMode(imBinary), S_OK);
    ExpectStatus(cfrOtherError);
  }
}

}  // namespace
}  // namespace kesp::clients
