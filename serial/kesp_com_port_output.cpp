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

void CKespCOMPort3::SendFrame(const std::string& frame, bool cr_before) {
  ClearBuffers();
  if (cr_before) {
    Log(L"Sending CR to clear instrument buffer...");
    control_->Output("\r");
    Delay(environment_.clock, environment_.pump, kClearingMs);
    ClearBuffers();
  }
  Log([&] {
    return L"Sending '" + SystemCodePage().FromBytes(frame) + L"' on COM port " + std::to_wstring(port_);
  });
  control_->Output(frame);
  DrainOutput();
}

void CKespCOMPort3::DrainOutput() {
  // The event's count is 16 bits wide; a longer queue shows its highest value.
  constexpr std::int32_t kHighestCount = std::numeric_limits<std::int16_t>::max();
  std::int32_t count = 0;
  do {
    count = control_->OutBufferCount();
    Raise(&CKespCOMPort3Events::WriteUpdate, static_cast<std::int16_t>(std::min(count, kHighestCount)),
          port_);
  } while (count != 0);
}

}  // namespace kesp
