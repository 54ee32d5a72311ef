// The serial control of Windows on a real COM port, whose other end is the test's.
#include "serial/serial_control_win.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <thread>

#include "serial/serial_control_errors.h"
#include "serial/serial_ports_win.h"
#include "support/text.h"
#include "tests/clients/modem_lines.h"
#include "tests/clients/serial_wire.h"
#include "tests/serial_win/bare_port.h"

namespace kesp::clients {
namespace {

using Milliseconds = SerialWire::Milliseconds;

// The number of the failure that the call throws; 0 for none.
std::int32_t NumberOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.source(), L"commCOMControl");
    EXPECT_EQ(failure.description(), SerialControlErrorDescription(failure.number()));
    return failure.number();
  }
  return 0;
}

class SerialControlTest : public testing::Test {
 protected:
  SerialControlTest() { control_.SetCommPort(Port()); }

  static std::int16_t Port() { return static_cast<std::int16_t>(SerialWire::PortNumber()); }

  // Looks at the port until that is so, or the deadline has passed.
  static bool Eventually(const std::function<bool()>& condition) {
    const auto deadline = SerialWire::Clock::now() + SerialWire::kDeadline;
    while (SerialWire::Clock::now() < deadline) {
      if (condition()) return true;
    }
    return false;
  }

  std::string Read(std::size_t count) {
    std::string bytes;
    Eventually([&] {
      bytes += control_.Input();
      return bytes.size() >= count;
    });
    return bytes;
  }

  // Opens the port and writes to a line that takes nothing until a write stays pending; returns the bytes.
  std::size_t OpenAndFill() {
    control_.Open();
    wire_.PauseReading();
    std::size_t bytes = 0;
    for (int i = 0; i < 256 && control_.OutBufferCount() == 0; ++i, bytes += kBlock) {
      control_.Output(std::string(kBlock, 'x'));
    }
    EXPECT_GT(control_.OutBufferCount(), 0);
    return bytes;
  }

  static constexpr std::size_t kBlock = 65536;
  SerialWire wire_;
  SerialControlWin control_;
};

TEST_F(SerialControlTest, Opened_EveryBytePassesInBothDirections) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  control_.Open();
  control_.Output(all);
  EXPECT_EQ(wire_.Receive(256), all);
  wire_.Send(all);
  EXPECT_EQ(Read(256), all);
}

TEST_F(SerialControlTest, EveryRate_IsTaken) {
  for (const wchar_t* rate : {L"150", L"300", L"600", L"1200", L"2400", L"4800", L"9600", L"19200", L"38400",
                              L"57600", L"115200", L"230400", L"460800", L"921600"}) {
    control_.SetSettings(std::wstring(rate) + L",N,8,1");
    control_.Open();
    control_.Output("x");
    EXPECT_EQ(wire_.Receive(1), "x") << SystemCodePage().ToBytes(rate);
    control_.Close();
  }
}

// What the texts may be is tested with their reading.
TEST_F(SerialControlTest, SettingsOfOtherForm_AreRefusedAndTheEarlierOnesStay) {
  control_.SetSettings(L"2400,O,7,1");
  EXPECT_EQ(NumberOf([&] { control_.SetSettings(L"9600,N,9,1"); }), 380);
  control_.Open();
  EXPECT_EQ(NumberOf([&] { control_.SetSettings(L"9600,X,7,1"); }), 380);
  EXPECT_EQ(control_.Settings(), L"2400,O,7,1");
}

TEST_F(SerialControlTest, PortNumberOutsideRangeOrWithoutDevice_IsRefused) {
  for (const int port : {0, 257, -1}) {
    EXPECT_EQ(NumberOf([&] { control_.SetCommPort(static_cast<std::int16_t>(port)); }), 8002) << port;
  }
  control_.SetCommPort(255);
  EXPECT_EQ(NumberOf([&] { control_.Open(); }), 8002);
  EXPECT_FALSE(control_.PortOpen());
}

TEST_F(SerialControlTest, PortHeldByAnother_CannotBeOpenedUntilItIsFree) {
  BarePort other(SerialWire::PortName());
  ASSERT_EQ(other.error(), DWORD{ERROR_SUCCESS});
  EXPECT_EQ(NumberOf([&] { control_.Open(); }), 8005);
  EXPECT_FALSE(control_.PortOpen());
  other.Close();
  EXPECT_EQ(NumberOf([&] { control_.Open(); }), 0);
}

