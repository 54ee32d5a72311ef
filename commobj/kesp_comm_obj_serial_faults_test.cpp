// Unit tests of what Query, QueryBinary and Update make of the serial transport's failures.
#include <gtest/gtest.h>

#include <functional>
#include <ostream>

#include "commobj/kesp_comm_obj_fixture.h"
#include "serial/serial_control_errors.h"

namespace kesp {
namespace {

using Lines = std::vector<std::wstring>;

// A number that a step of the exchange fails with, the status that comes of it, and what follows the name of
// the operation in its trace line.
struct Fault {
  std::int32_t number;
  ECommError status;
  std::wstring line;
};

class SerialFaultFixture : public KespCommObjFixture {
 protected:
  SerialFaultFixture() {
    StartTrace();
    comm_->serial().SetCreateLogFile(false);
    comm_->serial().SetBaudRate(EKespBaudRate3::br9600);
    fakes_.clock.SetStepPerReading(1);
    comm_->serial().SetInputMode(EInputMode::imBinary);
  }

  static std::wstring Description(std::int32_t number) { return SerialControlErrorDescription(number); }
  static std::wstring NumberAndDescription(std::int32_t number) {
    return L"(" + std::to_wstring(number) + L" - " + Description(number) + L") **";
  }
  // The status and the texts of a failure that the control itself had in this member.
  void ExpectStatus(ECommError status, const std::wstring& member, std::int32_t number) {
    ExpectStatus(status, L"CKespCOMPort3 - " + member + L" [commCOMControl]", Description(number));
  }
  void ExpectStatus(ECommError status, const std::wstring& source, const std::wstring& description) {
    EXPECT_EQ(comm_->CommError(), status);
    EXPECT_EQ(comm_->CommErrorSource(), source);
    EXPECT_EQ(comm_->CommErrorDescr(), description);
    EXPECT_TRUE(fakes_.user.boxes().empty());
    EXPECT_FALSE(ports_.line.open);
  }
  std::wstring InfoLine(const std::wstring& member) const {
    return L"RS-232: ** " + member + L" Error info: Source- " + comm_->CommErrorSource() +
           L"  Description- " + comm_->CommErrorDescr() + L" **";
  }

  bool Query() { return comm_->Query(result_, L"t"); }
  bool QueryBinary() { return comm_->QueryBinary(bytes_, L"t"); }
  bool Update() { return comm_->Update(L"t"); }

