// The network transport's connection: opening and closing it, and the socket's notifications other than data.
#include "network/kesp_tcp.h"
#include "network/socket_errors.h"
#include "support/attempt.h"
#include "support/error_numbers.h"
#include "support/timing.h"

namespace kesp {

namespace {

constexpr int kMaxAttempts = 4;
constexpr wchar_t kInitializeSource[] = L"[CKespTCP - Initialize()]";
constexpr wchar_t kUninitializeSource[] = L"[CKespTCP - Uninitialize()]";

}  // namespace

bool CKespTCP::Initialize() {
  log_.Write(L"Initialize()");
  CheckThread(kInitializeSource);
  if (connected_) {
    log_.Write(L"Initialize() Done...");
    return true;
  }
  CheckTarget();
  for (int attempt = 1;; ++attempt) {
    CloseBeforeConnecting(kInitializeSource);
    StartConnecting();
    if (AwaitConnection()) break;
    const EKespTCPState state = socket_->State();
    // A host that answers nothing at all may have missed the request; every other outcome is final.
    if (attempt >= kMaxAttempts || state != EKespTCPState::sckConnecting) {
      throw Failure(tcp_error::ERR_TIMEOUT, kInitializeSource, L"Timeout - unable to establish connection");
    }
    log_.Write([state] { return L"Retrying...(State: " + std::to_wstring(static_cast<int>(state)) + L")"; });
  }
  data_ready_ = false;
  log_.Write(L"Initialize() Done...");
  return true;
}

// The port's upper bound of 65535 lies outside the range of its type, so it needs no check.
void CKespTCP::CheckTarget() {
  log_.Write(L"Check IP Address...");
  if (ip_address_.empty() || ip_address_ == L"0.0.0.0") {
    throw Failure(tcp_error::ERR_INVALID_IP_ADDRESS, kInitializeSource, L"Invalid IP Address");
  }
  log_.Write(L"Check Port...");
  if (port_ < 1) throw Failure(tcp_error::ERR_INVALID_PORT, kInitializeSource, L"Invalid Port");
}

void CKespTCP::CloseBeforeConnecting(const wchar_t* source) {
  if (socket_->State() == EKespTCPState::sckClosed) return;
  CloseSocket();
  const ElapsedSeconds waited(environment_.clock);
  while (socket_->State() != EKespTCPState::sckClosed) {
    if (!waited.Exceeds(time_out_msecs_)) continue;
    log_.Write(L"Connection timeout...");
    throw Failure(tcp_error::ERR_TIMEOUT, source, L"Timeout waiting for connection to close");
  }
}

void CKespTCP::StartConnecting() {
  try {
    socket_->SetProtocol(protocol_);
    if (protocol_ == EKespProtocol::sckUDPProtocol) device_addresses_.Restart();
    log_.Write([this] { return L"Connecting to " + Target() + L"..."; });
    socket_->Connect(ip_address_, port_);
  } catch (...) {
    const Failure failure = CurrentFailure();
    log_.Write([&] {
      return L"Unable to establish connection to " + Target() + L": " + NumberAndDescription(failure);
    });
    throw Failure(tcp_error::ERR_CONNECTING, kInitializeSource,
                  L"Unable to establish connection (" + NumberAndDescription(failure) + L")");
  }
}

// Waits for the socket's connection; false when the time is up.
bool CKespTCP::AwaitConnection() {
  log_.Write(L"Waiting for connection to be established...");
  const ElapsedSeconds waited(environment_.clock);
  for (;;) {
    PumpOnce();
    if (socket_->State() == EKespTCPState::sckConnected && connected_) return true;
    if (waited.Exceeds(time_out_msecs_)) {
      log_.Write(L"Connection timeout...");
      return false;
    }
  }
}

bool CKespTCP::Uninitialize() {
  if (!connected_) return true;
  CheckThread(kUninitializeSource);
  try {
    CloseSocket();
  } catch (...) {
    const Failure failure = CurrentFailure();
    log_.Write(
        [&] { return L"Unable to close connection to " + Target() + L": " + NumberAndDescription(failure); });
    throw Failure(tcp_error::ERR_CLOSING, kUninitializeSource,
                  L"Unable to close connection (" + NumberAndDescription(failure) + L")");
  }
  connected_ = false;
  return true;
}

// However far the connection has come. One that fails to close does not count either.
void CKespTCP::Disconnect() {
  connected_ = false;
  if (socket_->State() != EKespTCPState::sckClosed) Try([this] { return CloseSocket(), true; });
}

void CKespTCP::CloseSocket() {
  socket_->Close();
  eos_scanner_.Restart();
  data_ready_ = false;
  overrun_description_.reset();
}

void CKespTCP::OnConnect() {
  // A connection of which nobody can be told is one all the same.
  Try([this] { return Raise(&CKespTCPEvents::ConnectBegin), true; });
  log_.Write([this] { return L"Connect (" + Peer() + L")"; });
  connected_ = true;
  Raise(&CKespTCPEvents::ConnectEnd);
}

// The connection counts as initialized until Uninitialize; reads and writes find out by the socket's state.
void CKespTCP::OnClose() {
  Raise(&CKespTCPEvents::CloseBegin);
  log_.Write([this] { return L"Close (" + Peer() + L")"; });
  Raise(&CKespTCPEvents::CloseEnd);
}

void CKespTCP::OnError(SocketError& error) {
  if (error.number == kSocketNoBufferSpace && socket_->State() == EKespTCPState::sckError) {
    overrun_description_ = error.description;
  }
  Raise(&CKespTCPEvents::ErrorBegin, error.number, error.description, error.scode, error.source,
        error.help_file, error.help_context, error.cancel_display);
  log_.Write([&] {
    return L"Error: " + std::to_wstring(error.number) + L" - " + error.description + L" (" +
           std::to_wstring(error.scode) + L" " + error.source + L") (" + Peer() + L")";
  });
  Raise(&CKespTCPEvents::ErrorEnd);
}

void CKespTCP::OnSendProgress(std::int32_t bytes_sent, std::int32_t bytes_remaining) {
  Raise(&CKespTCPEvents::SendProgressBegin, bytes_sent, bytes_remaining);
  log_.Write([&] {
    return L"Send Progress (" + Peer() + L") - Sent: " + std::to_wstring(bytes_sent) + L" Remaining: " +
           std::to_wstring(bytes_remaining);
  });
  Raise(&CKespTCPEvents::SendProgressEnd);
}

void CKespTCP::OnSendComplete() {
  Raise(&CKespTCPEvents::SendCompleteBegin);
  log_.Write([this] { return L"Send complete (" + Peer() + L")"; });
  Raise(&CKespTCPEvents::SendCompleteEnd);
}

}  // namespace kesp
