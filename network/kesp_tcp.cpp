// The network transport's creation and settings.
#include "network/kesp_tcp.h"

#include <utility>

#include "network/socket_errors.h"
#include "support/error_numbers.h"
#include "support/object_key.h"

namespace kesp {

CKespTCP::CKespTCP(Environment& environment, const SocketControlFactory& make_socket,
                   InstrumentFactory make_instrument, CKespTCPEvents* events, TcpDialog* dialog)
    : environment_(environment),
      events_(events),
      dialog_(dialog),
      log_(environment.clock, environment.files, L"CKespTCP.log"),
      key_(NewObjectKey(environment.guids)),
      socket_(make_socket(*this)),
      make_instrument_(std::move(make_instrument)),
      devices_(std::make_shared<CInstruments>()) {}

CKespTCP::~CKespTCP() = default;

void CKespTCP::SetEOSChar(const std::wstring& value) {
  std::wstring eos_char = value;
  eos_scanner_.LookFor(value);
  eos_char_.swap(eos_char);
}

void CKespTCP::SetPort(std::int16_t value) {
  if (value < 1) throw Failure(tcp_error::ERR_INVALID_PORT, L"[CKespTCP - Port]", L"Invalid Port");
  port_ = value;
}

void CKespTCP::SetIPAddress(const std::wstring& value) {
  if (value.empty()) {
    throw Failure(tcp_error::ERR_INVALID_IP_ADDRESS, L"[CKespTCP - IPAddress]", L"Invalid IP Address");
  }
  ip_address_ = value;
}

std::shared_ptr<void> CKespTCP::KeepAlive() {
  return events_ != nullptr ? events_->KeepAlive() : nullptr;
}

void CKespTCP::CheckThread(const wchar_t* source) const {
  if (socket_->IsOfThisThread()) return;
  throw Failure(
      kWrongThread, source,
      L"Called from the wrong thread: the socket's notifications go to the thread that connected first");
}

void CKespTCP::PumpOnce() {
  socket_->DeliverDue();
  environment_.pump.PumpOnce();
}

std::wstring CKespTCP::Peer() const {
  return socket_->RemoteHost() + L":" + std::to_wstring(socket_->RemotePort());
}

std::wstring CKespTCP::Target() const {
  return ip_address_ + L" on port " + std::to_wstring(port_);
}

}  // namespace kesp
