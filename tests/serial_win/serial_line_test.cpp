// The serial test bench itself: a COM port behaves as one, and its other end is the test's.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "tests/clients/modem_lines.h"
#include "tests/clients/serial_wire.h"
#include "tests/serial_win/bare_port.h"

namespace kesp::clients {
namespace {

using Milliseconds = SerialWire::Milliseconds;

std::string AllBytes() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  return bytes;
}

class SerialLineTest : public testing::Test {
 protected:
  SerialWire wire_;
  BarePort port_{SerialWire::PortName()};
};

TEST_F(SerialLineTest, EveryByte_PassesInBothDirections) {
  ASSERT_EQ(port_.error(), DWORD{ERROR_SUCCESS});
  EXPECT_EQ(port_.Write(AllBytes()), 256U);
  EXPECT_EQ(wire_.Receive(256), AllBytes());
  wire_.Send(AllBytes());
  EXPECT_EQ(port_.Read(256), AllBytes());
}

TEST_F(SerialLineTest, OpenPort_IsDeniedToOthersUntilClosed) {
  ASSERT_EQ(port_.error(), DWORD{ERROR_SUCCESS});
  EXPECT_EQ(BarePort(SerialWire::PortName()).error(), DWORD{ERROR_ACCESS_DENIED});
  port_.Close();
  EXPECT_EQ(BarePort(SerialWire::PortName()).error(), DWORD{ERROR_SUCCESS});
}

TEST_F(SerialLineTest, MissingPort_IsNotFound) {
  EXPECT_EQ(BarePort(LR"(\\.\COM255)").error(), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST_F(SerialLineTest, SettingsOfThePort_AreKept) {
  DCB settings{};
  settings.DCBlength = sizeof settings;
  ASSERT_TRUE(GetCommState(port_.handle(), &settings));
  settings.BaudRate = CBR_19200;
  settings.ByteSize = 7;
  settings.Parity = EVENPARITY;
  settings.fParity = TRUE;
  ASSERT_TRUE(SetCommState(port_.handle(), &settings));
  DCB kept{};
  ASSERT_TRUE(GetCommState(port_.handle(), &kept));
  EXPECT_EQ(kept.BaudRate, DWORD{CBR_19200});
  EXPECT_EQ(int{kept.ByteSize}, 7);
  EXPECT_EQ(int{kept.Parity}, EVENPARITY);
}

TEST_F(SerialLineTest, QueuedBytes_AreCountedAndPurged) {
  wire_.Send("12345");
  COMSTAT state{};
  DWORD errors = 0;
  const auto deadline = SerialWire::Clock::now() + SerialWire::kDeadline;
  do {
    ASSERT_TRUE(ClearCommError(port_.handle(), &errors, &state));
  } while (state.cbInQue < 5 && SerialWire::Clock::now() < deadline);
  EXPECT_EQ(state.cbInQue, 5U);
  EXPECT_TRUE(PurgeComm(port_.handle(), PURGE_RXCLEAR));
  ASSERT_TRUE(ClearCommError(port_.handle(), &errors, &state));
  EXPECT_EQ(state.cbInQue, 0U);
}

TEST_F(SerialLineTest, Answers_ComInPiecesWhenTheirBytesArrived) {
  wire_.OnBytes("*IDN?\r").Reply("KE").Reply("SP\r\n").After(Milliseconds(50));
  wire_.OnBytes("t\r").Reply("21.5\r\n");
  port_.Write("*ID");
  EXPECT_EQ(wire_.Receive(3), "*ID");
  const auto asked = SerialWire::Clock::now();
  port_.Write("N?\r");
  EXPECT_EQ(port_.Read(2), "KE");
  EXPECT_EQ(port_.Read(4), "SP\r\n");
  EXPECT_GE(SerialWire::Clock::now() - asked, Milliseconds(50));
  port_.Write("t\rt\r");
  EXPECT_EQ(port_.Read(12), "21.5\r\n21.5\r\n");
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "N?\rt\rt\r");
}

TEST_F(SerialLineTest, Arrivals_HoldEveryByteInOrder) {
  port_.Write("one");
  wire_.Receive(3);
  port_.Write("two");
  wire_.Receive(3);
  std::string all;
  SerialWire::Clock::time_point last{};
  for (const SerialWire::Arrival& arrival : wire_.Arrivals()) {
    EXPECT_GE(arrival.time, last);
    last = arrival.time;
    all += arrival.bytes;
  }
  EXPECT_EQ(all, "onetwo");
}

TEST_F(SerialLineTest, WireThatReadsNothing_StopsTheWriter) {
  wire_.PauseReading();
  // More than all buffers between the two hold.
  const std::string much(16U << 20U, 'x');
  const DWORD written = port_.Write(much, 2000);
  EXPECT_GT(written, 0U);
  EXPECT_LT(written, much.size());
  wire_.ResumeReading();
  EXPECT_EQ(wire_.Receive(written), much.substr(0, written));
}

TEST_F(SerialLineTest, PulledWhileOpen_FailsUntilOpenedAnew) {
  ASSERT_EQ(port_.error(), DWORD{ERROR_SUCCESS});
  wire_.Pull();
  COMSTAT state{};
  DWORD errors = 0;
  EXPECT_FALSE(ClearCommError(port_.handle(), &errors, &state));
  EXPECT_EQ(port_.Write("*IDN?\r"), 0U);
  EXPECT_EQ(BarePort(SerialWire::PortName()).error(), DWORD{ERROR_FILE_NOT_FOUND});
  port_.Close();
  wire_.Reconnect();
  BarePort again(SerialWire::PortName());
  ASSERT_EQ(again.error(), DWORD{ERROR_SUCCESS});
  again.Write("back");
  EXPECT_EQ(wire_.Receive(4), "back");
}

TEST_F(SerialLineTest, ChangesOfDtrAndRts_AreRecordedAndEndWithThePort) {
  const std::string before = LineHistory();
  EXPECT_TRUE(EscapeCommFunction(port_.handle(), SETDTR));
  EXPECT_TRUE(EscapeCommFunction(port_.handle(), SETRTS));
  EXPECT_TRUE(EscapeCommFunction(port_.handle(), SETRTS));
  EXPECT_TRUE(EscapeCommFunction(port_.handle(), CLRDTR));
  port_.Write("x");
  EXPECT_EQ(wire_.Receive(1), "x");
  EXPECT_EQ(LineHistory(), before + (before.empty() ? "" : " ") + "D DR R");
  port_.Close();
  EXPECT_EQ(LineHistory(), before + (before.empty() ? "" : " ") + "D DR R -");
}

TEST_F(SerialLineTest, LinesInTheSettings_RiseWithThem) {
  const std::string before = LineHistory();
  DCB settings{};
  settings.DCBlength = sizeof settings;
  ASSERT_TRUE(GetCommState(port_.handle(), &settings));
  settings.fDtrControl = DTR_CONTROL_ENABLE;
  settings.fRtsControl = RTS_CONTROL_ENABLE;
  ASSERT_TRUE(SetCommState(port_.handle(), &settings));
  const std::string after = LineHistory();
  ASSERT_GT(after.size(), before.size());
  EXPECT_TRUE(after.ends_with("DR")) << after;
}

TEST_F(SerialLineTest, InputLines_AreTheOnesSet) {
  DWORD status = 0;
  EXPECT_TRUE(GetCommModemStatus(port_.handle(), &status));
  EXPECT_EQ(status, 0U);
  SetInputLines("CTS DSR");
  EXPECT_TRUE(GetCommModemStatus(port_.handle(), &status));
  EXPECT_EQ(status, DWORD{MS_CTS_ON | MS_DSR_ON});
  SetInputLines("");
}

TEST_F(SerialLineTest, InputLineThatChanges_IsAnEvent) {
  ASSERT_TRUE(SetCommMask(port_.handle(), EV_CTS));
  std::atomic<bool> seen = false;
  // Again and again, because nobody knows when the waiting begins.
  std::thread other([&seen] {
    for (bool up = true; !seen; up = !up) {
      SetInputLines(up ? "CTS" : "");
      Sleep(20);
    }
  });
  DWORD event = 0;
  EXPECT_TRUE(WaitCommEvent(port_.handle(), &event, nullptr));
  EXPECT_EQ(event, DWORD{EV_CTS});
  seen = true;
  other.join();
  SetInputLines("");
}

}  // namespace
}  // namespace kesp::clients
