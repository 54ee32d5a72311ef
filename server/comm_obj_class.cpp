// The COM object of the communication object.
#include "server/comm_obj_class.h"

#include <wrl/client.h>

#include "server/adopt.h"
#include "server/com_port_class.h"
#include "server/ieee_class.h"
#include "server/tcp_class.h"
#include "server/variant_bridge.h"
#include "support/environment_win.h"

namespace kesp {

using Microsoft::WRL::ComPtr;

namespace {

const ClassDescription kDescription{__uuidof(::CKespCommObj), __uuidof(::_CKespCommObj), nullptr};

// Makes the COM object of a transport and returns the transport, whose owner holds the COM object.
template <class Class, class Transport>
auto MakeTransport(Transport& place) {
  ComPtr<Class> made = Adopt(new Class);
  place = {.object = made.Get(), .gate = &made->gate()};
  auto* transport = &made->object();
  return std::shared_ptr<std::remove_reference_t<decltype(*transport)>>(
      transport, [made](auto*) mutable { made.Reset(); });
}

}  // namespace

CommObjClass::CommObjClass()
    : OperatingObject(kDescription, L"CKespCommObj"),
      object_(std::make_unique<CKespCommObj>(SystemEnvironment(), MakeFactory())) {}

TransportFactory CommObjClass::MakeFactory() {
  return {.make_serial = [this] { return MakeTransport<ComPortClass>(serial_); },
          .make_network = [this] { return MakeTransport<TcpClass>(network_); },
          .make_ieee = [this] { return MakeTransport<IeeeClass>(ieee_); }};
}

CommObjClass::Transport CommObjClass::SelectedTransport() const {
  switch (object_->CommStyle()) {
    case ECommStyle::csRS232:
      return serial_;
    case ECommStyle::csTCPIP:
      return network_;
    case ECommStyle::csIEEE:
      return ieee_;
    default:
      return {};
  }
}

HRESULT CommObjClass::get_CommObject(IDispatch** retval) {
  return Get(retval, [&] {
    IDispatch* transport = SelectedTransport().object;
    if (transport != nullptr) transport->AddRef();
    return transport;
  });
}

HRESULT CommObjClass::Query(BSTR* result, BSTR cmd, BSTR OmegaAddress, BSTR OmegaValue,
                            VARIANT_BOOL* retval) {
  return Operate(
      L"Query()", retval,
      [&] {
        return ReadInto(result, [&](auto& reply) {
          return object_->Query(reply, TextOf(cmd), TextOf(OmegaAddress), TextOf(OmegaValue));
        });
      },
      result);
}

// With the other styles nothing is sent.
void CommObjClass::RequireRoomForReply(const VARIANT& argument) const {
  if (object_->CommStyle() == ECommStyle::csTCPIP) RequireRoomFor(ReplyKind::kBytes, argument);
  if (object_->CommStyle() == ECommStyle::csRS232) {
    RequireRoomFor(ReplyKindOf(object_->serial().InputMode()), argument);
  }
}

HRESULT CommObjClass::QueryBinary(VARIANT* result, BSTR cmd, BSTR OmegaAddress, BSTR OmegaValue,
                                  VARIANT_BOOL* retval) {
  return Operate(
      L"QueryBinary()", retval,
      [&] {
        RequireRoomForReply(*result);
        return ReadInto(result, [&](auto& reply) {
          return object_->QueryBinary(reply, TextOf(cmd), TextOf(OmegaAddress), TextOf(OmegaValue));
        });
      },
      result);
}

HRESULT CommObjClass::Update(BSTR cmd, BSTR OmegaAddress, BSTR OmegaValue, VARIANT_BOOL* retval) {
  return Operate(L"Update()", retval,
                 [&] { return object_->Update(TextOf(cmd), TextOf(OmegaAddress), TextOf(OmegaValue)); });
}

HRESULT CommObjClass::DetectInstrument(BSTR* result, ::EDetectLevel DetectLevel, VARIANT_BOOL* retval) {
  return Operate(
      L"DetectInstrument()", retval,
      [&] {
        return ReadInto(result, [&](auto& answer) {
          return object_->DetectInstrument(answer, static_cast<EDetectLevel>(DetectLevel));
        });
      },
      result);
}

}  // namespace kesp
