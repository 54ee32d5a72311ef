// Query, QueryBinary and Update over a serial line: every status, and the whole trace.
#include <gtest/gtest.h>

#include "tests/clients/comm_obj_client.h"
#include "tests/clients/serial_fixture.h"
#include "tests/serial_win/bare_port.h"

namespace kesp::clients {
namespace {

class SerialQueryTest : public SerialFixture, protected CommObjClient {
 protected:
  using CommObjClient::bytes_;
  using CommObjClient::reply_;

  SerialQueryTest() {
    port_ = Use<_CKespCOMPort3>(csRS232);
    UseSerialLine(port_);
    wire_.OnBytes("?\r").Reply("KESP\n");
    wire_.OnBytes("garbage\r").Reply("\xFF\n");
    StartTrace();
    // The communication object's own lines alone.
    EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_CreateLogFile, VARIANT_FALSE), S_OK);
  }

  static std::wstring ErrorInfo(const std::wstring& operation, const std::wstring& source,
                                const std::wstring& description) {
    return CommObjClient::ErrorInfo(L"RS-232", operation, source, description);
  }
  void KeepOpen() { EXPECT_EQ(Write(comm_, &_CKespCommObj::put_AutoClose, VARIANT_FALSE), S_OK); }

  const std::wstring open_source_ = L"CKespCOMPort3 - OpenPort() [commCOMControl]";
  const std::wstring no_reply_ =
      L"Timeout waiting for instrument to respond to command on COM" + SerialPortText() + L".";
};

TEST_F(SerialQueryTest, Success) {
  EXPECT_TRUE(Query(L"?"));
  EXPECT_EQ(reply_.str(), L"KESP");
  ExpectStatus(cfrSuccess);
  ExpectTrace({L"Beginning Query()... (command: ?)", L"RS-232: OpenPort()", L"RS-232: WriteLine(?,,)",
               L"RS-232: ReadLine()", L"RS-232: result- KESP", L"RS-232: ClosePort()",
               L"Exiting Query()...(command: ?)"});
  EXPECT_TRUE(QueryBinary(L"?"));
  EXPECT_EQ(bytes_.text(), L"KESP\n");
  ExpectStatus(cfrSuccess);
  ExpectTrace({L"RS-232: OpenPort()", L"RS-232: WriteLine(?,,)", L"RS-232: ReadLineBinary()",
               L"RS-232: ClosePort()"});
  EXPECT_TRUE(Update(L"SETP", L"01", L"20"));
  ExpectStatus(cfrSuccess);
  ExpectTrace({L"Beginning Update()...(command: SETP)", L"RS-232: WriteLine(SETP,01,20)",
               L"RS-232: ClosePort()", L"Exiting Update()...(command: SETP)"});
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "?\r?\rSETP\r");
  EXPECT_TRUE(IsAvailable());
}

TEST_F(SerialQueryTest, Transport_WritesItsLinesInBetween) {
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_CreateLogFile, VARIANT_TRUE), S_OK);
  EXPECT_EQ(Write(comm_, &_CKespCommObj::put_CRBeforeCommand, VARIANT_TRUE), S_OK);
  EXPECT_TRUE(Query(L"?"));
  const std::wstring number = SerialPortText();
  ExpectTrace({L"Beginning Query()... (command: ?)", L"RS-232: OpenPort()",
               L"Opening COM port " + number + L" with settings 9600,N,8,1", L"RS-232: WriteLine(?,,)",
               L"WriteLine...", L"Clearing buffers...", L"Sending CR to clear instrument buffer...",
               L"Clearing buffers...", L"Sending '?\r' on COM port " + number, L"RS-232: ReadLine()",
               L"ReadLine...", L"Received 'KESP\n' (raw) on COM" + number + L"(Asc: 75 69 83 80 10 )",
               L"Received 'KESP' (filtered) on COM" + number, L"RS-232: result- KESP", L"RS-232: ClosePort()",
               L"Closing COM port " + number, L"Closed COM port " + number,
               L"Exiting Query()...(command: ?)"});
}

TEST_F(SerialQueryTest, Silence_IsTimeout) {
  const std::wstring source = L"CKespCOMPort3 - ReadLine()";
  EXPECT_FALSE(Query(L"silent"));
  ExpectStatus(cfrTimeout, source, no_reply_);
  ExpectTrace({L"Beginning Query()... (command: silent)", L"RS-232: OpenPort()",
               L"RS-232: WriteLine(silent,,)", L"RS-232: ReadLine()", L"RS-232: ** ReadLine() timed out **",
               ErrorInfo(L"ReadLine()", source, no_reply_), L"RS-232: ClosePort()",
               L"Exiting Query()...(command: silent)"});
  const std::wstring binary_source = L"CKespCOMPort3 - ReadLineBinary()";
  EXPECT_FALSE(QueryBinary(L"silent"));
  ExpectStatus(cfrTimeout, binary_source, no_reply_);
  ExpectTrace({L"RS-232: OpenPort()", L"RS-232: WriteLine(silent,,)", L"RS-232: ReadLineBinary()",
               L"RS-232: ** ReadLineBinary() timed out ** result- ",
               ErrorInfo(L"ReadLineBinary()", binary_source, no_reply_), L"RS-232: ClosePort()"});
  EXPECT_TRUE(Query(L"?"));
  ExpectStatus(cfrSuccess);
}

