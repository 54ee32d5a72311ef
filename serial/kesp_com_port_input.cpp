// The serial transport's input: text replies, binary replies, downloads.
#include <algorithm>
#include <limits>

#include "serial/kesp_com_port.h"
#include "support/attempt.h"
#include "support/error_box.h"
#include "support/error_numbers.h"
#include "support/text.h"
#include "support/text_edit.h"
#include "support/timing.h"

namespace kesp {

namespace {

// The silence that ends a raw reply (one that is neither terminated, nor stripped, nor checked).
constexpr std::int32_t kRawSilenceMs = 100;

// How long a download lets its data gather between two looks at the line.
constexpr std::int32_t kGatheringMs = 500;

// The highest character code that a text reply may hold. 128 itself passes.
constexpr unsigned char kHighestValidCode = 128;

Failure ReadTimeOut(const wchar_t* source, std::int16_t port) {
  return {com_port_error::ERR_READ_TIMEOUT, source,
          L"Timeout waiting for instrument to respond to command on COM" + std::to_wstring(port) + L"."};
}

// After a failure: what came, as far as there is memory for it.
void KeepWhatCame(const std::string& bytes, std::wstring& result) noexcept {
  try {
    result = SystemCodePage().FromBytes(bytes);
  } catch (...) {
  }
}

// Text goes behind the text that is there; bytes take its place.
void StoreReply(const std::string& reply, EInputMode mode, BinaryValue& result) {
  if (mode == EInputMode::imBinary) {
    result = Bytes(reply.begin(), reply.end());
    return;
  }
  const auto* earlier = std::get_if<std::wstring>(&result);
  result = (earlier != nullptr ? *earlier : std::wstring()) + SystemCodePage().FromBytes(reply);
}

// Every character's code in decimal, with two digits at least and a blank behind it.
std::wstring CharacterCodes(const std::string& bytes) {
  std::wstring codes;
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    if (code < 10) codes += L'0';
    codes += std::to_wstring(code) + L' ';
  }
  return codes;
}

}  // namespace

std::string CKespCOMPort3::TakeInput(std::size_t already) {
  std::string chunk = control_->Input();
  if (chunk.size() > kReplyLimit - already) throw OutOfMemory();
  return chunk;
}

// A whole reply says that the command has arrived; single bytes may be its echo.
void CKespCOMPort3::NoteEnd(ReadOutcome outcome) {
  if (outcome == ReadOutcome::kComplete) transmission_.End();
}

bool CKespCOMPort3::ReadLine(std::wstring& result) {
  result.clear();
  Raise(&CKespCOMPort3Events::ReadBegin, port_);
  Log(L"ReadLine...");
  std::string reply;
  ReadOutcome outcome{};
  try {
    outcome = CollectReply(reply);
    NoteEnd(outcome);
    result = SystemCodePage().FromBytes(reply);
  } catch (...) {
    const Failure failure = CurrentFailure();
    KeepWhatCame(reply, result);
    LogFailure(L"ReadLine()", failure);
    FailIn(L"ReadLine()", failure);
  }
  if (outcome == ReadOutcome::kTimeOut) {
    const Failure failure = ReadTimeOut(L"CKespCOMPort3 - ReadLine()", port_);
    Raise(&CKespCOMPort3Events::ReadTimeOut, port_);
    throw failure;
  }
  Log([&] {
    return L"Received '" + result + L"' (raw) on COM" + std::to_wstring(port_) + L"(Asc: " +
           CharacterCodes(reply) + L")";
  });
  if (check_non_ascii_) RefuseInvalidCharacters(reply);
  if (strip_crlf_) result = StripLineEnds(std::move(result));
  Log([&] { return L"Received '" + result + L"' (filtered) on COM" + std::to_wstring(port_); });
  return true;
}

// The flags are read anew at each pass: a handler may change them.
CKespCOMPort3::ReadOutcome CKespCOMPort3::CollectReply(std::string& reply) {
  std::int32_t start = environment_.clock.TickCount();
  bool has_cr = false;
  bool has_lf = false;
  for (;;) {
    const std::string chunk = TakeInput(reply.size());
    if (!chunk.empty()) {
      reply += chunk;
      has_cr = has_cr || chunk.find('\r') != std::string::npos;
      has_lf = has_lf || chunk.find('\n') != std::string::npos;
      Raise(&CKespCOMPort3Events::ReadUpdate, static_cast<std::int32_t>(reply.size()), port_);
      const bool ends_with_cr = use_rf_modem_ || use_redirector_;
      if ((ends_with_cr && has_cr) || (terminate_on_lf_ && has_lf)) {
        reply = Trim(std::string_view(reply));
        return ReadOutcome::kComplete;
      }
      if (!terminate_on_lf_) start = environment_.clock.TickCount();
      continue;
    }
    const bool raw = !terminate_on_lf_ && !strip_crlf_ && !check_non_ascii_;
    const bool gap_ends = raw && !reply.empty();
    if (!IsPast(environment_.clock, start, gap_ends ? kRawSilenceMs : time_out_)) continue;
    if (!terminate_on_lf_) return reply.empty() ? ReadOutcome::kTimeOut : ReadOutcome::kComplete;
    if (!has_cr) return ReadOutcome::kTimeOut;
    reply = Trim(std::string_view(reply));
    return ReadOutcome::kComplete;
  }
}

