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
std::vector<std::wstring> TraceLines(const std::string& content);

// Each pump of messages works off one step of the socket's script and takes 100 ms.
class KespCommObjFixture : public testing::Test {
 protected:
  KespCommObjFixture();
  ~KespCommObjFixture() override;

  // The makers write down their calls in made_.
  TransportFactory Transports();
  SocketControlFactory SocketFactory();

  // csTCPIP with a target that can be connected to.
  void UseNetwork();

  // What the socket does once a connection is asked for.
  void Script(std::function<void(SocketControlFake&)> script);

  // The facade's own lines in the trace file; those of the transport go into a file of its own.
  void StartTrace();
  std::vector<std::wstring> Trace() const;

  bool IsClosed() const;

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
