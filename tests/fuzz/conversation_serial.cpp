// The client of a conversation with the serial transport: commands, replies and the port, and what must come
// of them.
#include "tests/fuzz/conversation_serial.h"

#include <utility>

#include "support/error_numbers.h"
#include "support/text.h"
#include "tests/fuzz/conversation_replies.h"

namespace kesp {

namespace {

using namespace com_port_error;

constexpr std::size_t kMostCalls = 4;  // inside one another
constexpr int kMostActions = 200;
constexpr std::int32_t kOverflow = 6;

constexpr std::uint32_t kTicks[] = {1'000'000, 0x7FFFF800, 0xFFFFF800, 0};
constexpr std::int32_t kFailures[] = {380, 8002, 8005, 8012, 8015, 8020, 8021};
constexpr std::int32_t kSilences[] = {100, 0, 1, 20, 1000, -1, -2147483647, 2147483647};

}  // namespace

SerialConversation::SerialConversation(FuzzInput& input) : input_(input) {
  const std::uint8_t beginning = input_.Byte();
  world_.clock.Begin(kTicks[beginning % 4], 0);
  world_.pump.on_pump = [this] { OnPump(); };
  if (beginning >= 0xF8) world_.files.temporary_folder.clear();
  line_.SetWatcher(*this);
  listens_ = beginning < 0xE0;
  CKespCOMPort3Events* const events = listens_ ? this : nullptr;
  port_ = std::make_unique<CKespCOMPort3>(world_.environment, line_, events);
  port_->SetMaxBaudRate(EKespBaudRate3::br57600);
  port_->SetMinBaudRate(EKespBaudRate3::br300);
  port_->SetBaudRate(EKespBaudRate3::br9600);
  if (beginning % 8 < 4) port_->OpenPort();
}

SerialConversation::~SerialConversation() = default;

void SerialConversation::Run() {
  while (input_.HasMore() && actions_ < kMostActions) Act();
  Require(calls_.empty() && detections_ == 0, "each detection that has begun has ended");
  const bool ends_at_once = port_->InstrAddr() % 2 == 1;
  if (!ends_at_once) QueryAtTheEnd();
  calm_ = true;
  const bool was_open = line_.is_open();
  port_.reset();
  Require(!line_.is_open() || !was_open, "the port is closed at the end");
}

// One thing that the client does, by itself or in a handler.
void SerialConversation::Act() {
  if (calm_ || calls_.size() >= kMostCalls || ++actions_ > kMostActions) return;
  for (Call* call : calls_) call->interfered = true;
  const std::uint8_t action = input_.Byte();
  switch (action % 16) {
    case 0:
    case 1:
      return WriteLine();
    case 2:
    case 3:
      return ReadLine();
    case 4:
      return ReadLineBinary();
    case 5:
      return Download();
    case 6:
      return OpenPort();
    case 7:
      return action < 0x40 ? ClosePort() : OpenPort();
    case 8:
      return AutoDetect();
    case 9:
      return UseModem();
    case 10:
    case 11:
    case 12:
      return ChangeSettings(action % 16 - 10);
    case 13:
      return line_.FailCall(1 + action / 16, kFailures[action / 16 % 7]);
    case 14:
      return AskPorts();
    default:
      if (action < 0xC0) return world_.clock.Advance(action * 8U);
      // Somebody else has been at the settings file.
      world_.settings.values[L"COM" + std::to_wstring(port_->Port())] = WideText(input_.Bytes(action / 16U));
  }
}

// A handler, which sometimes calls back in.
void SerialConversation::Answer() {
  if (calm_ || !input_.HasMore() || input_.Byte() % 4 != 3) return;
  Act();
}

void SerialConversation::OnPump() {
  world_.clock.Advance(7);
  if (!calm_ && input_.HasMore() && input_.Byte() % 16 == 15) Act();
}

void SerialConversation::WriteLine() {
  const std::uint8_t form = input_.Byte();
  const std::wstring cmd = WideText(input_.Bytes(form % 8U));
  const std::wstring address = WideText(input_.Bytes(form / 8 % 4U));
  const std::wstring value = form >= 0x80 ? WideText(input_.Bytes(form / 32 % 4U)) : std::wstring();
  const bool cr_before = (form & 0x40) != 0;
  Call call;
  const Attempt attempt =
      Do(Member::kWriteLine, call, [&] { return port_->WriteLine(cmd, address, value, cr_before); });
  if (attempt.number() == ERR_ADDRESS_NOT_SPECIFIED) {
    Require(address.empty() && call.writes.empty(), "only a missing address is refused, and nothing is sent");
    return;
  }
  if (attempt.error) {
    // The carriage return's time on the line passes in the pump, where the counter may come to its end.
    if (attempt.number() != kOverflow) CheckPortFailure(attempt, call, L"WriteLine()");
    return;
  }
  Require(attempt.succeeded && call.style.has_value(), "WriteLine returns True");
  const std::optional<std::string> frame = Frame(*call.style, cmd, address, value);
  Require(frame && !call.writes.empty() && call.writes.back() == *frame, "the command is sent in its frame");
  if (!call.interfered) {
    Require(call.writes.size() == (cr_before ? 2U : 1U), "nothing else is sent");
    Require(call.output_left == 0, "WriteLine ends when the port has taken every byte");
  }
}

void SerialConversation::ReadLine() {
  std::wstring result = L"before";
  Call call;
  const Attempt attempt = Do(Member::kReadLine, call, [&] { return port_->ReadLine(result); });
  const CodePage& page = SystemCodePage();
  if (attempt.number() == ERR_READ_TIMEOUT) {
    Require(!call.has_new_bytes && IsTimeOver(call), "a time-out comes when the time is over");
    const bool has_reply =
        call.settings.terminates_on_lf ? call.reply.find('\r') != std::string::npos : !call.reply.empty();
    Require(!has_reply, "what counts as a reply is no time-out");
    Require(result == page.FromBytes(call.reply), "after a time-out the result is what came");
    return;
  }
  const std::string reply = TrimmedReply(call);
  if (attempt.number() == ERR_INVALID_CHARACTERS) {
    Require(HasInvalid(reply) && result == page.FromBytes(reply), "only invalid characters are refused");
    return;
  }
  if (attempt.error) {
    Require(result == page.FromBytes(call.reply), "after a failure the result is what came");
    return CheckReadingFailure(attempt, call, L"ReadLine()");
  }
  Require(attempt.succeeded, "ReadLine returns True");
  Require(IsTerminated(call) || (!call.has_new_bytes && IsTimeOver(call) && !call.reply.empty()),
          "a reply is complete when it is ended or the line is silent");
  Require(!(call.settings.checks && HasInvalid(reply)), "invalid characters are refused");
  const std::wstring text = page.FromBytes(reply);
  Require(result == (call.settings.strips ? StrippedReply(text) : text), "ReadLine returns what came");
}

void SerialConversation::ReadLineBinary() {
  BinaryValue result = std::wstring(L"before");
  const int boxes = world_.user.boxes;
  const std::uint8_t silence = input_.Byte();
  Call call;
  call.silence_ms = kSilences[silence % 8];
  const Attempt attempt =
      Do(Member::kReadLineBinary, call, [&] { return port_->ReadLineBinary(result, call.silence_ms); });
  const auto* text = std::get_if<std::wstring>(&result);
  const std::wstring all_text = L"before" + SystemCodePage().FromBytes(call.reply);
  if (attempt.number() == ERR_READ_TIMEOUT) {
    Require(call.reply.empty() && IsTimeOver(call), "a time-out comes when nothing has come in time");
    Require(text != nullptr && *text == L"before", "a time-out leaves the result");
    return;
  }
  Require(!attempt.error, "every other failure of a binary read is shown");
  if (!attempt.succeeded) {
    Require(world_.user.boxes > boxes, "a failure of a binary read is shown");
    Require(call.failed || IsOverflowing(call), "a binary read fails as the port does");
    Require(text != nullptr && *text == (call.mode == EInputMode::imText ? all_text : L"before"),
            "after a failure the text that came is there");
    return;
  }
  Require(!call.reply.empty() && !call.has_new_bytes && IsTimeOver(call), "a binary reply ends in silence");
  if (call.mode == EInputMode::imText) {
    Require(text != nullptr && *text == all_text, "a binary read in text goes behind the text");
    return;
  }
  const auto* bytes = std::get_if<Bytes>(&result);
  Require(bytes != nullptr && std::string(bytes->begin(), bytes->end()) == call.reply,
          "a binary read returns the bytes");
}

void SerialConversation::Download() {
  std::wstring result = L"before";
  const int boxes = world_.user.boxes;
  Call call;
  const Attempt attempt = Do(Member::kDownload, call, [&] { return port_->Download(result); });
  Require(result == SystemCodePage().FromBytes(call.reply), "a download returns what came");
  if (attempt.number() == ERR_DOWNLOAD_TIMEOUT) {
    Require(call.reply.empty() && IsTimeOver(call), "a time-out comes when nothing has come in time");
    return;
  }
  Require(!attempt.error, "every other failure of a download is shown");
  if (attempt.succeeded) {
    Require(!call.reply.empty() && IsTimeOver(call), "a download ends in silence");
  } else if (!call.aborted) {
    Require(world_.user.boxes > boxes, "a failure of a download is shown");
    Require(call.failed || call.interfered || IsOverflowing(call), "a download fails as the port does");
  }
}

void SerialConversation::OpenPort() {
  Call call;
  const Attempt attempt = Do(Member::kOther, call, [&] { return port_->OpenPort(); });
  if (attempt.error) {
    // A rate that has no name, or a switch whose line is held up.
    const bool own = attempt.number() == 380 || attempt.number() == 8012 || attempt.number() == kOverflow;
    if (!own) CheckPortFailure(attempt, call, L"OpenPort()");
    return;
  }
  Require(attempt.succeeded, "OpenPort returns True");
  if (call.interfered) return;
  Require(line_.is_open() && line_.port() == port_->Port(), "the port is open");
  Require(line_.settings() == port_->GetSettings(), "the port has the settings");
}

void SerialConversation::ClosePort() {
  const std::int64_t start = world_.clock.now_ms();
  Call call;
  const Attempt attempt = Do(Member::kOther, call, [&] { return port_->ClosePort(), true; });
  Require(!line_.is_open(), "ClosePort closes the port in every case");
  if (attempt.error) CheckPortFailure(attempt, call, L"ClosePort()");
  if (!port_->UseSmartSwitch())
    Require(world_.clock.now_ms() - start < 13'000, "closing takes ten seconds at most");
}

// Whatever has happened, the same object works again.
void SerialConversation::QueryAtTheEnd() {
  calm_ = true;
  world_.clock.Begin(1'000'000, 0);
  line_.BeGood("GOOD\r\n");
  port_->SetControllerStyle(EKespControllerStyle3::CS_KESP);
  port_->SetMinBaudRate(EKespBaudRate3::brNone);
  port_->SetMaxBaudRate(EKespBaudRate3::br9600);
  port_->SetBaudRate(EKespBaudRate3::br9600);
  port_->SetDataBits(EKespDataBits3::DATA_8BITS);
  port_->SetTimeOut(3000);
  const bool had_switch = port_->UseSmartSwitch();
  port_->SetTerminateOnLF(true);
  port_->SetStripCRLF(true);
  port_->SetCheckNonAscii(true);
  port_->SetUseRedirector(false);
  port_->SetUseRFModem(false);
  port_->SetUseIRDongle(false);
  if (!had_switch) ClosePort();
  OpenPort();
  Require(line_.is_open(), "the object opens the port again");
  Call write;
  Require(Do(Member::kWriteLine, write, [&] { return port_->WriteLine(L"t"); }).succeeded,
          "the object writes again");
  std::wstring result;
  Call read;
  const Attempt attempt = Do(Member::kReadLine, read, [&] { return port_->ReadLine(result); });
  Require(attempt.succeeded && result == L"GOOD", "the object makes a correct query again");
}

}  // namespace kesp
