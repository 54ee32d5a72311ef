// The stage of the communication object's tests: the transports, their sockets, and the trace.
#include "commobj/kesp_comm_obj_fixture.h"

#include <utility>

namespace kesp {

std::vector<std::wstring> TraceLines(const std::string& content) {
  std::vector<std::wstring> lines;
  for (std::size_t begin = 0, end = 0; (end = content.find("\r\n", begin)) != std::string::npos;
       begin = end + 2) {
    const std::string line = content.substr(begin, end - begin);
    const std::size_t message = line.find('\t', line.find('\t') + 1) + 1;
    lines.push_back(SystemCodePage().FromBytes(line.substr(message)));
  }
  return lines;
}

KespCommObjFixture::KespCommObjFixture() {
  fakes_.pump.OnPump([this] {
    if (socket_ != nullptr) socket_->Deliver();
    fakes_.clock.Advance(100);
  });
  comm_ = std::make_unique<CKespCommObj>(fakes_.environment, Transports());
}

KespCommObjFixture::~KespCommObjFixture() = default;

TransportFactory KespCommObjFixture::Transports() {
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

SocketControlFactory KespCommObjFixture::SocketFactory() {
  return [this](SocketListener& listener) {
    auto socket = std::make_unique<SocketControlFake>(listener);
    socket_ = socket.get();
    return socket;
  };
}

void KespCommObjFixture::UseNetwork() {
  comm_->SetCommStyle(ECommStyle::csTCPIP);
  comm_->network().SetIPAddress(L"10.0.0.7");
  comm_->network().SetPort(5025);
}

void KespCommObjFixture::Script(std::function<void(SocketControlFake&)> script) {
  socket_->on_connect = [this, script = std::move(script)] { script(*socket_); };
}

void KespCommObjFixture::StartTrace() {
  comm_->SetDebugging(true);
  comm_->network().SetCreateLogFile(false);
}

std::vector<std::wstring> KespCommObjFixture::Trace() const {
  return TraceLines(fakes_.files.Content(comm_->DebugFilename()));
}

bool KespCommObjFixture::IsClosed() const {
  return socket_->State() == EKespTCPState::sckClosed;
}

}  // namespace kesp
