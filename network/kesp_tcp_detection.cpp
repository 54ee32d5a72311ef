// The network transport's detection: identification commands at the one address, or discovery.
#include "network/kesp_tcp.h"
#include "support/attempt.h"
#include "support/detection_commands.h"
#include "support/error_numbers.h"

namespace kesp {

namespace {

constexpr wchar_t kAutoDetectSource[] = L"[CKespTCP - AutoDetect()]";

// Enough for an instrument in the same building.
constexpr std::int16_t kDetectionTimeOutMs = 1000;

bool MeansNobodyThere(std::int32_t error) {
  return error == tcp_error::ERR_CONNECTING || error == tcp_error::ERR_TIMEOUT;
}

}  // namespace

bool CKespTCP::AutoDetect(std::wstring& result, EDetectLevel DetectLevel) {
  result.clear();
  CheckThread(kAutoDetectSource);
  const std::int16_t time_out = time_out_msecs_;
  const EIPType ip_type = ip_type_;
  const EKespProtocol protocol = protocol_;
  time_out_msecs_ = kDetectionTimeOutMs;
  const Attempt search = Try([&] {
    Raise(&CKespTCPEvents::AutoDetectBegin);
    return protocol_ == EKespProtocol::sckUDPProtocol ? Discover()
                                                      : Probe(DetectionCommands(DetectLevel), result);
  });
  time_out_msecs_ = time_out;
  ip_type_ = ip_type;
  protocol_ = protocol;
  Raise(&CKespTCPEvents::AutoDetectEnd);
  if (search.error) throw *search.error;
  return search.succeeded;
}

bool CKespTCP::Probe(std::span<const wchar_t* const> commands, std::wstring& result) {
  // A connection to somebody else, or to somebody who has gone, cannot tell who is at this address.
  if (connected_ && !IsConnectedToTarget()) Disconnect();
  const Attempt search = Try([&] { return Initialize() && AskInTurn(commands, result); });
  // What is no connection must not become one later, nor count as one.
  if (!search.succeeded && socket_->State() != EKespTCPState::sckConnected) Disconnect();
  if (search.error && !MeansNobodyThere(search.number())) throw *search.error;
  return search.succeeded;
}

bool CKespTCP::IsConnectedToTarget() const {
  return socket_->State() == EKespTCPState::sckConnected && socket_->RemoteHost() == ip_address_ &&
         socket_->RemotePort() == port_;
}

// Whether one of them is answered, be it by the late answer to an earlier one.
bool CKespTCP::AskInTurn(std::span<const wchar_t* const> commands, std::wstring& result) {
  for (const wchar_t* command : commands) {
    if (IsAborted(command)) return false;
    if (IsAnswered(command, result)) return true;
  }
  return false;
}

bool CKespTCP::IsAborted(const std::wstring& cmd) {
  bool abort = false;
  Raise(&CKespTCPEvents::AutoDetectUpdate, cmd, ip_address_, port_, abort);
  return abort;
}

bool CKespTCP::IsAnswered(const std::wstring& cmd, std::wstring& result) {
  std::wstring reply;
  // Whatever fails here, the next command may do better.
  const Attempt exchange = Try([&] { return WriteLine(cmd) && ReadLine(reply); });
  if (exchange.succeeded) result = reply;
  return exchange.succeeded;
}

}  // namespace kesp
