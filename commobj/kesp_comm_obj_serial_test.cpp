// Unit tests of Query, QueryBinary and Update over a serial port: opening and closing, success, and the
// traces.
#include <gtest/gtest.h>

#include <algorithm>

#include "commobj/kesp_comm_obj_fixture.h"
#include "support/lines_fixture.h"

namespace kesp {
namespace {

class CKespCommObjSerialTest : public KespCommObjFixture {
 protected:
  CKespCommObjSerialTest() {
    StartTrace();
    comm_->serial().SetCreateLogFile(false);
    comm_->serial().SetBaudRate(EKespBaudRate3::br9600);
    fakes_.clock.SetStepPerReading(1);
    ports_.line.record = [this](const std::string& call) { calls_.push_back(call); };
    ports_.line.Answer("t\r", "20.5\r\n");
  }
  ~CKespCommObjSerialTest() override {
    ports_.line.record = [](const std::string&) {};
  }

  bool Query(const std::wstring& cmd = L"t") { return comm_->Query(result_, cmd); }
  bool QueryBinary(const std::wstring& cmd = L"t") { return comm_->QueryBinary(bytes_, cmd); }

  // The lines that were traced since the last call.
  Lines NewTrace() {
    const Lines all = Trace();
    const Lines fresh(all.begin() + static_cast<std::ptrdiff_t>(traced_), all.end());
    traced_ = all.size();
    return fresh;
  }
  std::ptrdiff_t Calls(const std::string& call) const {
    return std::count(calls_.begin(), calls_.end(), call);
  }
  void ExpectSuccess() {
    EXPECT_EQ(comm_->CommError(), ECommError::cfrSuccess);
    EXPECT_EQ(comm_->CommErrorSource(), L"");
    EXPECT_EQ(comm_->CommErrorDescr(), L"");
    EXPECT_TRUE(fakes_.user.boxes().empty());
  }

