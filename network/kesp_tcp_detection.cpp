// The network transport's detection: identification commands at the one address, or discovery.
#include "network/kesp_tcp.h"
#include "support/attempt.h"
#include "support/detection_commands.h"
#include "support/error_numbers.h"

namespace kesp {

namespace {

// Enough for an instrument in the same building.
constexpr std::int16_t kDetectionTimeOutMs = 1000;

bool MeansNobodyThere(std::int32_t error) {
  return error == tcp_error::ERR_CONNECTING || error == tcp_error::ERR_TIMEOUT;
}

}  // namespace

bool CKespTCP::AutoDetect(std::wstring& result, EDetectLevel DetectLevel) {
  result.clear();
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
  const bool was_connected = connected_;
  const Attempt connection = Try([&] { return Initialize(); });
  if (connection.succeeded && AskInTurn(commands, result)) return true;
  // A late answer must not become the reply to somebody's next command.
  if (!was_connected) Disconnect();
  if (connection.error && !MeansNobodyThere(connection.number())) throw *connection.error;
  return false;
}

bool CKespTCP::AskInTurn(std::span<const wchar_t* const> commands, std::wstring& result) {
  for (const wchar_t* command : commands) {
    if (IsAborted(command)) return false;
    if (IsAnswered(command, result)) return true;
  }
  return false;
}

bool CKespTCP::IsAborted(const std::wstring& cmd) {
  const std::wstring address = ip_address_;  // a handler may set another one
  bool abort = false;
  Raise(&CKespTCPEvents::AutoDetectUpdate, cmd, address, port_, abort);
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
