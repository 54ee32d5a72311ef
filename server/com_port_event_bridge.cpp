// One call of the handlers for each event of the serial transport.
#include "server/com_port_event_bridge.h"

#include "server/com_values.h"
#include "server/event_arguments.h"

namespace kesp {

namespace {

// The dispatch identifiers of __CKespCOMPort3.
enum ComPortEvent : DISPID {
  kDownloadBegin = 1,
  kDownloadUpdate,
  kDownloadTimeOut,
  kDownloadEnd,
  kWriteBegin,
  kWriteUpdate,
  kWriteEnd,
  kReadBegin,
  kReadUpdate,
  kReadTimeOut,
  kReadInvalidChars,
  kReadEnd,
  kAutoDetectBegin,
  kAutoDetectUpdate,
  kAutoDetectEnd,
};

}  // namespace

template <typename... Arguments>
void ComPortEventBridge::Raise(DISPID event, const Arguments&... arguments) {
  // Some are raised at every look at the line: without handlers they must cost nothing.
  if (!source_.HasSinks()) return;
  EventArguments list;
  (list.Add(arguments), ...);
  source_.Raise(event, list.ForInvoke());
}

void ComPortEventBridge::DownloadBegin(std::int16_t Port) {
  Raise(kDownloadBegin, Port);
}
void ComPortEventBridge::DownloadTimeOut(std::int16_t Port) {
  Raise(kDownloadTimeOut, Port);
}
void ComPortEventBridge::DownloadEnd() {
  Raise(kDownloadEnd);
}
void ComPortEventBridge::WriteBegin(const std::wstring& cmd, std::int16_t Port) {
  Raise(kWriteBegin, cmd, Port);
}
void ComPortEventBridge::WriteUpdate(std::int16_t OutBufferCount, std::int16_t Port) {
  Raise(kWriteUpdate, OutBufferCount, Port);
}
void ComPortEventBridge::WriteEnd() {
  Raise(kWriteEnd);
}
void ComPortEventBridge::ReadBegin(std::int16_t Port) {
  Raise(kReadBegin, Port);
}
void ComPortEventBridge::ReadUpdate(std::int32_t CharsReceived, std::int16_t Port) {
  Raise(kReadUpdate, CharsReceived, Port);
}
void ComPortEventBridge::ReadTimeOut(std::int16_t Port) {
  Raise(kReadTimeOut, Port);
}
void ComPortEventBridge::ReadInvalidChars(const std::wstring& Buffer, std::int16_t pos, std::int16_t Port) {
  Raise(kReadInvalidChars, Buffer, pos, Port);
}
void ComPortEventBridge::AutoDetectBegin(std::int16_t Port) {
  Raise(kAutoDetectBegin, Port);
}
void ComPortEventBridge::AutoDetectEnd() {
  Raise(kAutoDetectEnd);
}

void ComPortEventBridge::DownloadUpdate(std::int32_t CharsReceived, bool& Abort) {
  if (!source_.HasSinks()) return;
  EventArguments arguments;
  arguments.Add(CharsReceived);
  const VARIANT_BOOL* abort = arguments.AddInOut(Abort);
  source_.Raise(kDownloadUpdate, arguments.ForInvoke());
  Abort = FromComBool(*abort);
}

void ComPortEventBridge::AutoDetectUpdate(std::int16_t Port, EKespBaudRate3 BaudRate, const std::wstring& cmd,
                                          bool& Abort) {
  if (!source_.HasSinks()) return;
  EventArguments arguments;
  arguments.Add(Port).Add(static_cast<std::int32_t>(BaudRate)).Add(cmd);
  const VARIANT_BOOL* abort = arguments.AddInOut(Abort);
  source_.Raise(kAutoDetectUpdate, arguments.ForInvoke());
  Abort = FromComBool(*abort);
}

}  // namespace kesp
