// The model of the serial transport: frames, when a reply is complete, when a wait is over.
#include <algorithm>
#include <limits>

#include "support/text.h"
#include "tests/fuzz/conversation_replies.h"
#include "tests/fuzz/conversation_serial.h"

namespace kesp {

Attempt SerialConversation::Do(Member member, Call& call, const std::function<bool()>& operation) {
  call.member = member;
  calls_.push_back(&call);
  Attempt attempt = Try(operation);
  calls_.pop_back();
  return attempt;
}

void SerialConversation::Note(Call& call) const {
  call.settings = {.time_out_ms = port_->TimeOut(),
                   .terminates_on_lf = port_->TerminateOnLF(),
                   .terminates_on_cr = port_->UseRFModem() || port_->UseRedirector(),
                   .strips = port_->StripCRLF(),
                   .checks = port_->CheckNonAscii()};
}

void SerialConversation::BeginWait(Call& call) const {
  call.start_ms = world_.clock.now_ms();
  call.start_tick = world_.clock.Tick();
}

// How long the line may be silent.
std::int32_t SerialConversation::Limit(const Call& call) {
  if (call.member == Member::kReadLineBinary && !call.reply.empty()) return call.silence_ms;
  const Settings& settings = call.settings;
  const bool is_raw =
      call.member == Member::kReadLine && !settings.terminates_on_lf && !settings.strips && !settings.checks;
  return is_raw && !call.reply.empty() ? 100 : settings.time_out_ms;
}

bool SerialConversation::IsOverflowing(const Call& call) {
  const std::int64_t end = std::int64_t{call.start_tick} + Limit(call);
  return end > std::numeric_limits<std::int32_t>::max() || end < std::numeric_limits<std::int32_t>::min();
}

bool SerialConversation::IsTimeOver(const Call& call) const {
  return world_.clock.now_ms() - call.start_ms > Limit(call);
}

bool SerialConversation::IsTerminated(const Call& call) {
  if (!call.has_new_bytes) return false;
  return (call.settings.terminates_on_cr && call.reply.find('\r') != std::string::npos) ||
         (call.settings.terminates_on_lf && call.reply.find('\n') != std::string::npos);
}

// A reply loses the blanks at its ends where an end was found in it.
std::string SerialConversation::TrimmedReply(const Call& call) {
  const bool has_end = IsTerminated(call) || call.settings.terminates_on_lf;
  return std::string(has_end ? Trimmed(call.reply) : std::string_view(call.reply));
}

std::optional<std::string> SerialConversation::Frame(EKespControllerStyle3 style, const std::wstring& cmd,
                                                     const std::wstring& address, const std::wstring& value) {
  const CodePage& page = SystemCodePage();
  const std::string command = page.ToBytes(cmd);
  switch (style) {
    case EKespControllerStyle3::CS_KESP:
      return std::string(Trimmed(command + "\r"));
    case EKespControllerStyle3::CS_MAXSTREAM:
      return std::string(Trimmed(command));
    case EKespControllerStyle3::CS_OMEGA:
      break;
    default:
      return std::string();
  }
  const std::string digits = page.ToBytes(address);
  if (digits.empty()) return std::nullopt;
  std::string frame = "\x04" + digits.substr(0, 1) + digits.substr(0, 2);
  if (digits.size() >= 2) frame += digits[1];
  if (value.empty()) return std::string(Trimmed(frame + command + "\x05\r"));
  const std::string body = command + page.ToBytes(value) + "\x03";
  int check = 0;
  for (const char byte : body) check ^= static_cast<unsigned char>(byte);
  return std::string(Trimmed(frame + "\x02" + body + static_cast<char>(check) + "\r"));
}

void SerialConversation::CheckPortFailure(const Attempt& attempt, const Call& call,
                                          const std::wstring& member) {
  Require(call.failed || call.interfered, "a call fails as the port does");
  Require(attempt.source().starts_with(L"CKespCOMPort3 - " + member + L" ["),
          "a failure of the port has its source");
}

void SerialConversation::CheckReadingFailure(const Attempt& attempt, const Call& call,
                                             const std::wstring& member) {
  if (attempt.number() == 6) {
    Require(IsOverflowing(call), "only a deadline that cannot be computed overflows");
    return;
  }
  CheckPortFailure(attempt, call, member);
}

void SerialConversation::Reading() {
  if (calls_.empty()) return;
  Call& call = *calls_.back();
  const bool is_line = call.member == Member::kReadLine;
  if (!is_line && call.member != Member::kReadLineBinary) return;
  if (call.looks++ == 0) {
    call.mode = port_->InputMode();
    BeginWait(call);
  } else if (call.has_new_bytes) {
    Require(!is_line || !IsTerminated(call), "a read returns when the reply is ended");
    if (!is_line || !call.settings.terminates_on_lf) BeginWait(call);
  } else {
    Require(!IsOverflowing(call), "a deadline that cannot be computed is a failure");
    Require(!IsTimeOver(call), "a read ends when its time is over");
  }
}

void SerialConversation::Taken(const std::string& bytes) {
  if (calls_.empty()) return;
  Call& call = *calls_.back();
  call.has_new_bytes = !bytes.empty();
  call.reply += bytes;
  Note(call);
  if (call.member == Member::kDownload) BeginWait(call);
}

void SerialConversation::Counting() {
  if (calls_.empty() || calls_.back()->member != Member::kDownload) return;
  if (calls_.back()->looks++ == 0) BeginWait(*calls_.back());
}

void SerialConversation::Counted(std::int32_t count) {
  if (calls_.empty() || calls_.back()->member != Member::kDownload) return;
  calls_.back()->has_new_bytes = count != 0;
  Note(*calls_.back());
}

void SerialConversation::Clearing() {
  if (calls_.empty() || calls_.back()->member != Member::kWriteLine) return;
  Call& call = *calls_.back();
  if (!call.style) call.style = port_->ControllerStyle();
}

void SerialConversation::Writing(std::string_view bytes) {
  if (!calls_.empty()) calls_.back()->writes.emplace_back(bytes);
}

void SerialConversation::CountedOutput(std::int32_t count) {
  if (!calls_.empty()) calls_.back()->output_left = count;
}

void SerialConversation::Failing() {
  if (!calls_.empty()) calls_.back()->failed = true;
}

void SerialConversation::DownloadUpdate(std::int32_t CharsReceived, bool& Abort) {
  Call& call = *calls_.back();
  Require(static_cast<std::size_t>(CharsReceived) == call.reply.size(), "an update tells what came so far");
  Answer();
  if (!calm_ && input_.HasMore() && input_.Byte() == 0xFF) Abort = call.aborted = true;
  BeginWait(call);
}

void SerialConversation::WriteBegin(const std::wstring&, std::int16_t Port) {
  Require(Port == port_->Port(), "WriteBegin tells the port");
  Answer();
}

void SerialConversation::WriteUpdate(std::int16_t OutBufferCount, std::int16_t Port) {
  Require(Port == port_->Port(), "WriteUpdate tells the port");
  const std::int32_t left = calls_.back()->output_left;
  Require(OutBufferCount == std::min(left, 32767), "WriteUpdate tells what is left");
  Answer();
}

void SerialConversation::WriteEnd() {
  Require(calls_.back()->output_left == 0 || calls_.back()->interfered, "WriteEnd comes when all has left");
  Answer();
}

void SerialConversation::ReadBegin(std::int16_t Port) {
  Require(Port == port_->Port(), "ReadBegin tells the port");
  Answer();
}

void SerialConversation::ReadUpdate(std::int32_t CharsReceived, std::int16_t Port) {
  Require(Port == port_->Port(), "ReadUpdate tells the port");
  Call& call = *calls_.back();
  const bool counts = call.member == Member::kReadLine || call.mode == EInputMode::imBinary;
  if (call.member != Member::kOther) {
    Require(static_cast<std::size_t>(CharsReceived) == (counts ? call.reply.size() : 0U),
            "an update tells what came so far");
  }
  Answer();
  Note(call);
}

void SerialConversation::ReadInvalidChars(const std::wstring& Buffer, std::int16_t pos, std::int16_t Port) {
  Require(Port == port_->Port(), "ReadInvalidChars tells the port");
  Require(TellsInvalid(SystemCodePage().ToBytes(Buffer), pos),
          "the position of the first invalid character is told");
  Answer();
}

void SerialConversation::AutoDetectBegin(std::int16_t Port) {
  Require(Port == port_->Port(), "AutoDetectBegin tells the port");
  ++detections_;
  Answer();
}

void SerialConversation::AutoDetectUpdate(std::int16_t Port, EKespBaudRate3 BaudRate, const std::wstring& cmd,
                                          bool& Abort) {
  Require(Port == port_->Port() && BaudRate == port_->BaudRate(), "AutoDetectUpdate tells port and rate");
  Require(cmd == L"*IDN?" || cmd == L"*VER" || cmd == L"t", "a detection tries the commands that it knows");
  Answer();
  if (!calm_ && input_.HasMore() && input_.Byte() == 0xFF) Abort = calls_.back()->aborted = true;
}

void SerialConversation::AutoDetectEnd() {
  Require(detections_-- > 0, "a detection ends that has begun");
  Answer();
}

}  // namespace kesp
