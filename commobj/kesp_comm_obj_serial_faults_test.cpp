// Unit tests of what Query, QueryBinary and Update make of a serial port that fails at one of their steps.
#include <gtest/gtest.h>

#include <deque>
#include <limits>

#include "commobj/kesp_comm_obj_serial_fixture.h"
#include "serial/serial_control_errors.h"

namespace kesp {
namespace {

constexpr wchar_t kOpenPort[] = L"OpenPort()";
constexpr wchar_t kWriteLine[] = L"WriteLine()";
constexpr wchar_t kReadLine[] = L"ReadLine()";

class CKespCommObjSerialFaultsTest : public CKespCommObjSerialFixture {
 protected:
  // The control's own failure in this member.
  void ExpectFailure(ECommError status, const std::wstring& member, std::int32_t number) {
    ExpectStatus(status, L"CKespCOMPort3 - " + member + L" [commCOMControl]",
                 SerialControlErrorDescription(number));
  }

  // What is traced around the lines of a member, with and without a frame.
  static Lines Framed(const std::wstring& operation, const std::wstring& blank, const Lines& lines) {
    Lines all{L"Beginning " + operation + L"()..." + blank + L"(command: t)"};
    all.insert(all.end(), lines.begin(), lines.end());
    all.insert(all.end(), {L"RS-232: ClosePort()", L"Exiting " + operation + L"()...(command: t)"});
    return all;
  }
};

// The numbers are compared with the communication object's own list, so those of the serial list of the same
// names have no status of their own.
TEST_F(CKespCommObjSerialFaultsTest, EachStep_NumberDecidesStatusAndTrace) {
  struct Case {
    const wchar_t* member;
    std::int32_t number;
    ECommError status;
    const wchar_t* line;  // with the number and description in the place of "{}"
  };
  const Case cases[] = {
      {kOpenPort, -2147221302, ECommError::cfrInvalidSetting, L"invalid COM port **"},
      {kOpenPort, 0, ECommError::cfrInvalidSetting, L"returned False (no error) **"},
      {kOpenPort, com_port_error::ERR_INVALID_COM_PORT, ECommError::cfrOtherError, L"open failed {}"},
      {kOpenPort, comm_obj_error::ERR_ADDRESS_NOT_SPECIFIED, ECommError::cfrOtherError, L"open failed {}"},
      {kOpenPort, 8002, ECommError::cfrOtherError, L"open failed {}"},
      {kWriteLine, -2147221301, ECommError::cfrInvalidSetting, L"address not specified  **"},
      {kWriteLine, 0, ECommError::cfrInvalidSetting, L"returned False (no error) **"},
      {kWriteLine, com_port_error::ERR_ADDRESS_NOT_SPECIFIED, ECommError::cfrWriteFailed, L"write failed {}"},
      {kWriteLine, comm_obj_error::ERR_INVALID_COM_PORT, ECommError::cfrWriteFailed, L"write failed {}"},
      {kWriteLine, 8005, ECommError::cfrWriteFailed, L"write failed {}"},
      {kReadLine, -2147221279, ECommError::cfrTimeout, L"timed out **"},
      {kReadLine, -2147221278, ECommError::cfrInvalidData, L"invalid characters **"},
      {kReadLine, 0, ECommError::cfrInvalidSetting, L"returned False (no error) **"},
      {kReadLine, com_port_error::ERR_DOWNLOAD_TIMEOUT, ECommError::cfrReadFailed, L"read failed {}"},
      {kReadLine, 8020, ECommError::cfrReadFailed, L"read failed {}"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(&c - cases);
    const std::wstring member = c.member;
    const bool reads = member == kReadLine;
    // Four calls to open, two to clear, the output, and one to see it gone.
    const int call = member == kOpenPort ? 4 : member == kWriteLine ? 7 : 9;
    std::wstring line = L"RS-232: ** " + member + L" " + c.line;
    if (const std::size_t place = line.find(L"{}"); place != std::wstring::npos) {
      line.replace(
          place, 2,
          L"(" + std::to_wstring(c.number) + L" - " + SerialControlErrorDescription(c.number) + L") **");
    }
    Lines steps;
    if (member != kOpenPort) steps.push_back(L"RS-232: WriteLine(t,,)");

    if (!reads) {
      ports_.line.FailCall(call, c.number);
      EXPECT_FALSE(Update());
      ExpectFailure(c.status, member, c.number);
      Lines quiet = steps;
      quiet.push_back(ErrorInfo(member));
      ExpectTrace(Framed(L"Update", L"", quiet));
    }

    steps.insert(steps.begin(), L"RS-232: OpenPort()");
    if (reads) steps.push_back(L"RS-232: ReadLine()");
    ports_.line.FailCall(call, c.number);
    EXPECT_FALSE(Query());
    ExpectFailure(c.status, member, c.number);
    steps.insert(steps.end(), {line, ErrorInfo(member)});
    ExpectTrace(Framed(L"Query", L" ", steps));
    if (reads) continue;

    ports_.line.FailCall(call, c.number);
    EXPECT_FALSE(QueryBinary());
    ExpectFailure(c.status, member, c.number);
    steps.push_back(L"RS-232: ClosePort()");
    ExpectTrace(steps);
  }
  EXPECT_EQ(bytes_, BinaryValue());
}

TEST_F(CKespCommObjSerialFaultsTest, PortInUse_ThreeAttemptsWithoutAPauseAndOneForBytes) {
  const std::wstring retrying = L"RS-232: ** OpenPort() COM port is already open. Retrying...**";
  const std::wstring timed_out = L"RS-232: ** OpenPort() COM port is already open. Timed out...**";
  ports_.line.open_failures = {8005};
  EXPECT_FALSE(Query());
  ExpectFailure(ECommError::cfrTimeout, kOpenPort, 8005);
  ExpectTrace(Framed(L"Query", L" ",
                     {L"RS-232: OpenPort()", retrying, L"RS-232: OpenPort()", retrying, L"RS-232: OpenPort()",
                      timed_out, ErrorInfo(kOpenPort)}));
  EXPECT_EQ(ports_.line.faults.calls(), 3 * 4);
  EXPECT_FALSE(Update());
  ExpectFailure(ECommError::cfrTimeout, kOpenPort, 8005);
  ExpectTrace(Framed(L"Update", L"", {retrying, retrying, timed_out, ErrorInfo(kOpenPort)}));
  EXPECT_EQ(ports_.line.faults.calls(), 6 * 4);
  EXPECT_FALSE(QueryBinary());
  ExpectFailure(ECommError::cfrOtherError, kOpenPort, 8005);
  ExpectTrace({L"RS-232: OpenPort()", L"RS-232: ** OpenPort() open failed (8005 - Port already open) **",
               ErrorInfo(kOpenPort), L"RS-232: ClosePort()"});
  EXPECT_EQ(ports_.line.faults.calls(), 7 * 4);
  EXPECT_EQ(fakes_.pump.count(), 0);
}

TEST_F(CKespCommObjSerialFaultsTest, PortInUse_FreedMeanwhileOrLater_Succeeds) {
  for (const std::deque<std::int32_t>& failures : {std::deque{8005, 0}, std::deque{8005, 8005, 0}}) {
    ports_.line.open_failures = failures;
    EXPECT_TRUE(Query());
    ExpectStatus(ECommError::cfrSuccess);
  }
  comm_->SetAutoClose(false);
  ports_.line.open_failures = {8005, 8005, 8005, 0};
  EXPECT_FALSE(Query());
  EXPECT_TRUE(Query());
}

TEST_F(CKespCommObjSerialFaultsTest, PortInUse_AnotherFailureMeanwhile_EndsTheAttempts) {
  ports_.line.open_failures = {8005, 8002};
  EXPECT_FALSE(Query());
  ExpectFailure(ECommError::cfrOtherError, kOpenPort, 8002);
  EXPECT_EQ(ports_.line.faults.calls(), 2 * 4);
}

// With the number that the transport raises itself.
TEST_F(CKespCommObjSerialFaultsTest, TransportsOwnFailures_HaveItsTexts) {
  comm_->serial().SetControllerStyle(EKespControllerStyle3::CS_OMEGA);
  EXPECT_FALSE(Query());
  ExpectStatus(ECommError::cfrWriteFailed, L"CKespCOMPort3 - WriteLine()",
               L"Omega controller address not specified.");
  EXPECT_EQ(Trace()[3],
            L"RS-232: ** WriteLine() write failed (-2147221280 - Omega controller address not "
            L"specified.) **");
  comm_->serial().SetControllerStyle(EKespControllerStyle3::CS_KESP);
  ports_.line.Answer("t\r", "\x81\r\n");
  EXPECT_FALSE(Query());
  ExpectStatus(ECommError::cfrInvalidData, L"CKespCOMPort3 - ReadLine()",
               L"Invalid characters received on COM1.");
  ports_.line.Answer("t\r", "20.");
  EXPECT_FALSE(Query());
  ExpectStatus(ECommError::cfrTimeout, L"CKespCOMPort3 - ReadLine()",
               L"Timeout waiting for instrument to respond to command on COM1.");
  EXPECT_EQ(result_, L"20.") << "what came";
  fakes_.clock.SetTickCount(std::numeric_limits<std::int32_t>::max() - 1000);
  EXPECT_FALSE(Query());
  ExpectStatus(ECommError::cfrReadFailed, L"CKespCOMPort3 - ReadLine() [KespCommObj]", L"Overflow");
}

TEST_F(CKespCommObjSerialFaultsTest, QueryBinary_Silence_IsATimeoutTracedWithWhatTheValueHolds) {
  struct Case {
    BinaryValue before;
    std::wstring text;
  };
  const Case cases[] = {
      {BinaryValue(), L""}, {BinaryValue(L"held"), L"held"}, {BinaryValue(Bytes{'a', 0x80}), L"a\x20AC"}};
  ports_.line.answers.clear();
  for (const Case& c : cases) {
    bytes_ = c.before;
    EXPECT_FALSE(QueryBinary());
    ExpectStatus(ECommError::cfrTimeout, L"CKespCOMPort3 - ReadLineBinary()",
                 L"Timeout waiting for instrument to respond to command on COM1.");
    ExpectTrace({L"RS-232: OpenPort()", L"RS-232: WriteLine(t,,)", L"RS-232: ReadLineBinary()",
                 L"RS-232: ** ReadLineBinary() timed out ** result- " + c.text,
                 ErrorInfo(L"ReadLineBinary()"), L"RS-232: ClosePort()"});
    EXPECT_EQ(bytes_, c.before);
  }
}

// The transport shows its failure and returns false without an error.
TEST_F(CKespCommObjSerialFaultsTest, QueryBinary_ReadFails_IsShownAndAnInvalidSetting) {
  ports_.line.FailCall(9, 8020);
  EXPECT_FALSE(QueryBinary());
  ASSERT_EQ(fakes_.user.boxes().size(), 1u);
  EXPECT_TRUE(
      fakes_.user.boxes()[0].text.starts_with(L"An error occurred while attempting to read from COM1."));
  EXPECT_EQ(comm_->CommError(), ECommError::cfrInvalidSetting);
  EXPECT_EQ(comm_->CommErrorDescr(), L"");
  ExpectTrace({L"RS-232: OpenPort()", L"RS-232: WriteLine(t,,)", L"RS-232: ReadLineBinary()",
               L"RS-232: ** ReadLineBinary() returned False (no error) **",
               L"RS-232: ** ReadLineBinary() Error info: Source-   Description-  **",
               L"RS-232: ClosePort()"});
}

TEST_F(CKespCommObjSerialFaultsTest, AutoCloseOffAndFailed_PortStaysOpenForTheNext) {
  comm_->SetAutoClose(false);
  EXPECT_FALSE(Query(L"silent"));
  EXPECT_EQ(comm_->CommError(), ECommError::cfrTimeout);
  EXPECT_TRUE(Query());
  EXPECT_EQ(Calls(kOpened), 1);
}

// Whichever call of the control fails, nothing is raised or shown, the port is closed afterwards, and a
// failure to close changes nothing.
TEST_F(CKespCommObjSerialFaultsTest, AnyCallFails_IsToldByTheStatusAlone) {
  comm_->serial().SetUseSmartSwitch(true);
  comm_->serial().SmartSwitch()->SetSSPort(L"3");
  const int before = ports_.line.faults.calls();
  EXPECT_TRUE(Query());
  const int calls = ports_.line.faults.calls() - before;
  ASSERT_GT(calls, 20);
  const std::wstring closing_failed =
      L"RS-232: ** ClosePort() Error info: Source- CKespCOMPort3 - ClosePort() [commCOMControl]  "
      L"Description- The device is not open **";
  int failures = 0;
  int failed_closings = 0;
  for (int nth = 1; nth <= calls; ++nth) {
    SCOPED_TRACE(nth);
    ports_.line.FailCall(nth, 8012);
    ports_.line.arrivals.clear();
    EXPECT_NO_THROW({
      const bool succeeded = Query();
      EXPECT_EQ(succeeded, comm_->CommError() == ECommError::cfrSuccess);
      EXPECT_EQ(succeeded, comm_->CommErrorDescr().empty());
      failures += succeeded ? 0 : 1;
    });
    EXPECT_FALSE(ports_.line.open);
    EXPECT_EQ(comm_->serial().SmartSwitch()->CurrentPort(), L"");
    const Lines trace = NewTrace();
    EXPECT_EQ(trace.back(), L"Exiting Query()...(command: t)");
    failed_closings += trace[trace.size() - 2] == closing_failed ? 1 : 0;
  }
  // The closing writes the release in four calls; a fifth looks whether it is still under way, and that is
  // all.
  EXPECT_EQ(failures, calls - 5);
  EXPECT_EQ(failed_closings, 4);
  EXPECT_TRUE(fakes_.user.boxes().empty());
}

TEST_F(CKespCommObjSerialFaultsTest, SettingsFileFails_ModemIsNotPointedAndStatusStays) {
  comm_->serial().SetUseRFModem(true);
  fakes_.settings.faults.Fail(1);
  EXPECT_FALSE(Query());
  ExpectStatus(ECommError::cfrOtherError);
  EXPECT_EQ(ports_.line.written, "");
}

}  // namespace
}  // namespace kesp
