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
#include "support/lines_fixture.h"
#include "support/text.h"

namespace kesp {

// Lines of a journal, and calls of the socket.
using Calls = std::vector<std::string>;

// Each pump of messages works off one step of the socket's script and takes kPumpMilliseconds.
class KespTCPFixture : public testing::Test {
 protected:
  static constexpr std::uint32_t kPumpMilliseconds = 100;

  KespTCPFixture();
  ~KespTCPFixture() override;

  void SetTarget();

  // The transport connected, the journal and the calls empty, a calendar second just begun.
  void Connect();

  void StartLog();
  // Events as "Name(arguments)" and log lines as "log: text", in the order they happened.
  Lines Journal();

  std::string Log() const;
  std::uint32_t Elapsed(std::int32_t start) const;

  EnvironmentFake fakes_;
  CKespTCPEventsFake events_;
  TcpDialogFake dialog_;
  SocketControlFake* socket_ = nullptr;
  SocketListener* listener_ = nullptr;
  InstrumentFactory make_instrument_ = MakeInstrument;
  std::unique_ptr<CKespTCP> tcp_;

 private:
  // A log line is date and time, TAB, tick count, TAB, message, CR LF.
  void CollectLog();

  Lines journal_;
  std::size_t log_read_ = 0;
};

}  // namespace kesp
