// Unit tests of Query, QueryBinary and Update over a serial port: opening and closing, success, and the
// traces.
#include <gtest/gtest.h>

#include "commobj/kesp_comm_obj_serial_fixture.h"

namespace kesp {
namespace {

class CKespCommObjSerialTest : public CKespCommObjSerialFixture {};

TEST_F(CKespCommObjSerialTest, Query_Reply_IsReturnedTracedAndThePortClosed) {
  EXPECT_TRUE(Query());
  EXPECT_EQ(result_, L"20.5");
  ExpectStatus(ECommError::cfrSuccess);
  ExpectTrace({L"Beginning Query()... (command: t)", L"RS-232: OpenPort()", L"RS-232: WriteLine(t,,)",
               L"RS-232: ReadLine()", L"RS-232: result- 20.5", L"RS-232: ClosePort()",
               L"Exiting Query()...(command: t)"});
  EXPECT_EQ(calls_, (std::vector<std::string>{"Handshaking 0", kOpened, "ClearOut", "ClearIn", "Output t<0D>",
                                              "Close"}));
}

TEST_F(CKespCommObjSerialTest, QueryBinary_Reply_IsReturnedInTheInputModeAndTracedWithoutFrame) {
  EXPECT_TRUE(QueryBinary());
  EXPECT_EQ(bytes_, BinaryValue(Bytes{'2', '0', '.', '5', '\r', '\n'}));
  ExpectStatus(ECommError::cfrSuccess);
  ExpectTrace({L"RS-232: OpenPort()", L"RS-232: WriteLine(t,,)", L"RS-232: ReadLineBinary()",
               L"RS-232: ClosePort()"});
  comm_->serial().SetInputMode(EInputMode::imText);
  EXPECT_TRUE(QueryBinary());
  EXPECT_EQ(bytes_, BinaryValue(L"20.5\r\n"));
}

TEST_F(CKespCommObjSerialTest, QueryBinary_Silence_IsBinaryTimeoutms) {
  comm_->SetDebugging(false);  // a line of the trace looks at the clock, too
  for (const std::int32_t silence : {100, 450}) {
    comm_->SetBinaryTimeoutms(silence);
    const std::int32_t start = fakes_.clock.tick();
    EXPECT_TRUE(QueryBinary());
    // The reply comes after one millisecond; a reading each before, at and behind the silence.
    EXPECT_EQ(fakes_.clock.tick() - start, silence + 3);
  }
}

TEST_F(CKespCommObjSerialTest, Update_Sent_IsASuccessWithoutReading) {
  EXPECT_TRUE(Update(L"SETP 20"));
  ExpectStatus(ECommError::cfrSuccess);
  EXPECT_EQ(ports_.line.written, "SETP 20\r");
  ExpectTrace({L"Beginning Update()...(command: SETP 20)", L"RS-232: WriteLine(SETP 20,,)",
               L"RS-232: ClosePort()", L"Exiting Update()...(command: SETP 20)"});
}

TEST_F(CKespCommObjSerialTest, OmegaArguments_AreFramedAndTraced) {
  const std::string frame =
      "\x04"
      "0011\x02SL100\x03\x2D\r";
  comm_->serial().SetControllerStyle(EKespControllerStyle3::CS_OMEGA);
  ports_.line.Answer(frame, "7\r\n");
  EXPECT_TRUE(comm_->Query(result_, L"SL", L"01", L"100"));
  EXPECT_EQ(result_, L"7");
  EXPECT_TRUE(comm_->Update(L"SL", L"01", L"100"));
  EXPECT_TRUE(comm_->QueryBinary(bytes_, L"SL", L"01", L"100"));
  EXPECT_EQ(ports_.line.writes, std::vector<std::string>(3, frame));
  Lines writes;
  for (const std::wstring& line : NewTrace()) {
    if (line.starts_with(L"RS-232: WriteLine(")) writes.push_back(line);
  }
  EXPECT_EQ(writes, Lines(3, L"RS-232: WriteLine(SL,01,100)"));
}

TEST_F(CKespCommObjSerialTest, CRBeforeCommand_LoneCarriageReturnGoesFirst) {
  comm_->SetCRBeforeCommand(true);
  EXPECT_TRUE(Query());
  EXPECT_TRUE(QueryBinary());
  EXPECT_TRUE(Update());
  EXPECT_EQ(ports_.line.written, "\rt\r\rt\r\rt\r");
}

TEST_F(CKespCommObjSerialTest, AutoCloseOff_PortIsKeptAndUsedAgainUntilItIsOnAgain) {
  comm_->SetAutoClose(false);
  EXPECT_TRUE(Query());
  NewTrace();
  EXPECT_TRUE(Query());
  ExpectTrace({L"Beginning Query()... (command: t)", L"Query() - port is already open...",
               L"RS-232: WriteLine(t,,)", L"RS-232: ReadLine()", L"RS-232: result- 20.5",
               L"Exiting Query()...(command: t)"});
  EXPECT_TRUE(Update());
  ExpectTrace(
      {L"Beginning Update()...(command: t)", L"RS-232: WriteLine(t,,)", L"Exiting Update()...(command: t)"});
  EXPECT_EQ(Calls(kOpened), 1);
  EXPECT_EQ(Calls("Close"), 0);
  // That one opens anew every time.
  EXPECT_TRUE(QueryBinary());
  ExpectTrace({L"RS-232: OpenPort()", L"RS-232: WriteLine(t,,)", L"RS-232: ReadLineBinary()"});
  EXPECT_EQ(Calls(kOpened), 2);
  comm_->SetAutoClose(true);
  EXPECT_TRUE(Query());
  EXPECT_EQ(Calls(kOpened), 2);
  EXPECT_FALSE(ports_.line.open);
  EXPECT_TRUE(Query());
  EXPECT_EQ(Calls(kOpened), 3);
}

TEST_F(CKespCommObjSerialTest, AutoCloseOff_UpdateComesFirst_PortIsKeptForTheNext) {
  comm_->SetAutoClose(false);
  EXPECT_TRUE(Update());
  EXPECT_TRUE(Update());
  EXPECT_EQ(Calls(kOpened), 1);
}

TEST_F(CKespCommObjSerialTest, AutoCloseOff_QueryBinaryCannotReopen_NextQueryOpensAnew) {
  comm_->SetAutoClose(false);
  EXPECT_TRUE(Query());
  ports_.line.open_failures = {8005, 0};
  EXPECT_FALSE(QueryBinary());
  EXPECT_TRUE(Query());
  EXPECT_TRUE(ports_.line.open);
}

TEST_F(CKespCommObjSerialTest, CommStyleSet_ClosesThePortFirstAlsoWhenRefusedOrTheSame) {
  comm_->SetAutoClose(false);
  std::ptrdiff_t opened = 0;
  for (const std::int32_t style : {1, 2, -1, 0, 3, -2}) {
    SCOPED_TRACE(style);
    comm_->SetCommStyle(ECommStyle::csRS232);
    EXPECT_TRUE(Query());
    EXPECT_EQ(Calls(kOpened), ++opened);
    NewTrace();
    const Raised raised = RaisedBy([&] { comm_->SetCommStyle(static_cast<ECommStyle>(style)); });
    const bool refused = style < -1 || style > 2;
    EXPECT_EQ(raised.number, refused ? comm_obj_error::ERR_COMM_STYLE_NOT_SUPPORTED : 0);
    EXPECT_EQ(static_cast<std::int32_t>(comm_->CommStyle()), refused ? 0 : style);
    ExpectTrace({L"RS-232: ClosePort()"});
    EXPECT_FALSE(ports_.line.open);
  }
}

TEST_F(CKespCommObjSerialTest, CommStyleSet_PortTheClientOpenedStaysOpen) {
  comm_->serial().OpenPort();
  comm_->SetCommStyle(ECommStyle::csTCPIP);
  EXPECT_TRUE(ports_.line.open);
  ExpectTrace({});
}

TEST_F(CKespCommObjSerialTest, Released_OpenPortIsClosedWithoutALineOfItsOwn) {
  comm_->SetAutoClose(false);
  EXPECT_TRUE(Query());
  const std::wstring file = comm_->DebugFilename();
  const std::string trace = fakes_.files.Content(file);
  comm_.reset();
  EXPECT_FALSE(ports_.line.open);
  EXPECT_EQ(fakes_.files.Content(file), trace);
}

TEST_F(CKespCommObjSerialTest, Modem_IsPointedAtTheInstrumentBeforeTheCommand) {
  comm_->serial().SetUseRFModem(true);
  comm_->serial().SetInstrAddr(26);
  ports_.line.ConfirmAddress26();
  EXPECT_TRUE(Query());
  EXPECT_TRUE(QueryBinary());
  EXPECT_TRUE(Update());
  // It still points there.
  EXPECT_EQ(ports_.line.writes, (std::vector<std::string>{"+++", "ATDH0\r", "ATDL1A\r", "ATWR\r", "ATCN\r",
                                                          "t\r", "t\r", "t\r"}));
  EXPECT_EQ(Trace()[2], L"RS-232: WriteLine(t,,)") << "pointing it has no line";
}

TEST_F(CKespCommObjSerialTest, Modem_DoesNotAnswer_StatusStaysAndNothingIsSentOrTold) {
  comm_->serial().SetUseRFModem(true);
  comm_->serial().SetInstrAddr(26);
  EXPECT_FALSE(Query());
  ExpectStatus(ECommError::cfrOtherError);
  EXPECT_EQ(ports_.line.written, "+++");
  ExpectTrace({L"Beginning Query()... (command: t)", L"RS-232: OpenPort()", L"RS-232: ClosePort()",
               L"Exiting Query()...(command: t)"});
  EXPECT_FALSE(QueryBinary());
  EXPECT_FALSE(Update());
  ExpectStatus(ECommError::cfrOtherError);
}

TEST_F(CKespCommObjSerialTest, TransportLogOn_BothWriteIntoOneFileInOrder) {
  comm_->SetDebugging(true);
  EXPECT_TRUE(Update());
  ExpectTrace({L"Beginning Update()...(command: t)", L"Opening COM port 1 with settings 9600,N,8,1",
               L"RS-232: WriteLine(t,,)", L"WriteLine...", L"Clearing buffers...",
               L"Sending 't\r' on COM port 1", L"RS-232: ClosePort()", L"Closing COM port 1",
               L"Closed COM port 1", L"Exiting Update()...(command: t)"});
}

TEST_F(CKespCommObjSerialTest, HandlerDuringOperation_SeesOtherErrorAndMayQueryItself) {
  ports_.line.Answer("inner\r", "1\r\n");
  std::wstring inner;
  serial_events_.handlers[L"WriteBegin"] = [&] {
    serial_events_.handlers.clear();
    EXPECT_EQ(comm_->CommError(), ECommError::cfrOtherError);
    EXPECT_TRUE(comm_->Query(inner, L"inner"));
  };
  // The inner query closes the port, so the outer one has nothing to write to.
  EXPECT_FALSE(Query());
  EXPECT_EQ(inner, L"1");
  EXPECT_EQ(comm_->CommError(), ECommError::cfrWriteFailed);
}

TEST_F(CKespCommObjSerialTest, DebuggingOff_NothingIsWritten) {
  comm_->SetDebugging(false);
  EXPECT_TRUE(Query());
  EXPECT_TRUE(QueryBinary());
  EXPECT_TRUE(Update());
  ports_.line.open_failures = {8005};
  EXPECT_FALSE(Query());
  EXPECT_TRUE(fakes_.files.files().empty());
}

}  // namespace
}  // namespace kesp
