// Query, QueryBinary and Update over a serial line: each once with success and once with a failure, and what
// closes a port that was kept open.
#include <gtest/gtest.h>

#include "tests/clients/comm_obj_client.h"
#include "tests/clients/late_object.h"
#include "tests/clients/serial_fixture.h"
#include "tests/serial_win/bare_port.h"

namespace kesp::clients {
namespace {

class SerialQueryTest : public testing::Test, protected CommObjClient {
 protected:
  SerialQueryTest() {
    UseSerialLine(port_);
    wire_.OnBytes("?\r").Reply("KESP\n");
  }

  static bool IsFree() { return BarePort(SerialWire::PortName()).error() == ERROR_SUCCESS; }
  void KeepOpen() {
    EXPECT_EQ(Write(comm_, &_CKespCommObj::put_AutoClose, VARIANT_FALSE), S_OK);
    EXPECT_TRUE(Query(L"?"));
    EXPECT_FALSE(IsFree());
  }

  SerialWire wire_;
  ComPtr<_CKespCOMPort3> port_ = Use<_CKespCOMPort3>(csRS232);
};

TEST_F(SerialQueryTest, Success) {
  StartTrace();
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_CreateLogFile, VARIANT_FALSE), S_OK);
  EXPECT_TRUE(Query(L"?"));
  EXPECT_EQ(reply_.str(), L"KESP");
  ExpectStatus(cfrSuccess);
  ExpectTrace({L"Beginning Query()... (command: ?)", L"RS-232: OpenPort()", L"RS-232: WriteLine(?,,)",
               L"RS-232: ReadLine()", L"RS-232: result- KESP", L"RS-232: ClosePort()",
               L"Exiting Query()...(command: ?)"});
  EXPECT_TRUE(QueryBinary(L"?"));
  EXPECT_EQ(bytes_.text(), L"KESP\n");
  ExpectStatus(cfrSuccess);
  EXPECT_TRUE(Update(L"SETP"));
  ExpectStatus(cfrSuccess);
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "?\r?\rSETP\r");
  EXPECT_TRUE(IsFree());
}

TEST_F(SerialQueryTest, Failure) {
  const std::wstring no_reply =
      L"Timeout waiting for instrument to respond to command on COM" + SerialPortText() + L".";
  EXPECT_FALSE(Query(L"silent"));
  ExpectStatus(cfrTimeout, L"CKespCOMPort3 - ReadLine()", no_reply);
  EXPECT_FALSE(QueryBinary(L"silent"));
  ExpectStatus(cfrTimeout, L"CKespCOMPort3 - ReadLineBinary()", no_reply);
  const BarePort other(SerialWire::PortName());
  EXPECT_FALSE(Update(L"t"));
  ExpectStatus(cfrTimeout, L"CKespCOMPort3 - OpenPort() [commCOMControl]", L"Port already open");
}

TEST_F(SerialQueryTest, QueryBinary_EveryKindOfVariableTakesTheBytes) {
  EXPECT_EQ(port_->SetInputMode(imBinary), S_OK);
  ComPtr<IDispatch> dispatch;
  ASSERT_EQ(comm_.As(&dispatch), S_OK);
  const Value cmd(L"?");
  for (const Value& before : {Value(), Value(5), Value(L"text")}) {
    Value result = before;
    EXPECT_TRUE(LateObject(dispatch).Call(L"QueryBinary", {Variable(result), Plain(cmd)}).IsTrue());
    EXPECT_EQ(BytesOf(*result.get()), "KESP\n");
  }
  SAFEARRAY* bytes = NewByteArray("before");
  VARIANT reference = Reference(&bytes);
  VARIANT_BOOL answer = VARIANT_FALSE;
  EXPECT_EQ(comm_->QueryBinary(&reference, Text(L"?").get(), nullptr, nullptr, &answer), S_OK);
  EXPECT_EQ(answer, VARIANT_TRUE);
  V_VT(bytes_.get()) = VT_ARRAY | VT_UI1;
  V_ARRAY(bytes_.get()) = bytes;
  EXPECT_EQ(BytesOf(*bytes_.get()), "KESP\n");
}

TEST_F(SerialQueryTest, QueryBinary_TypedVariableOfTheOtherKind_IsATypeMismatchBeforeAnythingIsSent) {
  BSTR text = nullptr;
  SAFEARRAY* bytes = NewByteArray("before");
  VARIANT_BOOL answer = VARIANT_FALSE;
  for (auto [mode, variable] :
       {std::pair{imBinary, Reference(&text)}, std::pair{imText, Reference(&bytes)}}) {
    EXPECT_EQ(port_->SetInputMode(mode), S_OK);
    const Refusal refusal =
        RefusalOf(comm_->QueryBinary(&variable, Text(L"?").get(), nullptr, nullptr, &answer));
    EXPECT_EQ(refusal.result, ControlError(13));
    const std::wstring reply = mode == imText ? L"text" : L"an array of bytes";
    EXPECT_EQ(refusal.description,
              L"Type mismatch (the reply is " + reply + L"; pass a variable of that type, or a Variant)");
  }
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "");
  SafeArrayDestroy(bytes);
}

TEST_F(SerialQueryTest, SetInputMode_ReachesTheTransport) {
  for (const auto& [mode, type] : {std::pair{imBinary, VT_ARRAY | VT_UI1}, std::pair{imText, int{VT_BSTR}}}) {
    EXPECT_EQ(comm_->SetInputMode(mode), S_OK);
    EXPECT_TRUE(QueryBinary(L"?"));
    EXPECT_EQ(bytes_.type(), type);
  }
}

TEST_F(SerialQueryTest, PortThatIsKept_IsClosedByAnotherStyleAndByTheFacadesEnd) {
  KeepOpen();
  EXPECT_EQ(WriteByReference(comm_, &_CKespCommObj::put_CommStyle, csTCPIP), S_OK);
  EXPECT_TRUE(IsFree());
  EXPECT_EQ(WriteByReference(comm_, &_CKespCommObj::put_CommStyle, csRS232), S_OK);
  KeepOpen();
  port_.Reset();
  comm_.Reset();
  EXPECT_TRUE(IsFree());
}

}  // namespace
}  // namespace kesp::clients