void CKespCOMPort3::RefuseInvalidCharacters(const std::string& reply) {
  const auto invalid = std::find_if(reply.begin(), reply.end(), [](char byte) {
    return static_cast<unsigned char>(byte) > kHighestValidCode;
  });
  if (invalid == reply.end()) return;
  const Failure failure(com_port_error::ERR_INVALID_CHARACTERS, L"CKespCOMPort3 - ReadLine()",
                        L"Invalid characters received on COM" + std::to_wstring(port_) + L".");
  // The event's position is 16 bits wide; further on it stays at its highest value.
  const std::ptrdiff_t position = invalid - reply.begin() + 1;
  const auto pos =
      static_cast<std::int16_t>(std::min<std::ptrdiff_t>(position, std::numeric_limits<std::int16_t>::max()));
  Raise(&CKespCOMPort3Events::ReadInvalidChars, SystemCodePage().FromBytes(reply), pos, port_);
  throw failure;
}

bool CKespCOMPort3::ReadLineBinary(BinaryValue& result, std::int32_t lTimeoutms) {
  Raise(&CKespCOMPort3Events::ReadBegin, port_);
  const EInputMode mode = input_mode_;
  std::string reply;
  ReadOutcome outcome{};
  try {
    outcome = CollectBinary(reply, mode, lTimeoutms);
    NoteEnd(outcome);
    if (outcome == ReadOutcome::kComplete) StoreReply(reply, mode, result);
  } catch (...) {
    const Failure failure = CurrentFailure();
    // Text is put into the result as it comes, bytes when they are all there.
    if (mode == EInputMode::imText && !reply.empty())
      Try([&] { return StoreReply(reply, mode, result), true; });
    ShowError(environment_.user, L"attempting to read from COM" + std::to_wstring(port_), failure);
    return false;
  }
  if (outcome == ReadOutcome::kTimeOut) {
    const Failure failure = ReadTimeOut(L"CKespCOMPort3 - ReadLineBinary()", port_);
    Raise(&CKespCOMPort3Events::ReadTimeOut, port_);
    throw failure;
  }
  Log([&] {
    const auto* text = std::get_if<std::wstring>(&result);
    return L"Received '" + (text != nullptr ? *text : SystemCodePage().FromBytes(reply)) + L"' (raw) on COM" +
           std::to_wstring(port_);
  });
  return true;
}

CKespCOMPort3::ReadOutcome CKespCOMPort3::CollectBinary(std::string& reply, EInputMode mode,
                                                        std::int32_t silence_ms) {
  std::int32_t start = environment_.clock.TickCount();
  for (;;) {
    const std::string chunk = TakeInput(reply.size());
    if (!chunk.empty()) {
      reply += chunk;
      // The count is one of bytes; in text it stays at nothing.
      const std::size_t total = mode == EInputMode::imBinary ? reply.size() : 0;
      Raise(&CKespCOMPort3Events::ReadUpdate, static_cast<std::int32_t>(total), port_);
      start = environment_.clock.TickCount();
    } else if (IsPast(environment_.clock, start, reply.empty() ? time_out_ : silence_ms)) {
      return reply.empty() ? ReadOutcome::kTimeOut : ReadOutcome::kComplete;
    }
  }
}

bool CKespCOMPort3::Download(std::wstring& result) {
  result.clear();
  Raise(&CKespCOMPort3Events::DownloadBegin, port_);
  std::string data;
  ReadOutcome outcome{};
  try {
    outcome = CollectDownload(data);
    NoteEnd(outcome);
    result = SystemCodePage().FromBytes(data);
  } catch (...) {
    const Failure failure = CurrentFailure();
    KeepWhatCame(data, result);
    ShowError(environment_.user, L"attempting to download from COM" + std::to_wstring(port_), failure);
    return false;
  }
  if (outcome == ReadOutcome::kTimeOut) {
    const Failure failure(com_port_error::ERR_DOWNLOAD_TIMEOUT, L"CKespCOMPort3 - Download()",
                          L"Timeout while downloading from COM" + std::to_wstring(port_) + L".");
    Raise(&CKespCOMPort3Events::DownloadTimeOut, port_);
    throw failure;
  }
  Log([&] { return L"Downloaded from COM port " + std::to_wstring(port_) + L": \r" + result; });
  Raise(&CKespCOMPort3Events::DownloadEnd);
  return outcome == ReadOutcome::kComplete;
}

CKespCOMPort3::ReadOutcome CKespCOMPort3::CollectDownload(std::string& data) {
  std::int32_t start = environment_.clock.TickCount();
  for (;;) {
    if (control_->InBufferCount() == 0) {
      if (IsPast(environment_.clock, start, time_out_))
        return data.empty() ? ReadOutcome::kTimeOut : ReadOutcome::kComplete;
      environment_.pump.PumpOnce();
      continue;
    }
    Delay(environment_.clock, environment_.pump, kGatheringMs);
    data += TakeInput(data.size());
    bool abort = false;
    Raise(&CKespCOMPort3Events::DownloadUpdate, static_cast<std::int32_t>(data.size()), abort);
    if (abort) return ReadOutcome::kAborted;
    start = environment_.clock.TickCount();
    environment_.pump.PumpOnce();
  }
}

}  // namespace kesp
