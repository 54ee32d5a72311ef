// The stage of the communication object's tests: three real transports over fakes, and its trace line by
// line.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "commobj/kesp_comm_obj.h"
#include "gpib/gpib_driver_fake.h"
#include "gpib/ieee_events_fake.h"
#include "network/socket_control_fake.h"
#include "network/tcp_dialog_fake.h"
#include "network/tcp_events_fake.h"
#include "serial/com_port_dialog_fake.h"
#include "serial/com_port_events_fake.h"
#include "serial/serial_control_fake.h"
#include "support/environment_fake.h"
#include "support/error_numbers.h"
#include "support/failure_fixture.h"
#include "support/text.h"

namespace kesp {

// The message of every line of a trace file (date TAB tick TAB message).
inline std::vector<std::wstring> TraceLines(const std::string& content) {
  std::vector<std::wstring> lines;
  for (std::size_t begin = 0, end = 0; (end = content.find("\r\n", begin)) != std::string::npos;
       begin = end + 2) {
    const std::string line = content.substr(begin, end - begin);
    const std::size_t message = line.find('\t', line.find('\t') + 1) + 1;
    lines.push_back(SystemCodePage().FromBytes(line.substr(message)));
  }
  return lines;
}

// Each pump of messages works off one step of the socket's script and takes 100 ms.
class KespCommObjFixture : public testing::Test {
 protected:
  KespCommObjFixture() {
    fakes_.pump.OnPump([this] {
      if (socket_ != nullptr) socket_->Deliver();
      fakes_.clock.Advance(100);
    });
    comm_ = std::make_unique<CKespCommObj>(fakes_.environment, Transports());
  }

  // The makers write down their calls in made_.
  TransportFactory Transports() {
    return {.make_serial =
                [this] {
                  made_.push_back("serial");
                  return std::make_shared<CKespCOMPort3>(fakes_.environment, ports_, &serial_events_,
                                                         &serial_dialog_);
                },
            .make_network =
                [this] {
                  made_.push_back("network");
                  return std::make_shared<CKespTCP>(fakes_.environment, SocketFactory(), MakeInstrument,
                                                    &events_, &network_dialog_);
                },
            .make_ieee =
                [this] {
                  made_.push_back("ieee");
                  return std::make_shared<CKespIEEE>(fakes_.environment, gpib_, &ieee_events_);
                }};
  }

  SocketControlFactory SocketFactory() {
    return [this](SocketListener& listener) {
      auto socket = std::make_unique<SocketControlFake>(listener);
      socket_ = socket.get();
      return socket;
    };
  }

  // csTCPIP with a target that can be connected to.
  void UseNetwork() {
    comm_->SetCommStyle(ECommStyle::csTCPIP);
    comm_->network().SetIPAddress(L"10.0.0.7");
    comm_->network().SetPort(5025);
  }

  // What the socket does once a connection is asked for.
  void Script(std::function<void(SocketControlFake&)> script) {
    socket_->on_connect = [this, script = std::move(script)] { script(*socket_); };
  }

  // The facade's own lines in the trace file; those of the transport go into a file of its own.
  void StartTrace() {
    comm_->SetDebugging(true);
    comm_->network().SetCreateLogFile(false);
  }
  std::vector<std::wstring> Trace() const { return TraceLines(fakes_.files.Content(comm_->DebugFilename())); }

  bool IsClosed() const { return socket_->State() == EKespTCPState::sckClosed; }

  EnvironmentFake fakes_;
  CKespTCPEventsFake events_;
  TcpDialogFake network_dialog_;
  CKespCOMPort3EventsFake serial_events_;
  ComPortDialogFake serial_dialog_;
  SerialPortsFake ports_{fakes_.clock};
  CKespIEEEEventsFake ieee_events_;
  GpibDriverFake bus_;
  GpibThreadsFake threads_;
  GpibDriver gpib_{bus_, threads_};
  SocketControlFake* socket_ = nullptr;
  std::vector<std::string> made_;
  std::unique_ptr<CKespCommObj> comm_;
};

}  // namespace kesp
