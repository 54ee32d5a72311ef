// Unit tests of what Query, QueryBinary and Update make of a serial port that fails at one of their steps.
#include <gtest/gtest.h>

#include <deque>
#include <ostream>

#include "commobj/kesp_comm_obj_serial_fixture.h"

namespace kesp {
namespace {

// A number that a step of the exchange fails with, the status that comes of it, and what follows the name of
// the operation in its trace line.
struct Fault {
  std::int32_t number;
  ECommError status;
  std::wstring line;
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

}  // namespace
}  // namespace kesp
