// The serial transport's output: one framed command.
#include <algorithm>
#include <limits>

#include "serial/command_frame.h"
#include "serial/kesp_com_port.h"
#include "support/error_numbers.h"
#include "support/text.h"
#include "support/timing.h"

namespace kesp {

namespace {

// How long a controller may take to answer the lone carriage return that clears its own buffer.
constexpr std::int32_t kClearingMs = 50;

// How much longer than their time on the line bytes may take to leave; then the line is held up.
constexpr std::int64_t kHeldUpMs = 1000;

}  // namespace

bool CKespCOMPort3::WriteLine(const std::wstring& cmd, const std::wstring& OmegaAddress,
                              const std::wstring& OmegaValue, bool CRBeforeCmd) {
  Log(L"WriteLine...");
  Raise(&CKespCOMPort3Events::WriteBegin, cmd, port_);
  const CodePage& page = SystemCodePage();
  const std::optional<std::string> frame = CommandFrame(controller_style_, page.ToBytes(cmd),
                                                        page.ToBytes(OmegaAddress), page.ToBytes(OmegaValue));
  if (!frame) {
    throw Failure(com_port_error::ERR_ADDRESS_NOT_SPECIFIED, L"CKespCOMPort3 - WriteLine()",
                  L"Omega controller address not specified.");
  }
  try {
    SendFrame(*frame, CRBeforeCmd);
  } catch (...) {
    const Failure failure = CurrentFailure();
    LogFailure(L"WriteLine()", failure);
    FailIn(L"WriteLine()", failure);
  }
  Raise(&CKespCOMPort3Events::WriteEnd);
  return true;
}

void CKespCOMPort3::Send(const std::string& bytes) {
  control_->Output(bytes);
  transmission_.Add(bytes.size());
}

bool CKespCOMPort3::AwaitOutput() {
  if (control_->OutBufferCount() == 0) return true;
  const std::int64_t limit_ms = transmission_.Left() / 1000 + kHeldUpMs;
  const std::int32_t start = environment_.clock.TickCount();
  bool late = false;
  while (control_->OutBufferCount() != 0) {
    if (late) return false;
    late = MillisecondsSince(environment_.clock, start) > limit_ms;
  }
  return true;
}

void CKespCOMPort3::SendFrame(const std::string& frame, bool cr_before) {
  ClearBuffers();
  if (cr_before) {
    Log(L"Sending CR to clear instrument buffer...");
    Send("\r");
    // The clearing would take it back where it has yet to leave, and the answer comes behind it.
    AwaitOutput();
    AwaitEndOfTransmission();
    Delay(environment_.clock, environment_.pump, kClearingMs);
    ClearBuffers();
  }
  Log([&] {
    return L"Sending '" + SystemCodePage().FromBytes(frame) + L"' on COM port " + std::to_wstring(port_);
  });
  Send(frame);
  DrainOutput();
}

void CKespCOMPort3::DrainOutput() {
  // The event's count is 16 bits wide; a longer queue shows its highest value.
  constexpr std::int32_t kHighestCount = std::numeric_limits<std::int16_t>::max();
  // Known while the handlers run, and no longer.
  struct Looking {
    ~Looking() { count = 0; }
    std::int32_t& count;
  } looking{unsent_};
  std::int32_t count = 0;
  do {
    count = control_->OutBufferCount();
    looking.count = count;
    Raise(&CKespCOMPort3Events::WriteUpdate, static_cast<std::int16_t>(std::min(count, kHighestCount)),
          port_);
  } while (count != 0);
}

}  // namespace kesp