  static constexpr char kOpened[] = "Open COM1 9600,N,8,1";
  std::wstring result_ = L"before";
  BinaryValue bytes_;
  std::vector<std::string> calls_;
  std::size_t traced_ = 0;
};

TEST_F(CKespCommObjSerialTest, Query_Reply_IsReturnedTracedAndThePortClosed) {
  EXPECT_TRUE(Query());
  EXPECT_EQ(result_, L"20.5");
  ExpectSuccess();
  EXPECT_EQ(Trace(), (Lines{L"Beginning Query()... (command: t)", L"RS-232: OpenPort()",
                            L"RS-232: WriteLine(t,,)", L"RS-232: ReadLine()", L"RS-232: result- 20.5",
                            L"RS-232: ClosePort()", L"Exiting Query()...(command: t)"}));
  EXPECT_EQ(calls_, (std::vector<std::string>{"Handshaking 0", kOpened, "ClearOut", "ClearIn", "Output t<0D>",
                                              "Close"}));
}

TEST_F(CKespCommObjSerialTest, QueryBinary_Reply_IsReturnedAsBytesAndTracedWithoutFrame) {
  comm_->serial().SetInputMode(EInputMode::imBinary);
  EXPECT_TRUE(QueryBinary());
  EXPECT_EQ(bytes_, BinaryValue(Bytes{'2', '0', '.', '5', '\r', '\n'}));
  ExpectSuccess();
  EXPECT_EQ(Trace(), (Lines{L"RS-232: OpenPort()", L"RS-232: WriteLine(t,,)", L"RS-232: ReadLineBinary()",
                            L"RS-232: ClosePort()"}));
  EXPECT_FALSE(ports_.line.open);
}

TEST_F(CKespCommObjSerialTest, QueryBinary_TextMode_ReplyIsText) {
  EXPECT_TRUE(QueryBinary());
  EXPECT_EQ(bytes_, BinaryValue(L"20.5\r\n"));
}

TEST_F(CKespCommObjSerialTest, QueryBinary_Silence_IsBinaryTimeoutms) {
  comm_->serial().SetInputMode(EInputMode::imBinary);
  for (const std::int32_t silence : {100, 450}) {
    comm_->SetBinaryTimeoutms(silence);
    comm_->SetDebugging(false);  // a line of the trace looks at the clock, too
    const std::int32_t start = fakes_.clock.tick();
    EXPECT_TRUE(QueryBinary());
    // The reply comes after one millisecond; a reading each before, at and behind the silence.
    EXPECT_EQ(fakes_.clock.tick() - start, silence + 3);
  }
}

TEST_F(CKespCommObjSerialTest, Update_Sent_IsASuccessWithoutReading) {
  EXPECT_TRUE(comm_->Update(L"SETP 20"));
  ExpectSuccess();
  EXPECT_EQ(ports_.line.written, "SETP 20\r");
  EXPECT_EQ(Trace(), (Lines{L"Beginning Update()...(command: SETP 20)", L"RS-232: WriteLine(SETP 20,,)",
                            L"RS-232: ClosePort()", L"Exiting Update()...(command: SETP 20)"}));
  EXPECT_FALSE(ports_.line.open);
}

TEST_F(CKespCommObjSerialTest, OmegaArguments_AreFramedAndTraced) {
  comm_->serial().SetControllerStyle(EKespControllerStyle3::CS_OMEGA);
  ports_.line.Answer(
      "\x04"
      "0011PV\x05\r",
      "7\r\n");
  EXPECT_TRUE(comm_->Query(result_, L"PV", L"01"));
  EXPECT_EQ(result_, L"7");
  EXPECT_TRUE(comm_->Update(L"SL", L"01", L"100"));
  EXPECT_EQ(ports_.line.writes.back(),
            "\x04"
            "0011\x02SL100\x03\x2D\r");
  ports_.line.Answer(ports_.line.writes.back(), "8\r\n");
  EXPECT_TRUE(comm_->QueryBinary(bytes_, L"SL", L"01", L"100"));
  Lines writes;
  for (const std::wstring& line : Trace()) {
    if (line.starts_with(L"RS-232: WriteLine(")) writes.push_back(line);
  }
  EXPECT_EQ(writes, (Lines{L"RS-232: WriteLine(PV,01,)", L"RS-232: WriteLine(SL,01,100)",
                           L"RS-232: WriteLine(SL,01,100)"}));
}

TEST_F(CKespCommObjSerialTest, CRBeforeCommand_LoneCarriageReturnGoesFirst) {
  comm_->SetCRBeforeCommand(true);
  EXPECT_TRUE(Query());
  EXPECT_TRUE(QueryBinary());
  EXPECT_TRUE(comm_->Update(L"t"));
  EXPECT_EQ(ports_.line.written, "\rt\r\rt\r\rt\r");
}

TEST_F(CKespCommObjSerialTest, AutoCloseOff_SecondQueryUsesTheOpenPort) {
  comm_->SetAutoClose(false);
  EXPECT_TRUE(Query());
  EXPECT_TRUE(ports_.line.open);
  NewTrace();
  EXPECT_TRUE(Query());
  EXPECT_EQ(NewTrace(), (Lines{L"Beginning Query()... (command: t)", L"Query() - port is already open...",
                               L"RS-232: WriteLine(t,,)", L"RS-232: ReadLine()", L"RS-232: result- 20.5",
                               L"Exiting Query()...(command: t)"}));
  EXPECT_EQ(Calls(kOpened), 1);
  EXPECT_EQ(Calls("Close"), 0);
}

TEST_F(CKespCommObjSerialTest, AutoCloseOff_UpdateUsesTheOpenPortWithoutALine) {
  comm_->SetAutoClose(false);
  EXPECT_TRUE(comm_->Update(L"a"));
  EXPECT_TRUE(comm_->Update(L"b"));
  EXPECT_EQ(Calls(kOpened), 1);
  EXPECT_EQ(Trace(), (Lines{L"Beginning Update()...(command: a)", L"RS-232: WriteLine(a,,)",
                            L"Exiting Update()...(command: a)", L"Beginning Update()...(command: b)",
                            L"RS-232: WriteLine(b,,)", L"Exiting Update()...(command: b)"}));
}

TEST_F(CKespCommObjSerialTest, AutoCloseOff_QueryBinaryOpensAnewEveryTime) {
  comm_->SetAutoClose(false);
  EXPECT_TRUE(Query());
  NewTrace();
  EXPECT_TRUE(QueryBinary());
  EXPECT_EQ(NewTrace(),
            (Lines{L"RS-232: OpenPort()", L"RS-232: WriteLine(t,,)", L"RS-232: ReadLineBinary()"}));
  EXPECT_EQ(Calls(kOpened), 2);
  EXPECT_TRUE(ports_.line.open);
}

TEST_F(CKespCommObjSerialTest, AutoCloseOff_QueryBinaryCannotReopen_NextQueryOpensAnew) {
  comm_->SetAutoClose(false);
  EXPECT_TRUE(Query());
  ports_.line.open_failures = {8005, 0};
  EXPECT_FALSE(QueryBinary());
  EXPECT_TRUE(Query());
  EXPECT_TRUE(ports_.line.open);
}

TEST_F(CKespCommObjSerialTest, AutoCloseOnAgain_NextOperationClosesThePort) {
  comm_->SetAutoClose(false);
  EXPECT_TRUE(Query());
  comm_->SetAutoClose(true);
  EXPECT_TRUE(Query());
  EXPECT_EQ(Calls(kOpened), 1);
  EXPECT_FALSE(ports_.line.open);
  EXPECT_TRUE(Query());
  EXPECT_EQ(Calls(kOpened), 2);
}

TEST_F(CKespCommObjSerialTest, CommStyleSet_ClosesThePortFirstAlsoWhenRefusedOrTheSame) {
  for (const std::int32_t style : {1, 2, -1, 0, 3, -2}) {
    SCOPED_TRACE(style);
    comm_->SetCommStyle(ECommStyle::csRS232);
    comm_->SetAutoClose(false);
    EXPECT_TRUE(Query());
    NewTrace();
    const Raised raised = RaisedBy([&] { comm_->SetCommStyle(static_cast<ECommStyle>(style)); });
    const bool refused = style < -1 || style > 2;
    EXPECT_EQ(raised.number, refused ? comm_obj_error::ERR_COMM_STYLE_NOT_SUPPORTED : 0);
    EXPECT_EQ(static_cast<std::int32_t>(comm_->CommStyle()), refused ? 0 : style);
    EXPECT_EQ(NewTrace(), (Lines{L"RS-232: ClosePort()"}));
    EXPECT_FALSE(ports_.line.open);
  }
}

TEST_F(CKespCommObjSerialTest, CommStyleSet_PortTheClientOpenedStaysOpen) {
  comm_->serial().OpenPort();
  comm_->SetCommStyle(ECommStyle::csTCPIP);
  EXPECT_TRUE(ports_.line.open);
  EXPECT_EQ(Trace(), Lines{});
}

TEST_F(CKespCommObjSerialTest, CommStyleSetAndBack_NextQueryOpensAnew) {
  comm_->SetAutoClose(false);
  EXPECT_TRUE(Query());
  comm_->SetCommStyle(ECommStyle::csIEEE);
  comm_->SetCommStyle(ECommStyle::csRS232);
  EXPECT_TRUE(Query());
  EXPECT_EQ(Calls(kOpened), 2);
}

TEST_F(CKespCommObjSerialTest, Released_OpenPortIsClosedWithoutALineOfItsOwn) {
  comm_->SetAutoClose(false);
  EXPECT_TRUE(Query());
  NewTrace();
  const std::wstring file = comm_->DebugFilename();
  comm_.reset();
  EXPECT_FALSE(ports_.line.open);
  EXPECT_EQ(TraceLines(fakes_.files.Content(file)).size(), traced_);
}

// Closing releases the switch: clearing both buffers, the sequence, and the look that sees it gone.
TEST_F(CKespCommObjSerialTest, CannotClose_OutcomeStaysAndPortIsClosed) {
  comm_->serial().SetUseSmartSwitch(true);
  const int before = ports_.line.calls;
  EXPECT_TRUE(Query());
  const int calls = ports_.line.calls - before;
  for (int of_closing = 0; of_closing < 4; ++of_closing) {
    SCOPED_TRACE(of_closing);
    calls_.clear();
    ports_.line.FailCall(calls - of_closing, 8012);
    EXPECT_TRUE(Query());
    EXPECT_LE(ports_.line.fail_at, ports_.line.calls) << "nothing failed";
    EXPECT_EQ(result_, L"20.5");
    ExpectSuccess();
    EXPECT_FALSE(ports_.line.open);
    EXPECT_EQ(calls_.back(), "Close");
  }
}

TEST_F(CKespCommObjSerialTest, Modem_IsPointedAtTheInstrumentBeforeTheCommand) {
  comm_->serial().SetUseRFModem(true);
  comm_->serial().SetInstrAddr(26);
  for (const char* command : {"+++", "ATDH0\r", "ATDL1A\r", "ATWR\r", "ATCN\r"}) {
    ports_.line.Answer(command, "OK\r");
  }
  ports_.line.Answer("t\r", "20.5\r");
  const std::vector<std::string> pointing{"+++", "ATDH0\r", "ATDL1A\r", "ATWR\r", "ATCN\r", "t\r"};
  EXPECT_TRUE(Query());
  EXPECT_EQ(ports_.line.writes, pointing);
  EXPECT_EQ(result_, L"20.5");
  // It still points there.
  EXPECT_TRUE(QueryBinary());
  EXPECT_TRUE(comm_->Update(L"t"));
  EXPECT_EQ(ports_.line.writes.size(), pointing.size() + 2);
  EXPECT_EQ(Trace()[2], L"RS-232: WriteLine(t,,)");  // pointing it has no line
}

TEST_F(CKespCommObjSerialTest, Modem_DoesNotAnswer_StatusStaysAndNothingIsSentOrTold) {
  comm_->serial().SetUseRFModem(true);
  comm_->serial().SetInstrAddr(26);
  EXPECT_FALSE(Query());
  EXPECT_EQ(comm_->CommError(), ECommError::cfrOtherError);
  EXPECT_EQ(comm_->CommErrorSource(), L"");
  EXPECT_EQ(comm_->CommErrorDescr(), L"");
  EXPECT_EQ(ports_.line.written, "+++");
  EXPECT_EQ(Trace(), (Lines{L"Beginning Query()... (command: t)", L"RS-232: OpenPort()",
                            L"RS-232: ClosePort()", L"Exiting Query()...(command: t)"}));
  EXPECT_FALSE(ports_.line.open);
  EXPECT_FALSE(QueryBinary());
  EXPECT_FALSE(comm_->Update(L"t"));
  EXPECT_EQ(comm_->CommError(), ECommError::cfrOtherError);
  EXPECT_TRUE(fakes_.user.boxes().empty());
}

TEST_F(CKespCommObjSerialTest, TransportLogOn_BothWriteIntoOneFileInOrder) {
  comm_->SetDebugging(true);
  EXPECT_TRUE(comm_->Update(L"t"));
  EXPECT_EQ(Trace(),
            (Lines{L"Beginning Update()...(command: t)", L"Opening COM port 1 with settings 9600,N,8,1",
                   L"RS-232: WriteLine(t,,)", L"WriteLine...", L"Clearing buffers...",
                   L"Sending 't\r' on COM port 1", L"RS-232: ClosePort()", L"Closing COM port 1",
                   L"Closed COM port 1", L"Exiting Update()...(command: t)"}));
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
  EXPECT_TRUE(Query());
  ExpectSuccess();
}

TEST_F(CKespCommObjSerialTest, DebuggingOff_NothingIsWritten) {
  comm_->SetDebugging(false);
  EXPECT_TRUE(Query());
  EXPECT_TRUE(QueryBinary());
  EXPECT_TRUE(comm_->Update(L"t"));
  ports_.line.open_failures = {8005};
  EXPECT_FALSE(Query());
  EXPECT_TRUE(fakes_.files.files().empty());
}

}  // namespace
}  // namespace kesp
