// One call of the handlers for each event of the IEEE-488 transport.
#include "server/ieee_event_bridge.h"

#include "server/com_values.h"
#include "server/event_arguments.h"

namespace kesp {

namespace {

// The dispatch identifiers of those events of __CKespIEEE that are raised.
enum IeeeEvent : DISPID { kAutoDetectUpdate = 8, kAutoDetectBegin, kAutoDetectEnd };

}  // namespace

void IeeeEventBridge::AutoDetectBegin() {
  source_.Raise(kAutoDetectBegin);
}
void IeeeEventBridge::AutoDetectEnd() {
  source_.Raise(kAutoDetectEnd);
}

void IeeeEventBridge::AutoDetectUpdate(const std::wstring& cmd, std::int16_t Address, bool& Abort) {
  if (!source_.HasSinks()) return;
  EventArguments arguments;
  arguments.Add(cmd).Add(Address);
  const VARIANT_BOOL* abort = arguments.AddInOut(Abort);
  source_.Raise(kAutoDetectUpdate, arguments.ForInvoke());
  Abort = FromComBool(*abort);
}

}  // namespace kesp