TEST_F(SerialControlTest, Opened_IsTheOnlyOwner) {
  control_.Open();
  EXPECT_EQ(NumberOf([&] { control_.Open(); }), 8000);
  EXPECT_EQ(NumberOf([&] { control_.SetCommPort(34); }), 8000);
  EXPECT_EQ(BarePort(SerialWire::PortName()).error(), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(SystemSerialPorts().IsCOMPortAvailable(Port()), 5);
  control_.Close();
  EXPECT_EQ(SystemSerialPorts().IsCOMPortAvailable(Port()), 0);
  EXPECT_EQ(SystemSerialPorts().IsCOMPortAvailable(Port()), 0) << "it was closed again";
  EXPECT_EQ(SystemSerialPorts().IsCOMPortAvailable(255), 2);
  EXPECT_EQ(SystemSerialPorts().IsCOMPortAvailable(0), 2);
}

TEST_F(SerialControlTest, Closed_EveryOperationOfTheOpenPortIsRefused) {
  EXPECT_EQ(NumberOf([&] { control_.InBufferCount(); }), 8018);
  EXPECT_EQ(NumberOf([&] { control_.OutBufferCount(); }), 8018);
  EXPECT_EQ(NumberOf([&] { control_.ClearInBuffer(); }), 8018);
  EXPECT_EQ(NumberOf([&] { control_.ClearOutBuffer(); }), 8018);
  EXPECT_EQ(NumberOf([&] { control_.Output("x"); }), 8018);
  EXPECT_EQ(NumberOf([&] { control_.Input(); }), 8018);
  EXPECT_EQ(NumberOf([&] { control_.SetDTREnable(false); }), 0);
  EXPECT_EQ(NumberOf([&] { control_.SetRTSEnable(false); }), 0);
  EXPECT_EQ(NumberOf([&] { control_.Close(); }), 0);
}

TEST_F(SerialControlTest, ReceivedBytes_AreCountedAndCleared) {
  control_.Open();
  EXPECT_EQ(control_.InBufferCount(), 0);
  EXPECT_EQ(control_.Input(), "");
  wire_.Send("12345");
  EXPECT_TRUE(Eventually([&] { return control_.InBufferCount() == 5; }));
  control_.ClearInBuffer();
  EXPECT_EQ(control_.InBufferCount(), 0);
}

// The write stays pending, its bytes are counted, and nothing blocks.
TEST_F(SerialControlTest, LineThatTakesNothing_OutputIsCountedUntilItLeaves) {
  const std::size_t bytes = OpenAndFill();
  wire_.ResumeReading();
  EXPECT_TRUE(Eventually([&] { return control_.OutBufferCount() == 0; }));
  EXPECT_EQ(wire_.Receive(bytes).size(), bytes);
}

TEST_F(SerialControlTest, LineThatTakesNothing_OutputCanBeClearedAndThePortClosed) {
  OpenAndFill();
  control_.ClearOutBuffer();
  EXPECT_EQ(control_.OutBufferCount(), 0);
  control_.Output(std::string(1 << 20, 'y'));
  control_.Close();
  EXPECT_FALSE(control_.PortOpen());
}

// Has the driver give up every write to the port that this process has open.
void CutWritesShort() {
  constexpr std::uintptr_t kPastAllHandles = 0x4000;
  for (std::uintptr_t value = 4; value < kPastAllHandles; value += 4) {
    const auto handle = reinterpret_cast<HANDLE>(value);
    DCB state{};
    state.DCBlength = sizeof state;
    if (GetFileType(handle) == FILE_TYPE_CHAR && GetCommState(handle, &state)) CancelIoEx(handle, nullptr);
  }
}

TEST_F(SerialControlTest, PendingWriteIsCutShort_IsAFailureOnce) {
  OpenAndFill();
  // What was counted may lie in the driver's queue alone. This is more than any queue takes.
  control_.Output(std::string(1 << 20, 'y'));
  CutWritesShort();
  EXPECT_TRUE(Eventually([&] { return NumberOf([&] { control_.OutBufferCount(); }) == 8012; }));
  EXPECT_EQ(NumberOf([&] { control_.OutBufferCount(); }), 0);
}

TEST_F(SerialControlTest, PendingWriteIsCutShortBeforeClosing_IsNoFailureOfTheNextOpening) {
  OpenAndFill();
  CutWritesShort();
  control_.Output("x");
  control_.Close();
  control_.Open();
  EXPECT_EQ(NumberOf([&] { control_.OutBufferCount(); }), 0);
}

// Adapters are fed by these lines: both are up before a byte can leave, and opening does not pulse them.
TEST_F(SerialControlTest, Opened_BothControlLinesRiseOnce) {
  const std::size_t before = LineChanges().size();
  control_.Open();
  const std::vector<LineChange> changes = LineChanges();
  ASSERT_GT(changes.size(), before);
  bool dtr = false;
  bool rts = false;
  for (std::size_t i = before; i < changes.size(); ++i) {
    EXPECT_TRUE(changes[i].dtr || !dtr) << "DTR fell";
    EXPECT_TRUE(changes[i].rts || !rts) << "RTS fell";
    dtr = changes[i].dtr;
    rts = changes[i].rts;
  }
  EXPECT_TRUE(dtr);
  EXPECT_TRUE(rts);
}

TEST_F(SerialControlTest, ControlLines_FollowOneByOne) {
  control_.Open();
  const std::string up = LineHistory();
  control_.SetDTREnable(false);
  control_.SetDTREnable(true);
  control_.SetRTSEnable(false);
  control_.SetRTSEnable(true);
  EXPECT_EQ(LineHistory(), up + " R DR D DR");
}

TEST_F(SerialControlTest, LinesSwitchedOffWhileClosed_AreOffAfterOpening) {
  control_.SetDTREnable(false);
  control_.SetRTSEnable(false);
  const std::string before = LineHistory();
  control_.Open();
  EXPECT_EQ(LineHistory(), before);
}

TEST_F(SerialControlTest, PortPulledWhileOpen_FailsAtTheNextCallAndClosesCleanly) {
  control_.Open();
  wire_.Pull();
  EXPECT_TRUE(Eventually([&] { return NumberOf([&] { control_.InBufferCount(); }) == 8020; }));
  EXPECT_EQ(NumberOf([&] { control_.Input(); }), 8020);
  EXPECT_EQ(NumberOf([&] { control_.OutBufferCount(); }), 8012);
  EXPECT_EQ(NumberOf([&] { control_.Output("x"); }), 8012);
  control_.Close();
  EXPECT_FALSE(control_.PortOpen());
  EXPECT_EQ(NumberOf([&] { control_.Open(); }), 8002);
  wire_.Reconnect();
  control_.Open();
  control_.Output("back");
  EXPECT_EQ(wire_.Receive(4), "back");
}

// Drivers may take a moment to let go of a port, whoever asks for it next.
TEST_F(SerialControlTest, PortStillTakenRightAfterClosing_IsWaitedFor) {
  SerialControlWin second;
  second.SetCommPort(Port());
  const std::function<std::int32_t()> next_users[] = {
      [&] { return NumberOf([&] { control_.Open(); }); }, [&] { return NumberOf([&] { second.Open(); }); },
      [&] { return SystemSerialPorts().IsCOMPortAvailable(Port()); }};
  for (const auto& result_of_opening : next_users) {
    control_.Open();
    control_.Close();
    BarePort other(SerialWire::PortName());
    ASSERT_EQ(other.error(), DWORD{ERROR_SUCCESS});
    std::thread release([&] {
      Sleep(50);
      other.Close();
    });
    EXPECT_EQ(result_of_opening(), 0);
    release.join();
    control_.Close();
    second.Close();
  }
}

TEST_F(SerialControlTest, PortInUse_IsRefusedAtOnceUnlessItWasJustClosed) {
  const auto milliseconds_until_refused = [&] {
    SerialControlWin second;
    second.SetCommPort(Port());
    const DWORD start = GetTickCount();
    EXPECT_EQ(NumberOf([&] { second.Open(); }), 8005);
    EXPECT_EQ(SystemSerialPorts().IsCOMPortAvailable(Port()), 5);
    return GetTickCount() - start;
  };
  control_.Open();
  control_.Close();
  control_.Open();
  EXPECT_LT(milliseconds_until_refused(), 300U) << "another object has it";
  control_.Close();
  {
    BarePort other(SerialWire::PortName());
    const DWORD milliseconds = milliseconds_until_refused();
    EXPECT_GT(milliseconds, 400U) << "its driver might be late";
    EXPECT_LT(milliseconds, 800U) << "once for both";
    EXPECT_LT(milliseconds_until_refused(), 300U) << "the half second is over";
  }
}

TEST_F(SerialControlTest, ClosedWithOutputPending_CanBeOpenedAtOnce) {
  for (int i = 0; i < 3; ++i) {
    OpenAndFill();
    control_.Close();
  }
  EXPECT_EQ(NumberOf([&] { control_.Open(); }), 0);
}

// A handle of the port for another user, and the state that Windows tells it.
class OtherUser {
 public:
  OtherUser()
      : handle_(CreateFileW(SerialWire::PortName().c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                            OPEN_EXISTING, 0, nullptr)) {
    EXPECT_NE(handle_, INVALID_HANDLE_VALUE);
    state.DCBlength = sizeof state;
    EXPECT_TRUE(GetCommState(handle_, &state));
  }
  ~OtherUser() { CloseHandle(handle_); }
  OtherUser(const OtherUser&) = delete;
  OtherUser& operator=(const OtherUser&) = delete;

  void SetState() { EXPECT_TRUE(SetCommState(handle_, &state)); }

  DCB state{};

 private:
  HANDLE handle_;
};

TEST_F(SerialControlTest, StateLeftByAnotherProgram_IsReplaced) {
  {
    OtherUser other;
    other.state.BaudRate = CBR_300;
    other.state.ByteSize = 8;
    other.state.StopBits = TWOSTOPBITS;
    other.state.fOutX = TRUE;
    other.state.fInX = TRUE;
    other.state.fOutxCtsFlow = TRUE;
    other.SetState();
  }
  control_.SetSettings(L"19200,E,7,1");
  control_.Open();
  control_.Output("x");
  EXPECT_EQ(wire_.Receive(1), "x") << "nobody gives a CTS";
  control_.Close();
  const DCB state = OtherUser().state;
  EXPECT_EQ(state.BaudRate, DWORD{CBR_19200});
  EXPECT_EQ(int{state.ByteSize}, 7);
  EXPECT_EQ(int{state.Parity}, EVENPARITY);
  EXPECT_EQ(int{state.StopBits}, ONESTOPBIT);
  EXPECT_FALSE(state.fOutX);
  EXPECT_FALSE(state.fInX);
  EXPECT_FALSE(state.fOutxCtsFlow);
}

// XON is the line's own where there is handshaking.
TEST_F(SerialControlTest, ChangedWhileOpen_SettingsAndHandshakingHoldAtOnce) {
  const std::string bytes =
      "a\x11"
      "b";
  control_.Open();
  wire_.Send(bytes);
  EXPECT_EQ(Read(3), bytes);
  control_.SetSettings(L"1200,O,7,2");
  control_.Close();
  DCB state = OtherUser().state;
  EXPECT_EQ(state.BaudRate, DWORD{CBR_1200});
  EXPECT_EQ(int{state.Parity}, ODDPARITY);
  EXPECT_EQ(int{state.ByteSize}, 7);
  EXPECT_EQ(int{state.StopBits}, TWOSTOPBITS);
  EXPECT_FALSE(state.fOutX);
  control_.Open();
  control_.SetHandshaking(SerialHandshaking::kXonXoff);
  wire_.Send(bytes);
  EXPECT_EQ(Read(2), "ab");
  control_.Close();
  state = OtherUser().state;
  EXPECT_TRUE(state.fOutX);
  EXPECT_TRUE(state.fInX);
}

TEST_F(SerialControlTest, SettingsTheDriverRefuses_AreAFailureAndThePortIsClosed) {
  control_.SetSettings(L"9600,N,4,1");
  EXPECT_EQ(NumberOf([&] { control_.Open(); }), 8015);
  EXPECT_FALSE(control_.PortOpen());
  control_.SetSettings(L"9600,N,8,1");
  EXPECT_EQ(NumberOf([&] { control_.Open(); }), 0);
}

TEST_F(SerialControlTest, BytesFromBeforeTheOpening_AreDiscarded) {
  {
    const BarePort keeper(SerialWire::PortName());
    wire_.Send("older");
    COMSTAT state{};
    DWORD errors = 0;
    EXPECT_TRUE(
        Eventually([&] { return ClearCommError(keeper.handle(), &errors, &state) && state.cbInQue == 5; }));
  }
  control_.Open();
  EXPECT_EQ(control_.Input(), "");
  wire_.Send("new");
  EXPECT_EQ(Read(3), "new");
}

}  // namespace
}  // namespace kesp::clients