  std::wstring result_ = L"before";
  BinaryValue bytes_;
};

class SerialFaultTest : public SerialFaultFixture, public testing::WithParamInterface<Fault> {
 protected:
  std::int32_t number() const { return GetParam().number; }
  // The line of the failure, with the number and description in the place of "{}".
  std::wstring FailureLine(const std::wstring& member) const {
    std::wstring line = L"RS-232: ** " + member + L" " + GetParam().line;
    if (const std::size_t place = line.find(L"{}"); place != std::wstring::npos) {
      line.replace(place, 2, NumberAndDescription(number()));
    }
    return line;
  }
};

void PrintTo(const Fault& fault, std::ostream* out) {
  *out << fault.number;
}

const auto kFaultName = [](const testing::TestParamInfo<Fault>& info) {
  const std::string number = std::to_string(info.param.number);
  return number[0] == '-' ? "Minus" + number.substr(1) : number;
};

// The numbers are compared with the communication object's own list, so those of the serial list of the same
// names have no status of their own.
class SerialOpenFaultTest : public SerialFaultTest {
 protected:
  SerialOpenFaultTest() { ports_.line.FailCall(4, number()); }
};

TEST_P(SerialOpenFaultTest, Query_StatusAndTrace) {
  EXPECT_FALSE(Query());
  ExpectStatus(GetParam().status, L"OpenPort()", number());
  EXPECT_EQ(Trace(),
            (Lines{L"Beginning Query()... (command: t)", L"RS-232: OpenPort()", FailureLine(L"OpenPort()"),
                   InfoLine(L"OpenPort()"), L"RS-232: ClosePort()", L"Exiting Query()...(command: t)"}));
  EXPECT_EQ(result_, L"before");
}

TEST_P(SerialOpenFaultTest, QueryBinary_StatusAndTrace) {
  EXPECT_FALSE(QueryBinary());
  ExpectStatus(GetParam().status, L"OpenPort()", number());
  EXPECT_EQ(Trace(), (Lines{L"RS-232: OpenPort()", FailureLine(L"OpenPort()"), InfoLine(L"OpenPort()"),
                            L"RS-232: ClosePort()"}));
}

TEST_P(SerialOpenFaultTest, Update_StatusAndTheErrorInfoLineOnly) {
  EXPECT_FALSE(Update());
  ExpectStatus(GetParam().status, L"OpenPort()", number());
  EXPECT_EQ(Trace(), (Lines{L"Beginning Update()...(command: t)", InfoLine(L"OpenPort()"),
                            L"RS-232: ClosePort()", L"Exiting Update()...(command: t)"}));
}

INSTANTIATE_TEST_SUITE_P(
    All, SerialOpenFaultTest,
    testing::Values(Fault{-2147221302, ECommError::cfrInvalidSetting, L"invalid COM port **"},
                    Fault{0, ECommError::cfrInvalidSetting, L"returned False (no error) **"},
                    Fault{com_port_error::ERR_INVALID_COM_PORT, ECommError::cfrOtherError, L"open failed {}"},
                    Fault{comm_obj_error::ERR_ADDRESS_NOT_SPECIFIED, ECommError::cfrOtherError,
                          L"open failed {}"},
                    Fault{380, ECommError::cfrOtherError, L"open failed {}"},
                    Fault{8002, ECommError::cfrOtherError, L"open failed {}"}),
    kFaultName);

class SerialPortInUseTest : public SerialFaultFixture {
 protected:
  const std::wstring retrying_ = L"RS-232: ** OpenPort() COM port is already open. Retrying...**";
  const std::wstring timed_out_ = L"RS-232: ** OpenPort() COM port is already open. Timed out...**";
};

TEST_F(SerialPortInUseTest, Query_ThreeAttemptsWithoutAPauseAndThenTimeout) {
  ports_.line.open_failures = {8005};
  EXPECT_FALSE(Query());
  ExpectStatus(ECommError::cfrTimeout, L"OpenPort()", 8005);
  EXPECT_EQ(Trace(),
            (Lines{L"Beginning Query()... (command: t)", L"RS-232: OpenPort()", retrying_,
                   L"RS-232: OpenPort()", retrying_, L"RS-232: OpenPort()", timed_out_,
                   InfoLine(L"OpenPort()"), L"RS-232: ClosePort()", L"Exiting Query()...(command: t)"}));
  EXPECT_EQ(ports_.line.calls, 3 * 4);
  EXPECT_EQ(fakes_.pump.count(), 0);
}

TEST_F(SerialPortInUseTest, Update_ThreeAttemptsAndThenTimeout) {
  ports_.line.open_failures = {8005};
  EXPECT_FALSE(Update());
  ExpectStatus(ECommError::cfrTimeout, L"OpenPort()", 8005);
  EXPECT_EQ(Trace(),
            (Lines{L"Beginning Update()...(command: t)", retrying_, retrying_, timed_out_,
                   InfoLine(L"OpenPort()"), L"RS-232: ClosePort()", L"Exiting Update()...(command: t)"}));
  EXPECT_EQ(ports_.line.calls, 3 * 4);
}

TEST_F(SerialPortInUseTest, QueryBinary_OneAttempt) {
  ports_.line.open_failures = {8005};
  EXPECT_FALSE(QueryBinary());
  ExpectStatus(ECommError::cfrOtherError, L"OpenPort()", 8005);
  EXPECT_EQ(Trace(),
            (Lines{L"RS-232: OpenPort()", L"RS-232: ** OpenPort() open failed (8005 - Port already open) **",
                   InfoLine(L"OpenPort()"), L"RS-232: ClosePort()"}));
  EXPECT_EQ(ports_.line.calls, 4);
}

TEST_F(SerialPortInUseTest, Query_FreedMeanwhile_Succeeds) {
  for (const std::deque<std::int32_t>& failures : {std::deque{8005, 0}, std::deque{8005, 8005, 0}}) {
    ports_.line.open_failures = failures;
    ports_.line.Answer("t\r", "1\r\n");
    EXPECT_TRUE(Query());
    EXPECT_EQ(comm_->CommError(), ECommError::cfrSuccess);
  }
}

TEST_F(SerialPortInUseTest, Query_AnotherFailureMeanwhile_EndsTheAttempts) {
  ports_.line.open_failures = {8005, 8002};
  EXPECT_FALSE(Query());
  ExpectStatus(ECommError::cfrOtherError, L"OpenPort()", 8002);
  EXPECT_EQ(ports_.line.calls, 2 * 4);
}

TEST_F(SerialPortInUseTest, NotOpenedYet_NextQueryWithoutAutoCloseTriesAgain) {
  comm_->SetAutoClose(false);
  ports_.line.open_failures = {8005, 8005, 8005, 0};
  ports_.line.Answer("t\r", "1\r\n");
  EXPECT_FALSE(Query());
  EXPECT_TRUE(Query());
}

class SerialWriteFaultTest : public SerialFaultTest {
 protected:
  SerialWriteFaultTest() {
    ports_.line.FailCall(7, number());
  }  // four calls to open, two to clear, the output
};

TEST_P(SerialWriteFaultTest, Query_StatusAndTrace) {
  EXPECT_FALSE(Query());
  ExpectStatus(GetParam().status, L"WriteLine()", number());
  EXPECT_EQ(Trace(), (Lines{L"Beginning Query()... (command: t)", L"RS-232: OpenPort()",
                            L"RS-232: WriteLine(t,,)", FailureLine(L"WriteLine()"), InfoLine(L"WriteLine()"),
                            L"RS-232: ClosePort()", L"Exiting Query()...(command: t)"}));
}

TEST_P(SerialWriteFaultTest, QueryBinary_StatusAndTrace) {
  EXPECT_FALSE(QueryBinary());
  ExpectStatus(GetParam().status, L"WriteLine()", number());
  EXPECT_EQ(Trace(), (Lines{L"RS-232: OpenPort()", L"RS-232: WriteLine(t,,)", FailureLine(L"WriteLine()"),
                            InfoLine(L"WriteLine()"), L"RS-232: ClosePort()"}));
}

TEST_P(SerialWriteFaultTest, Update_StatusAndTheErrorInfoLineOnly) {
  EXPECT_FALSE(Update());
  ExpectStatus(GetParam().status, L"WriteLine()", number());
  EXPECT_EQ(Trace(),
            (Lines{L"Beginning Update()...(command: t)", L"RS-232: WriteLine(t,,)", InfoLine(L"WriteLine()"),
                   L"RS-232: ClosePort()", L"Exiting Update()...(command: t)"}));
}

INSTANTIATE_TEST_SUITE_P(
    All, SerialWriteFaultTest,
    testing::Values(
        Fault{-2147221301, ECommError::cfrInvalidSetting, L"address not specified  **"},
        Fault{0, ECommError::cfrInvalidSetting, L"returned False (no error) **"},
        Fault{com_port_error::ERR_ADDRESS_NOT_SPECIFIED, ECommError::cfrWriteFailed, L"write failed {}"},
        Fault{comm_obj_error::ERR_INVALID_COM_PORT, ECommError::cfrWriteFailed, L"write failed {}"},
        Fault{8005, ECommError::cfrWriteFailed, L"write failed {}"},
        Fault{8012, ECommError::cfrWriteFailed, L"write failed {}"}),
    kFaultName);

class SerialReadFaultTest : public SerialFaultTest {
 protected:
  SerialReadFaultTest() { ports_.line.FailCall(9, number()); }  // and one to see the output gone
};

TEST_P(SerialReadFaultTest, Query_StatusAndTrace) {
  EXPECT_FALSE(Query());
  ExpectStatus(GetParam().status, L"ReadLine()", number());
  EXPECT_EQ(Trace(),
            (Lines{L"Beginning Query()... (command: t)", L"RS-232: OpenPort()", L"RS-232: WriteLine(t,,)",
                   L"RS-232: ReadLine()", FailureLine(L"ReadLine()"), InfoLine(L"ReadLine()"),
                   L"RS-232: ClosePort()", L"Exiting Query()...(command: t)"}));
}

INSTANTIATE_TEST_SUITE_P(
    All, SerialReadFaultTest,
    testing::Values(Fault{-2147221279, ECommError::cfrTimeout, L"timed out **"},
                    Fault{-2147221278, ECommError::cfrInvalidData, L"invalid characters **"},
                    Fault{0, ECommError::cfrInvalidSetting, L"returned False (no error) **"},
                    Fault{com_port_error::ERR_DOWNLOAD_TIMEOUT, ECommError::cfrReadFailed, L"read failed {}"},
                    Fault{8020, ECommError::cfrReadFailed, L"read failed {}"}),
    kFaultName);

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
  int failures = 0;
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
    EXPECT_EQ(Trace().back(), L"Exiting Query()...(command: t)");
  }
  EXPECT_EQ(failures, calls - 4);  // all but the four of the closing
  EXPECT_TRUE(fakes_.user.boxes().empty());
  EXPECT_TRUE(Query());
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
