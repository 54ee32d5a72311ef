// One call of the handlers for each event of the network transport.
#include "server/tcp_event_bridge.h"

#include <wrl/client.h>

#include <memory>
#include <stdexcept>

#include "server/com_values.h"
#include "server/event_arguments.h"

namespace kesp {

using Microsoft::WRL::ComPtr;

namespace {

// More than an object that lives can have: one that is being torn down counts from a far higher number.
constexpr ULONG kMostReferences = 0x10000000;

// The dispatch identifiers of __CKespTCP.
enum TcpEvent : DISPID {
  kConnectBegin = 1,
  kConnectEnd,
  kSendProgressBegin,
  kSendProgressEnd,
  kSendCompleteBegin,
  kSendCompleteEnd,
  kDataArrivalBegin,
  kDataArrivalEnd,
  kErrorBegin,
  kErrorEnd,
  kCloseBegin,
  kCloseEnd,
  kAutoDetectUpdate,
  kAutoDetectBegin,
  kAutoDetectEnd,
  kReadInvalidChars,
};

}  // namespace

void TcpEventBridge::ConnectBegin() {
  source_.Raise(kConnectBegin);
}
void TcpEventBridge::ConnectEnd() {
  source_.Raise(kConnectEnd);
}
void TcpEventBridge::SendProgressEnd() {
  source_.Raise(kSendProgressEnd);
}
void TcpEventBridge::SendCompleteBegin() {
  source_.Raise(kSendCompleteBegin);
}
void TcpEventBridge::SendCompleteEnd() {
  source_.Raise(kSendCompleteEnd);
}
void TcpEventBridge::DataArrivalEnd() {
  source_.Raise(kDataArrivalEnd);
}
void TcpEventBridge::ErrorEnd() {
  source_.Raise(kErrorEnd);
}
void TcpEventBridge::CloseBegin() {
  source_.Raise(kCloseBegin);
}
void TcpEventBridge::CloseEnd() {
  source_.Raise(kCloseEnd);
}

void TcpEventBridge::AutoDetectBegin() {
  source_.Raise(kAutoDetectBegin);
}
void TcpEventBridge::AutoDetectEnd() {
  source_.Raise(kAutoDetectEnd);
}

void TcpEventBridge::SendProgressBegin(std::int32_t bytesSent, std::int32_t bytesRemaining) {
  if (!source_.HasSinks()) return;
  EventArguments arguments;
  arguments.Add(bytesSent).Add(bytesRemaining);
  source_.Raise(kSendProgressBegin, arguments.ForInvoke());
}

void TcpEventBridge::DataArrivalBegin(std::int32_t bytesTotal) {
  if (!source_.HasSinks()) return;
  EventArguments arguments;
  arguments.Add(bytesTotal);
  source_.Raise(kDataArrivalBegin, arguments.ForInvoke());
}

void TcpEventBridge::ErrorBegin(std::int16_t Number, std::wstring& Description, std::int32_t Scode,
                                const std::wstring& Source, const std::wstring& HelpFile,
                                std::int32_t HelpContext, bool& CancelDisplay) {
  if (!source_.HasSinks()) return;
  EventArguments arguments;
  arguments.Add(Number);
  const BSTR* description = arguments.AddInOut(Description);
  arguments.Add(Scode).Add(Source).Add(HelpFile).Add(HelpContext);
  const VARIANT_BOOL* cancel_display = arguments.AddInOut(CancelDisplay);
  source_.Raise(kErrorBegin, arguments.ForInvoke());
  Description = TextOf(*description);
  CancelDisplay = FromComBool(*cancel_display);
}

void TcpEventBridge::AutoDetectUpdate(const std::wstring& cmd, const std::wstring& IPAddress,
                                      std::int16_t Port, bool& Abort) {
  if (!source_.HasSinks()) return;
  EventArguments arguments;
  arguments.Add(cmd).Add(IPAddress).Add(Port);
  const VARIANT_BOOL* abort = arguments.AddInOut(Abort);
  source_.Raise(kAutoDetectUpdate, arguments.ForInvoke());
  Abort = FromComBool(*abort);
}

void TcpEventBridge::ReadInvalidChars(const std::wstring& Buffer, std::int16_t pos,
                                      const std::wstring& IPAddress) {
  if (!source_.HasSinks()) return;
  EventArguments arguments;
  arguments.Add(Buffer).Add(pos).Add(IPAddress);
  source_.Raise(kReadInvalidChars, arguments.ForInvoke());
}

std::shared_ptr<void> TcpEventBridge::KeepAlive() {
  // First what may throw: to give back the last reference here would destroy the object, whose window takes
  // the lock that the caller holds.
  auto reference = std::make_shared<ComPtr<IUnknown>>();
  const ULONG references = owner_->AddRef();
  // A new reference does not save an object that another thread is tearing down; nor is it given back.
  if (references == 1 || references > kMostReferences) throw std::runtime_error("the object is going");
  *reference->GetAddressOf() = owner_;
  return reference;
}

}  // namespace kesp
