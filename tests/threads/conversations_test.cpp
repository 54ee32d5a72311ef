// Whole objects on threads of their own: what they share is what the library shares behind their backs.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "network/kesp_tcp.h"
#include "network/socket_control_fake.h"
#include "network/tcp_dialog_fake.h"
#include "network/tcp_events_fake.h"
#include "serial/com_port_dialog_fake.h"
#include "serial/com_port_events_fake.h"
#include "serial/kesp_com_port.h"
#include "serial/serial_control_fake.h"
#include "support/ansi_text.h"
#include "support/environment_fake.h"
#include "support/text.h"
#include "tests/threads/together.h"

namespace kesp::threads {
namespace {

constexpr int kThreads = 6;

// The network transport of one thread, over fakes of its own.
class NetworkStage {
 public:
  NetworkStage() {
    fakes_.pump.OnPump([this] {
      socket_->Deliver();
      fakes_.clock.Advance(100);
    });
    tcp_.SetIPAddress(L"10.0.0.7");
    tcp_.SetPort(5025);
    tcp_.SetCheckNonAscii(false);
    tcp_.SetCreateLogFile(true);
  }

  void Converse(int round) {
    socket_->on_connect = [this] { socket_->ThenConnects(); };
    EXPECT_TRUE(tcp_.Initialize());
    EXPECT_TRUE(tcp_.WriteLine(L"*IDN?"));
    socket_->ThenReceives("\x80 " + std::to_string(round) + "\r");
    std::wstring result;
    EXPECT_TRUE(tcp_.ReadLine(result));
    EXPECT_EQ(result, L"\u20AC " + std::to_wstring(round));
    EXPECT_TRUE(tcp_.Uninitialize());
  }

 private:
  EnvironmentFake fakes_;
  CKespTCPEventsFake events_;
  TcpDialogFake dialog_;
  SocketControlFake* socket_ = nullptr;
  CKespTCP tcp_{fakes_.environment,
                [this](SocketListener& listener) {
                  auto socket = std::make_unique<SocketControlFake>(listener);
                  socket_ = socket.get();
                  return socket;
                },
                MakeInstrument, &events_, &dialog_};
};

// The serial transport likewise.
class SerialStage {
 public:
  SerialStage() {
    fakes_.clock.SetStepPerReading(1);
    port_.SetMaxBaudRate(EKespBaudRate3::br921600);
    port_.SetMinBaudRate(EKespBaudRate3::br150);
    port_.SetBaudRate(EKespBaudRate3::br9600);
    port_.SetCreateLogFile(true);
  }

  void Converse(int round) {
    EXPECT_TRUE(port_.OpenPort());
    EXPECT_TRUE(port_.WriteLine(L"*IDN?"));
    ports_.line.Arrive(std::to_string(round) + "\r\n", 5);
    std::wstring result;
    EXPECT_TRUE(port_.ReadLine(result));
    EXPECT_EQ(result, std::to_wstring(round));
    port_.ClosePort();
  }

 private:
  EnvironmentFake fakes_;
  CKespCOMPort3EventsFake events_;
  ComPortDialogFake dialog_;
  SerialPortsFake ports_{fakes_.clock};
  CKespCOMPort3 port_{fakes_.environment, ports_, &events_, &dialog_};
};

template <typename Stage>
void ConverseOnManyThreads() {
  RunTogether(kThreads, [](int) {
    for (int round = 0; round < Rounds(10); ++round) Stage().Converse(round);
  });
}

// The tables of the code pages are made at their first use, which is that of all threads at once when this
// runs alone.
TEST(CodePageThreadsTest, FirstUseByManyThreads_AllSeeTheWholeTable) {
  RunTogether(kThreads, [](int) {
    EXPECT_EQ(ToAnsi(L"\u20AC"), "\x80");
    EXPECT_EQ(Windows1252().FromBytes("\x80"), L"\u20AC");
  });
}

TEST(ConversationThreadsTest, NetworkObjectsOnTheirOwnThreads_ShareNothing) {
  ConverseOnManyThreads<NetworkStage>();
}

TEST(ConversationThreadsTest, SerialObjectsOnTheirOwnThreads_ShareNothing) {
  ConverseOnManyThreads<SerialStage>();
}

}  // namespace
}  // namespace kesp::threads