TEST_F(SerialQueryTest, InvalidCharacters_AreInvalidData) {
  const std::wstring source = L"CKespCOMPort3 - ReadLine()";
  const std::wstring description = L"Invalid characters received on COM" + SerialPortText() + L".";
  EXPECT_FALSE(Query(L"garbage"));
  ExpectStatus(cfrInvalidData, source, description);
  ExpectTrace({L"Beginning Query()... (command: garbage)", L"RS-232: OpenPort()",
               L"RS-232: WriteLine(garbage,,)", L"RS-232: ReadLine()",
               L"RS-232: ** ReadLine() invalid characters **", ErrorInfo(L"ReadLine()", source, description),
               L"RS-232: ClosePort()", L"Exiting Query()...(command: garbage)"});
  EXPECT_TRUE(QueryBinary(L"garbage")) << "bytes are not checked";
}

TEST_F(SerialQueryTest, HeldPort_IsTriedThreeTimesAndOnceForBytes) {
  const BarePort other(SerialWire::PortName());
  const std::wstring info = ErrorInfo(L"OpenPort()", open_source_, L"Port already open");
  const std::wstring retrying = L"RS-232: ** OpenPort() COM port is already open. Retrying...**";
  const std::wstring timed_out = L"RS-232: ** OpenPort() COM port is already open. Timed out...**";
  EXPECT_FALSE(Query(L"?"));
  ExpectStatus(cfrTimeout, open_source_, L"Port already open");
  ExpectTrace({L"Beginning Query()... (command: ?)", L"RS-232: OpenPort()", retrying, L"RS-232: OpenPort()",
               retrying, L"RS-232: OpenPort()", timed_out, info, L"RS-232: ClosePort()",
               L"Exiting Query()...(command: ?)"});
  EXPECT_FALSE(Update(L"t"));
  ExpectStatus(cfrTimeout, open_source_, L"Port already open");
  ExpectTrace({L"Beginning Update()...(command: t)", retrying, retrying, timed_out, info,
               L"RS-232: ClosePort()", L"Exiting Update()...(command: t)"});
  EXPECT_FALSE(QueryBinary(L"?"));
  ExpectStatus(cfrOtherError, open_source_, L"Port already open");
  ExpectTrace({L"RS-232: OpenPort()", L"RS-232: ** OpenPort() open failed (8005 - Port already open) **",
               info, L"RS-232: ClosePort()"});
}

TEST_F(SerialQueryTest, HeldPort_IsUsedOnceItIsFree) {
  BarePort other(SerialWire::PortName());
  EXPECT_FALSE(Query(L"?"));
  other.Close();
  EXPECT_TRUE(Query(L"?"));
  ExpectStatus(cfrSuccess);
}

TEST_F(SerialQueryTest, MissingPort_IsOtherError) {
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_Port, kMissingPort), S_OK);
  const std::wstring failed = L"RS-232: ** OpenPort() open failed (8002 - Invalid port number) **";
  const std::wstring info = ErrorInfo(L"OpenPort()", open_source_, L"Invalid port number");
  EXPECT_FALSE(Query(L"?"));
  ExpectStatus(cfrOtherError, open_source_, L"Invalid port number");
  ExpectTrace({L"Beginning Query()... (command: ?)", L"RS-232: OpenPort()", failed, info,
               L"RS-232: ClosePort()", L"Exiting Query()...(command: ?)"});
  EXPECT_FALSE(QueryBinary(L"?"));
  ExpectStatus(cfrOtherError, open_source_, L"Invalid port number");
  ExpectTrace({L"RS-232: OpenPort()", failed, info, L"RS-232: ClosePort()"});
  EXPECT_FALSE(Update(L"t"));
  ExpectStatus(cfrOtherError, open_source_, L"Invalid port number");
  ExpectTrace({L"Beginning Update()...(command: t)", info, L"RS-232: ClosePort()",
               L"Exiting Update()...(command: t)"});
}

// The transport raises the number of its own list, which has no status of its own here.
TEST_F(SerialQueryTest, AddressMissing_IsWriteFailed) {
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_ControllerStyle, CS_OMEGA), S_OK);
  const std::wstring source = L"CKespCOMPort3 - WriteLine()";
  const std::wstring description = L"Omega controller address not specified.";
  EXPECT_FALSE(Query(L"PV"));
  ExpectStatus(cfrWriteFailed, source, description);
  ExpectTrace({L"Beginning Query()... (command: PV)", L"RS-232: OpenPort()", L"RS-232: WriteLine(PV,,)",
               L"RS-232: ** WriteLine() write failed (-2147221280 - " + description + L") **",
               ErrorInfo(L"WriteLine()", source, description), L"RS-232: ClosePort()",
               L"Exiting Query()...(command: PV)"});
  EXPECT_FALSE(Update(L"SL", L"", L"100"));
  ExpectStatus(cfrWriteFailed, source, description);
  ExpectTrace({L"Beginning Update()...(command: SL)", L"RS-232: WriteLine(SL,,100)",
               ErrorInfo(L"WriteLine()", source, description), L"RS-232: ClosePort()",
               L"Exiting Update()...(command: SL)"});
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "");
}

