// The stage of the network transport's tests: fakes of everything around it, and one journal of what it does.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "network/kesp_tcp.h"
#include "network/socket_control_fake.h"
#include "network/tcp_dialog_fake.h"
#include "network/tcp_events_fake.h"
#include "support/environment_fake.h"
#include "support/error_numbers.h"
#include "support/failure_fixture.h"
#include "support/text.h"

namespace kesp {

// Lines of a journal, and calls of the socket.
using Lines = std::vector<std::wstring>;
using Calls = std::vector<std::string>;

// Each pump of messages works off one step of the socket's script and takes kPumpMilliseconds.
class KespTCPFixture : public testing::Test {
 protected:
  static constexpr std::uint32_t kPumpMilliseconds = 100;

  KespTCPFixture() {
    fakes_.pump.OnPump([this] {
      socket_->Deliver();
      fakes_.clock.Advance(kPumpMilliseconds);
    });
    events_.record = [this](std::wstring event) {
      CollectLog();
      journal_.push_back(std::move(event));
    };
    tcp_ = std::make_unique<CKespTCP>(
        fakes_.environment,
        [this](SocketListener& listener) {
          auto socket = std::make_unique<SocketControlFake>(listener);
          socket_ = socket.get();
          listener_ = &listener;
          return socket;
        },
        [this] { return make_instrument_(); }, &events_, &dialog_);
  }

  void SetTarget() {
    tcp_->SetIPAddress(L"10.0.0.7");
    tcp_->SetPort(5025);
  }

  // The transport connected, the journal and the calls empty, a calendar second just begun.
  void Connect() {
    SetTarget();
    socket_->on_connect = [this] { socket_->ThenConnects(); };
    ASSERT_TRUE(tcp_->Initialize());
    socket_->on_connect = nullptr;
    socket_->calls.clear();
    journal_.clear();
    fakes_.clock.SetMillisecondOfSecond(0);
  }

  void StartLog() { tcp_->SetCreateLogFile(true); }

  // Events as "Name(arguments)" and log lines as "log: text", in the order they happened.
  Lines Journal() {
    CollectLog();
    return journal_;
  }

  std::string Log() const { return fakes_.files.Content(tcp_->LogFilename()); }

  std::uint32_t Elapsed(std::int32_t start) const {
    return static_cast<std::uint32_t>(fakes_.clock.tick() - start);
  }

  EnvironmentFake fakes_;
  CKespTCPEventsFake events_;
  TcpDialogFake dialog_;
  SocketControlFake* socket_ = nullptr;
  SocketListener* listener_ = nullptr;
  InstrumentFactory make_instrument_ = MakeInstrument;
  std::unique_ptr<CKespTCP> tcp_;

 private:
  // A log line is date and time, TAB, tick count, TAB, message, CR LF.
  void CollectLog() {
    if (tcp_ == nullptr) return;
    const std::string content = Log();
    for (std::size_t end = 0; (end = content.find("\r\n", log_read_)) != std::string::npos;
         log_read_ = end + 2) {
      const std::string line = content.substr(log_read_, end - log_read_);
      const std::size_t message = line.find('\t', line.find('\t') + 1) + 1;
      journal_.push_back(L"log: " + SystemCodePage().FromBytes(line.substr(message)));
    }
  }

  Lines journal_;
  std::size_t log_read_ = 0;
};

}  // namespace kesp
