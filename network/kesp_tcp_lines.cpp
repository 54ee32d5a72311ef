// The network transport's lines: sending a command, judging what arrives, and reading the reply.
#include <algorithm>
#include <cstdlib>
#include <limits>

#include "network/kesp_tcp.h"
#include "network/socket_errors.h"
#include "support/attempt.h"
#include "support/error_numbers.h"
#include "support/text.h"
#include "support/text_edit.h"
#include "support/timing.h"

namespace kesp {

namespace {

constexpr wchar_t kWriteLineSource[] = L"[CKespTCP - WriteLine()]";
constexpr wchar_t kReadLineSource[] = L"[CKespTCP - ReadLine()]";
constexpr wchar_t kReadLineBinarySource[] = L"[CKespTCP - ReadLineBinary()]";
// The one source text without brackets; clients may compare it, so it stays.
constexpr wchar_t kInvalidCharactersSource[] = L"CKespTCP - ReadLine()";

// The highest character code that a text reply may hold. 128 itself passes.
constexpr unsigned char kHighestValidCode = 128;

std::wstring CodeOf(char byte) {
  return std::to_wstring(static_cast<unsigned char>(byte));
}

// The log repeats at each arrival what is pending already. Without a bound it would grow with the square of a
// long reply.
constexpr std::size_t kMostLogged = std::size_t{64} * 1024;

Failure NotInitialized(const wchar_t* source) {
  return {tcp_error::ERR_NOT_INITIALIZED, source, L"Socket not initialized"};
}

Failure NoConnection(const wchar_t* source) {
  return {tcp_error::ERR_NO_CONNECTION, source, L"Socket not connected"};
}

Failure TimeOut(const wchar_t* source) {
  return {tcp_error::ERR_TIMEOUT, source, L"Timeout"};
}

}  // namespace

bool CKespTCP::WriteLine(const std::wstring& cmd) {
  CheckThread(kWriteLineSource);
  if (!connected_) throw NotInitialized(kWriteLineSource);
  if (socket_->State() != EKespTCPState::sckConnected) throw NoConnection(kWriteLineSource);
  // The reply to an earlier command must not satisfy the next read.
  data_ready_ = false;
  try {
    socket_->SendData(SystemCodePage().ToBytes(cmd) + '\r');
    PumpOnce();
  } catch (...) {
    const std::wstring reason = NumberAndDescription(CurrentFailure());
    log_.Write([&] { return L"Unable to send command '" + cmd + L"' to " + Target() + L": " + reason; });
    throw Failure(tcp_error::ERR_SEND_DATA, kWriteLineSource, L"Unable to send data (" + reason + L")");
  }
  return true;
}

bool CKespTCP::ReadLine(std::wstring& result) {
  CheckReadable(kReadLineSource);
  const ElapsedSeconds waited(environment_.clock);
  if (!AwaitReply(waited, kReadLineSource)) {
    // With UDP it is answers to a broadcast that are waited for, and their time is over.
    if (socket_->Protocol() == EKespProtocol::sckUDPProtocol) return true;
    throw TimeOut(kReadLineSource);
  }
  const std::string bytes = TakeData();
  result = SystemCodePage().FromBytes(bytes);
  if (check_non_ascii_ && socket_->Protocol() == EKespProtocol::sckTCPProtocol) {
    RefuseInvalidCharacters(bytes, result);
  }
  if (strip_crlf_) result = StripLineEnds(std::move(result));
  data_ready_ = false;
  return true;
}

// False when the time is up. A handler that runs inside the pump may have taken the reply itself; then the
// wait simply goes on.
bool CKespTCP::AwaitReply(const ElapsedSeconds& waited, const wchar_t* source) {
  while (!data_ready_) {
    PumpOnce();
    CheckOverrun(source);
    if (waited.Exceeds(time_out_msecs_)) return false;
  }
  return true;
}

bool CKespTCP::ReadLineBinary(BinaryValue& result, std::int32_t lTimeoutms) {
  CheckReadable(kReadLineBinarySource);
  last_arrival_tick_ = environment_.clock.TickCount();
  const ElapsedSeconds waited(environment_.clock);
  while (!data_ready_ || !(terminate_on_eos_ || IsQuietFor(lTimeoutms))) {
    PumpOnce();
    CheckOverrun(kReadLineBinarySource);
    if (waited.Exceeds(time_out_msecs_)) throw TimeOut(kReadLineBinarySource);
  }
  const std::string bytes = TakeData();
  result = Bytes(bytes.begin(), bytes.end());
  data_ready_ = false;
  return true;
}

void CKespTCP::CheckReadable(const wchar_t* source) const {
  CheckThread(source);
  const EKespTCPState state = socket_->State();
  if (socket_->Protocol() == EKespProtocol::sckUDPProtocol) {
    if (state != EKespTCPState::sckOpen) throw NoConnection(source);
    return;
  }
  if (!connected_) throw NotInitialized(source);
  if (state != EKespTCPState::sckConnected) throw NoConnection(source);
}

// The reply that is being waited for was dropped, so waiting on is useless.
void CKespTCP::CheckOverrun(const wchar_t* source) const {
  if (!overrun_description_) return;
  throw Failure(tcp_error::ERR_GET_DATA, source,
                L"Unable to get data (" + std::to_wstring(kSocketNoBufferSpace) + L" - " +
                    *overrun_description_ + L")");
}

// Whether nothing has come for more than that long. Unsigned arithmetic: the tick counter wraps.
bool CKespTCP::IsQuietFor(std::int32_t milliseconds) const {
  const auto now = static_cast<std::uint32_t>(environment_.clock.TickCount());
  const auto gap = static_cast<std::int32_t>(now - static_cast<std::uint32_t>(last_arrival_tick_));
  return std::abs(std::int64_t{gap}) > milliseconds;
}

std::string CKespTCP::TakeData() {
  std::string bytes = socket_->GetData();
  eos_scanner_.Restart();
  return bytes;
}

void CKespTCP::RefuseInvalidCharacters(const std::string& bytes, const std::wstring& text) {
  const auto invalid = std::find_if(bytes.begin(), bytes.end(), [](char byte) {
    return static_cast<unsigned char>(byte) > kHighestValidCode;
  });
  if (invalid == bytes.end()) return;
  // The event's position is 16 bits wide; further on it stays at its highest value.
  const std::ptrdiff_t position = invalid - bytes.begin() + 1;
  const auto pos =
      static_cast<std::int16_t>(std::min<std::ptrdiff_t>(position, std::numeric_limits<std::int16_t>::max()));
  const std::wstring address = ip_address_;  // a handler may set another one
  Raise(&CKespTCPEvents::ReadInvalidChars, text, pos, address);
  // The number of the serial transport's list: clients know it for this case.
  throw Failure(com_port_error::ERR_INVALID_CHARACTERS, kInvalidCharactersSource,
                L"Invalid characters received on IP address " + address + L".");
}

void CKespTCP::OnDataArrival(std::int32_t bytes_total) {
  log_.Write([&] { return L"DataArrival (" + Peer() + L") Bytes: " + std::to_wstring(bytes_total); });
  if (socket_->State() == EKespTCPState::sckConnecting) return;
  // Only the log needs the data as it was before the events: a handler may take it.
  std::optional<LoggedData> logged;
  if (log_.IsOn()) Try([&] { return logged.emplace(BeginningOf(socket_->PeekData())), true; });
  // A reply of which nobody can be told is one all the same.
  Try([&] { return Raise(&CKespTCPEvents::DataArrivalBegin, bytes_total), true; });
  if (socket_->Protocol() == EKespProtocol::sckUDPProtocol) {
    TakeReply();
  } else {
    JudgeReply();
  }
  if (logged) LogArrival(*logged);
  Raise(&CKespTCPEvents::DataArrivalEnd);
}

CKespTCP::LoggedData CKespTCP::BeginningOf(std::string_view data) {
  LoggedData logged{.beginning = std::string(data.substr(0, kMostLogged)), .length = data.size(), .last = {}};
  if (!data.empty()) logged.last = data.back();
  return logged;
}

// Decides whether what is pending now is a complete reply.
void CKespTCP::JudgeReply() {
  const std::string_view pending = socket_->PeekData();
  if (terminate_on_eos_) {
    data_ready_ = eos_scanner_.FoundIn(pending);
    return;
  }
  data_ready_ = !pending.empty();
  last_arrival_tick_ = environment_.clock.TickCount();
}

void CKespTCP::LogArrival(const LoggedData& data) {
  log_.Write([&] {
    const CodePage& page = SystemCodePage();
    const std::string eos = page.ToBytes(eos_char_);
    const std::size_t left_out = data.length - data.beginning.size();
    return L"Socket Data arrived: <" + page.FromBytes(data.beginning) +
           (left_out > 0 ? L"> and " + std::to_wstring(left_out) + L" more" : L">") + L" (length: " +
           std::to_wstring(data.length) + L"  last byte: " +
           (data.last ? CodeOf(*data.last) : std::wstring()) + L" EOS: " +
           (eos.empty() ? std::wstring() : CodeOf(eos.front())) + L" EOS?: " +
           (data_ready_ ? L"True" : L"False") + L")";
  });
}

}  // namespace kesp
