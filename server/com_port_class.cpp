// The COM object of the serial transport.
#include "server/com_port_class.h"

#include "dialogs/com_port_dialog_win.h"
#include "serial/serial_ports_win.h"
#include "server/adopt.h"
#include "server/variant_bridge.h"
#include "support/environment_win.h"

namespace kesp {

namespace {

const ClassDescription kDescription{__uuidof(::CKespCOMPort3), __uuidof(::_CKespCOMPort3),
                                    &__uuidof(::__CKespCOMPort3)};

}  // namespace

ComPortClass::ComPortClass()
    : OperatingObject(kDescription, L"CKespCOMPort3"),
      events_(static_cast<::_CKespCOMPort3*>(this), __uuidof(::__CKespCOMPort3)),
      bridge_(events_),
      object_(std::make_unique<CKespCOMPort3>(SystemEnvironment(), SystemSerialPorts(), &bridge_,
                                              &SystemComPortDialog())) {
  smart_switch_ = Adopt(new SmartSwitchClass(object_->SmartSwitch()));
}

HRESULT ComPortClass::get_SmartSwitch(::_CKespSmartSwitch3** retval) {
  return Get(retval, [&] {
    smart_switch_->AddRef();
    return static_cast<::_CKespSmartSwitch3*>(smart_switch_.Get());
  });
}

HRESULT ComPortClass::ReadLine(BSTR* result, VARIANT_BOOL* retval) {
  return Operate(
      L"ReadLine()", retval,
      [&] { return ReadInto(result, [&](auto& reply) { return object_->ReadLine(reply); }); }, result);
}

HRESULT ComPortClass::ReadLineBinary(VARIANT* result, LONG lTimeoutms, VARIANT_BOOL* retval) {
  return Operate(
      L"ReadLineBinary()", retval,
      [&] {
        RequireRoomFor(ReplyKindOf(object_->InputMode()), *result);
        return ReadInto(result, [&](auto& reply) { return object_->ReadLineBinary(reply, lTimeoutms); });
      },
      result);
}

HRESULT ComPortClass::Download(BSTR* result, VARIANT_BOOL* retval) {
  return Operate(
      L"Download()", retval,
      [&] { return ReadInto(result, [&](auto& data) { return object_->Download(data); }); }, result);
}

HRESULT ComPortClass::AutoDetect(BSTR* Buffer, ::EDetectLevel DetectLevel, BSTR OmegaAddress,
                                 VARIANT_BOOL* retval) {
  return Operate(
      L"AutoDetect()", retval,
      [&] {
        return ReadInto(Buffer, [&](auto& answer) {
          return object_->AutoDetect(answer, static_cast<EDetectLevel>(DetectLevel), TextOf(OmegaAddress));
        });
      },
      Buffer);
}

HRESULT ComPortClass::RFReadModemSettings(BSTR* sSerial, BSTR* sPowerLevel, BSTR* sPANID, BSTR* sChannel,
                                          BSTR* sModemAddr, BSTR* sTimeout, VARIANT_BOOL* retval) {
  return Operate(
      L"RFReadModemSettings()", retval,
      [&] {
        RadioModemSettings settings;
        if (!object_->RFReadModemSettings(settings)) return false;
        // All of them or none, when there is no memory.
        Bstr serial(settings.serial), power_level(settings.power_level), pan_id(settings.pan_id);
        Bstr channel(settings.channel), address(settings.modem_address), timeout(settings.timeout);
        serial.MoveTo(sSerial);
        power_level.MoveTo(sPowerLevel);
        pan_id.MoveTo(sPANID);
        channel.MoveTo(sChannel);
        address.MoveTo(sModemAddr);
        timeout.MoveTo(sTimeout);
        return true;
      },
      sSerial, sPowerLevel, sPANID, sChannel, sModemAddr, sTimeout);
}

void* ComPortClass::FindInterface(REFIID iid) {
  return iid == IID_IConnectionPointContainer ? &events_ : nullptr;
}

}  // namespace kesp
