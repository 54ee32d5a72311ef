// The stage of the network transport's tests: what stands on it, and the journal.
#include "network/kesp_tcp_fixture.h"

#include <utility>

namespace kesp {

KespTCPFixture::KespTCPFixture() {
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

KespTCPFixture::~KespTCPFixture() = default;

void KespTCPFixture::SetTarget() {
  tcp_->SetIPAddress(L"10.0.0.7");
  tcp_->SetPort(5025);
}

void KespTCPFixture::Connect() {
  SetTarget();
  socket_->on_connect = [this] { socket_->ThenConnects(); };
  ASSERT_TRUE(tcp_->Initialize());
  socket_->on_connect = nullptr;
  socket_->calls.clear();
  journal_.clear();
  fakes_.clock.SetMillisecondOfSecond(0);
}

void KespTCPFixture::StartLog() {
  tcp_->SetCreateLogFile(true);
}

Lines KespTCPFixture::Journal() {
  CollectLog();
  return journal_;
}

std::string KespTCPFixture::Log() const {
  return fakes_.files.Content(tcp_->LogFilename());
}

std::uint32_t KespTCPFixture::Elapsed(std::int32_t start) const {
  return static_cast<std::uint32_t>(fakes_.clock.tick() - start);
}

void KespTCPFixture::CollectLog() {
  if (tcp_ == nullptr) return;
  const std::string content = Log();
  for (std::size_t end = 0; (end = content.find("\r\n", log_read_)) != std::string::npos;
       log_read_ = end + 2) {
    const std::string line = content.substr(log_read_, end - log_read_);
    const std::size_t message = line.find('\t', line.find('\t') + 1) + 1;
    journal_.push_back(L"log: " + SystemCodePage().FromBytes(line.substr(message)));
  }
}

}  // namespace kesp