TEST_F(SerialQueryTest, AddressedController_AnswersToItsFrame) {
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_ControllerStyle, CS_OMEGA), S_OK);
  wire_
      .OnBytes(
          "\x04"
          "0011PV\x05\r")
      .Reply("0011 25.0\r\n");
  EXPECT_TRUE(Query(L"PV", L"01"));
  EXPECT_EQ(reply_.str(), L"0011 25.0");
}

TEST_F(SerialQueryTest, PortPulledBetween_IsReadFailed) {
  const auto recorder = EventRecorder::Make(__uuidof(__CKespCOMPort3));
  const Connection connection(port_.Get(), __uuidof(__CKespCOMPort3), recorder.Get());
  recorder->handlers[L"ReadBegin"] = [&](DISPPARAMS&) { wire_.Pull(); };
  EXPECT_FALSE(Query(L"silent"));
  ExpectStatus(cfrReadFailed, L"CKespCOMPort3 - ReadLine() [commCOMControl]", L"Error reading comm device");
  recorder->handlers.clear();
  wire_.Reconnect();
  EXPECT_TRUE(Query(L"?"));
  ExpectStatus(cfrSuccess);
}

TEST_F(SerialQueryTest, AutoCloseOff_PortIsKeptAndUsedAgain) {
  KeepOpen();
  EXPECT_TRUE(Query(L"?"));
  EXPECT_FALSE(IsAvailable());
  ExpectTrace({L"Beginning Query()... (command: ?)", L"RS-232: OpenPort()", L"RS-232: WriteLine(?,,)",
               L"RS-232: ReadLine()", L"RS-232: result- KESP", L"Exiting Query()...(command: ?)"});
  EXPECT_TRUE(Query(L"?"));
  ExpectTrace({L"Beginning Query()... (command: ?)", L"Query() - port is already open...",
               L"RS-232: WriteLine(?,,)", L"RS-232: ReadLine()", L"RS-232: result- KESP",
               L"Exiting Query()...(command: ?)"});
  EXPECT_TRUE(Update(L"t"));
  ExpectTrace(
      {L"Beginning Update()...(command: t)", L"RS-232: WriteLine(t,,)", L"Exiting Update()...(command: t)"});
  EXPECT_TRUE(QueryBinary(L"?"));
  ExpectTrace({L"RS-232: OpenPort()", L"RS-232: WriteLine(?,,)", L"RS-232: ReadLineBinary()"});
  EXPECT_FALSE(IsAvailable());
  EXPECT_EQ(Write(comm_, &_CKespCommObj::put_AutoClose, VARIANT_TRUE), S_OK);
  EXPECT_TRUE(Query(L"?"));
  EXPECT_TRUE(IsAvailable());
}

TEST_F(SerialQueryTest, AnotherStyle_ClosesThePort) {
  KeepOpen();
  EXPECT_TRUE(Query(L"?"));
  ExpectTrace(trace_.Messages());
  EXPECT_EQ(WriteByReference(comm_, &_CKespCommObj::put_CommStyle, csTCPIP), S_OK);
  EXPECT_TRUE(IsAvailable());
  ExpectTrace({L"RS-232: ClosePort()"});
  EXPECT_EQ(WriteByReference(comm_, &_CKespCommObj::put_CommStyle, csRS232), S_OK);
  EXPECT_TRUE(Query(L"?"));
  EXPECT_FALSE(IsAvailable());
}

TEST_F(SerialQueryTest, StyleThatIsRefused_ClosesThePortAllTheSame) {
  KeepOpen();
  EXPECT_TRUE(Query(L"?"));
  ExpectTrace(trace_.Messages());
  EXPECT_EQ(RefusalOf(WriteByReference(comm_, &_CKespCommObj::put_CommStyle, 3)),
            (Refusal{ERR_COMM_STYLE_NOT_SUPPORTED, L"[CKespCommObj - CommStyle]",
                     L"The selected communication style is currently not supported"}));
  EXPECT_EQ(Read(comm_, &_CKespCommObj::get_CommStyle), csRS232);
  EXPECT_TRUE(IsAvailable());
  ExpectTrace({L"RS-232: ClosePort()"});
  EXPECT_TRUE(Query(L"?"));
}

TEST_F(SerialQueryTest, FacadesEnd_ClosesThePort) {
  KeepOpen();
  EXPECT_TRUE(Query(L"?"));
  port_.Reset();
  comm_.Reset();
  EXPECT_EQ(BarePort(SerialWire::PortName()).error(), DWORD{ERROR_SUCCESS});
}

}  // namespace
}  // namespace kesp::clients
