// The COM object of the network transport.
#include "server/tcp_class.h"

#include "dialogs/tcp_dialog_win.h"
#include "network/socket_control_win.h"
#include "server/adopt.h"
#include "server/com_instrument.h"
#include "server/instrument_class.h"
#include "server/variant_bridge.h"
#include "support/environment_win.h"

namespace kesp {

namespace {

const ClassDescription kDescription{__uuidof(::CKespTCP), __uuidof(::_CKespTCP), &__uuidof(::__CKespTCP)};

// A record that clients can be handed.
std::shared_ptr<Instrument> MakeComInstrument() {
  return std::make_shared<ComInstrument>(Adopt(new InstrumentClass).Get());
}

}  // namespace

TcpClass::TcpClass()
    : OperatingObject(kDescription, L"CKespTCP"),
      events_(static_cast<::_CKespTCP*>(this), __uuidof(::__CKespTCP)),
      bridge_(static_cast<::_CKespTCP*>(this), events_),
      object_(std::make_unique<CKespTCP>(SystemEnvironment(), MakeSocketControl, MakeComInstrument, &bridge_,
                                         &SystemTcpDialog())) {
  devices_ = Adopt(new InstrumentsClass(object_->Devices()));
}

HRESULT TcpClass::get_Devices(::_CInstruments** retval) {
  return Get(retval, [&] {
    devices_->AddRef();
    return static_cast<::_CInstruments*>(devices_.Get());
  });
}

HRESULT TcpClass::AutoDetect(BSTR* result, ::EDetectLevel DetectLevel, VARIANT_BOOL* retval) {
  return Operate(
      L"AutoDetect()", retval,
      [&] {
        return ReadInto(result, [&](auto& answer) {
          return object_->AutoDetect(answer, static_cast<EDetectLevel>(DetectLevel));
        });
      },
      result);
}

HRESULT TcpClass::ReadLine(BSTR* result, VARIANT_BOOL* retval) {
  return Operate(
      L"ReadLine()", retval,
      [&] { return ReadInto(result, [&](auto& reply) { return object_->ReadLine(reply); }); }, result);
}

HRESULT TcpClass::ReadLineBinary(VARIANT* result, LONG lTimeoutms, VARIANT_BOOL* retval) {
  return Operate(
      L"ReadLineBinary()", retval,
      [&] {
        RequireRoomFor(ReplyKind::kBytes, *result);
        return ReadInto(result, [&](auto& reply) { return object_->ReadLineBinary(reply, lTimeoutms); });
      },
      result);
}

void* TcpClass::FindInterface(REFIID iid) {
  return iid == IID_IConnectionPointContainer ? &events_ : nullptr;
}

}  // namespace kesp
