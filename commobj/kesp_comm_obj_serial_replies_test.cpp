// Unit tests of what Query and QueryBinary make of replies that are missing or wrong, and sweeps of failures.
#include <gtest/gtest.h>

#include <limits>

#include "commobj/kesp_comm_obj_serial_fixture.h"

namespace kesp {
namespace {

class SerialRepliesTest : public SerialFaultFixture {};

TEST_F(SerialRepliesTest, Query_Silence_IsATimeoutWithTheTransportsTexts) {
  EXPECT_FALSE(Query());
  ExpectStatus(ECommError::cfrTimeout, L"CKespCOMPort3 - ReadLine()",
               L"Timeout waiting for instrument to respond to command on COM1.");
  EXPECT_EQ(result_, L"");
  EXPECT_EQ(Trace()[4], L"RS-232: ** ReadLine() timed out **");
  EXPECT_EQ(Trace()[5], InfoLine(L"ReadLine()"));
}

TEST_F(SerialRepliesTest, Query_PartOfAReply_IsLeftInTheResult) {
  ports_.line.Answer("t\r", "20.");
  EXPECT_FALSE(Query());
  EXPECT_EQ(comm_->CommError(), ECommError::cfrTimeout);
  EXPECT_EQ(result_, L"20.");
}

TEST_F(SerialRepliesTest, Query_InvalidCharacters_IsInvalidData) {
  ports_.line.Answer("t\r", "\x81\r\n");
  EXPECT_FALSE(Query());
  ExpectStatus(ECommError::cfrInvalidData, L"CKespCOMPort3 - ReadLine()",
               L"Invalid characters received on COM1.");
  EXPECT_EQ(Trace()[4], L"RS-232: ** ReadLine() invalid characters **");
}

TEST_F(SerialRepliesTest, QueryBinary_Silence_IsATimeoutTracedWithWhatTheValueHolds) {
  struct Case {
    BinaryValue before;
    std::wstring text;
  };
  const Case cases[] = {
      {BinaryValue(), L""}, {BinaryValue(L"held"), L"held"}, {BinaryValue(Bytes{'a', 0x80}), L"a\x20AC"}};
  for (const Case& c : cases) {
    bytes_ = c.before;
    const std::size_t traced = Trace().size();
    EXPECT_FALSE(QueryBinary());
    ExpectStatus(ECommError::cfrTimeout, L"CKespCOMPort3 - ReadLineBinary()",
                 L"Timeout waiting for instrument to respond to command on COM1.");
    const Lines trace = Trace();
    EXPECT_EQ(Lines(trace.begin() + static_cast<std::ptrdiff_t>(traced), trace.end()),
              (Lines{L"RS-232: OpenPort()", L"RS-232: WriteLine(t,,)", L"RS-232: ReadLineBinary()",
                     L"RS-232: ** ReadLineBinary() timed out ** result- " + c.text,
                     InfoLine(L"ReadLineBinary()"), L"RS-232: ClosePort()"}));
    EXPECT_EQ(bytes_, c.before);
  }
}

// The transport shows its failure and returns false without an error.
TEST_F(SerialRepliesTest, QueryBinary_ReadFails_IsShownAndAnInvalidSetting) {
  ports_.line.FailCall(9, 8020);
  EXPECT_FALSE(QueryBinary());
  EXPECT_EQ(comm_->CommError(), ECommError::cfrInvalidSetting);
  EXPECT_EQ(comm_->CommErrorSource(), L"");
  EXPECT_EQ(comm_->CommErrorDescr(), L"");
  ASSERT_EQ(fakes_.user.boxes().size(), 1u);
  EXPECT_TRUE(
      fakes_.user.boxes()[0].text.starts_with(L"An error occurred while attempting to read from COM1."));
  EXPECT_EQ(Trace(), (Lines{L"RS-232: OpenPort()", L"RS-232: WriteLine(t,,)", L"RS-232: ReadLineBinary()",
                            L"RS-232: ** ReadLineBinary() returned False (no error) **",
                            L"RS-232: ** ReadLineBinary() Error info: Source-   Description-  **",
                            L"RS-232: ClosePort()"}));
}

TEST_F(SerialRepliesTest, Query_OmegaWithoutAddress_IsAWriteFailure) {
  comm_->serial().SetControllerStyle(EKespControllerStyle3::CS_OMEGA);
  EXPECT_FALSE(Query());
  ExpectStatus(ECommError::cfrWriteFailed, L"CKespCOMPort3 - WriteLine()",
               L"Omega controller address not specified.");
  EXPECT_EQ(Trace()[3],
            L"RS-232: ** WriteLine() write failed (-2147221280 - Omega controller address not "
            L"specified.) **");
}

TEST_F(SerialRepliesTest, Query_AutoCloseOffAndFailed_PortStaysOpenForTheNext) {
  comm_->SetAutoClose(false);
  EXPECT_FALSE(Query());
  EXPECT_EQ(comm_->CommError(), ECommError::cfrTimeout);
  EXPECT_TRUE(ports_.line.open);
  ports_.line.Answer("t\r", "1\r\n");
  const int calls = ports_.line.calls;
  EXPECT_TRUE(Query());
  EXPECT_EQ(result_, L"1");
  EXPECT_LT(ports_.line.calls - calls, 10);
  comm_->SetCommStyle(ECommStyle::csNone);
}

// Whichever call of the control fails, nothing is raised or shown and the port is closed afterwards.
TEST_F(SerialRepliesTest, Query_AnyCallFails_IsToldByTheStatusAlone) {
  comm_->serial().SetUseSmartSwitch(true);
  comm_->serial().SmartSwitch()->SetSSPort(L"3");
  ports_.line.Answer("t\r", "1\r\n");
  const int before = ports_.line.calls;
  EXPECT_TRUE(Query());
  const int calls = ports_.line.calls - before;
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
    const Lines trace = Trace();
    EXPECT_EQ(trace.back(), L"Exiting Query()...(command: t)");
    failed_closings += trace[trace.size() - 2] == closing_failed ? 1 : 0;
  }
  // The closing writes the release in four calls; a fifth looks whether it is still under way, and that is
  // all.
  EXPECT_EQ(failures, calls - 5);
  EXPECT_EQ(failed_closings, 4);
  EXPECT_TRUE(fakes_.user.boxes().empty());
  EXPECT_TRUE(Query());
}

TEST_F(SerialRepliesTest, SettingsFileFails_ModemIsNotPointedAndStatusStays) {
  comm_->serial().SetUseRFModem(true);
  fakes_.settings.ThrowAtCall(1);
  EXPECT_FALSE(Query());
  ExpectStatus(ECommError::cfrOtherError, L"", L"");
  EXPECT_EQ(ports_.line.written, "");
}

TEST_F(SerialRepliesTest, NoDeadlineLeftOnTheClock_IsAReadFailure) {
  fakes_.clock.SetTickCount(std::numeric_limits<std::int32_t>::max() - 1000);
  EXPECT_FALSE(Query());
  ExpectStatus(ECommError::cfrReadFailed, L"CKespCOMPort3 - ReadLine() [KespCommObj]", L"Overflow");
  EXPECT_EQ(Trace()[4], L"RS-232: ** ReadLine() read failed (6 - Overflow) **");
}

TEST_F(SerialRepliesTest, AnyFileCallFails_ChangesNothing) {
  ports_.line.Answer("t\r", "1\r\n");
  comm_->SetDebugging(true);
  const int before = fakes_.files.calls();
  EXPECT_TRUE(Query());
  const int calls = fakes_.files.calls() - before;
  ASSERT_GT(calls, 10);
  for (int nth = 1; nth <= calls; ++nth) {
    fakes_.files.ThrowAtCall(fakes_.files.calls() + nth);
    EXPECT_TRUE(Query()) << nth;
    EXPECT_EQ(comm_->CommError(), ECommError::cfrSuccess) << nth;
  }
}

}  // namespace
}  // namespace kesp
