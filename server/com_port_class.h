// The COM object of the class CKespCOMPort3.
#pragma once

#include <wrl/client.h>

#include <memory>

#include "KespCommObj.h"
#include "serial/kesp_com_port.h"
#include "server/com_headers.h"
#include "server/com_port_event_bridge.h"
#include "server/connection_points.h"
#include "server/operating_object.h"
#include "server/smart_switch_class.h"

namespace kesp {

// Wraps one serial transport and hands out its port switch.
class ComPortClass final : public OperatingObject<::_CKespCOMPort3> {
 public:
  ComPortClass();

  // The transport, which lives as long as this object.
  CKespCOMPort3& object() { return *object_; }

  HRESULT STDMETHODCALLTYPE get_CheckNonAscii(VARIANT_BOOL* retval) override {
    return Get(retval, [&] { return object_->CheckNonAscii(); });
  }
  HRESULT STDMETHODCALLTYPE put_CheckNonAscii(VARIANT_BOOL vData) override {
    return Put([&] { object_->SetCheckNonAscii(FromComBool(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_TerminateOnLF(VARIANT_BOOL* retval) override {
    return Get(retval, [&] { return object_->TerminateOnLF(); });
  }
  HRESULT STDMETHODCALLTYPE put_TerminateOnLF(VARIANT_BOOL vData) override {
    return Put([&] { object_->SetTerminateOnLF(FromComBool(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_CreateLogFile(VARIANT_BOOL* retval) override {
    return Get(retval, [&] { return object_->CreateLogFile(); });
  }
  HRESULT STDMETHODCALLTYPE put_CreateLogFile(VARIANT_BOOL vData) override {
    return Put([&] { object_->SetCreateLogFile(FromComBool(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_LogFilename(BSTR* retval) override {
    return Get(retval, [&] { return object_->LogFilename(); });
  }
  HRESULT STDMETHODCALLTYPE put_LogFilename(BSTR vData) override {
    return Put([&] { object_->SetLogFilename(TextOf(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_UseSmartSwitch(VARIANT_BOOL* retval) override {
    return Get(retval, [&] { return object_->UseSmartSwitch(); });
  }
  HRESULT STDMETHODCALLTYPE put_UseSmartSwitch(VARIANT_BOOL vData) override {
    return Put([&] { object_->SetUseSmartSwitch(FromComBool(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_UseIRDongle(VARIANT_BOOL* retval) override {
    return Get(retval, [&] { return object_->UseIRDongle(); });
  }
  HRESULT STDMETHODCALLTYPE put_UseIRDongle(VARIANT_BOOL vData) override {
    return Put([&] { object_->SetUseIRDongle(FromComBool(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_UseRFModem(VARIANT_BOOL* retval) override {
    return Get(retval, [&] { return object_->UseRFModem(); });
  }
  HRESULT STDMETHODCALLTYPE put_UseRFModem(VARIANT_BOOL vData) override {
    return Put([&] { object_->SetUseRFModem(FromComBool(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_UseRedirector(VARIANT_BOOL* retval) override {
    return Get(retval, [&] { return object_->UseRedirector(); });
  }
  HRESULT STDMETHODCALLTYPE put_UseRedirector(VARIANT_BOOL vData) override {
    return Put([&] { object_->SetUseRedirector(FromComBool(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_StripCRLF(VARIANT_BOOL* retval) override {
    return Get(retval, [&] { return object_->StripCRLF(); });
  }
  HRESULT STDMETHODCALLTYPE put_StripCRLF(VARIANT_BOOL vData) override {
    return Put([&] { object_->SetStripCRLF(FromComBool(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_InstrAddr(SHORT* retval) override {
    return Get(retval, [&] { return object_->InstrAddr(); });
  }
  HRESULT STDMETHODCALLTYPE put_InstrAddr(SHORT vData) override {
    return Put([&] { object_->SetInstrAddr(vData); });
  }
  HRESULT STDMETHODCALLTYPE get_RFModemPropHCID(LONG* retval) override {
    return Get(retval, [&] { return object_->RFModemPropHCID(); });
  }
  HRESULT STDMETHODCALLTYPE put_RFModemPropHCID(LONG vData) override {
    return Put([&] { object_->SetRFModemPropHCID(vData); });
  }
  HRESULT STDMETHODCALLTYPE get_DataBits(::EKespDataBits3* retval) override {
    return Get(retval, [&] { return object_->DataBits(); });
  }
  HRESULT STDMETHODCALLTYPE put_DataBits(::EKespDataBits3* vData) override {
    return Put([&] { object_->SetDataBits(static_cast<EKespDataBits3>(*vData)); }, vData);
  }
  HRESULT STDMETHODCALLTYPE get_StopBits(::EKespStopBits3* retval) override {
    return Get(retval, [&] { return object_->StopBits(); });
  }
  HRESULT STDMETHODCALLTYPE put_StopBits(::EKespStopBits3* vData) override {
    return Put([&] { object_->SetStopBits(static_cast<EKespStopBits3>(*vData)); }, vData);
  }
  HRESULT STDMETHODCALLTYPE get_Parity(::EKespParity3* retval) override {
    return Get(retval, [&] { return object_->Parity(); });
  }
  HRESULT STDMETHODCALLTYPE put_Parity(::EKespParity3* vData) override {
    return Put([&] { object_->SetParity(static_cast<EKespParity3>(*vData)); }, vData);
  }
  HRESULT STDMETHODCALLTYPE get_ControllerStyle(::EKespControllerStyle3* retval) override {
    return Get(retval, [&] { return object_->ControllerStyle(); });
  }
  HRESULT STDMETHODCALLTYPE put_ControllerStyle(::EKespControllerStyle3 vData) override {
    return Put([&] { object_->SetControllerStyle(static_cast<EKespControllerStyle3>(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_Port(SHORT* retval) override {
    return Get(retval, [&] { return object_->Port(); });
  }
  HRESULT STDMETHODCALLTYPE put_Port(SHORT vData) override {
    return Put([&] { object_->SetPort(vData); });
  }
  HRESULT STDMETHODCALLTYPE get_BaudRate(::EKespBaudRate3* retval) override {
    return Get(retval, [&] { return object_->BaudRate(); });
  }
  HRESULT STDMETHODCALLTYPE put_BaudRate(::EKespBaudRate3 vData) override {
    return Put([&] { object_->SetBaudRate(static_cast<EKespBaudRate3>(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_MinBaudRate(::EKespBaudRate3* retval) override {
    return Get(retval, [&] { return object_->MinBaudRate(); });
  }
  HRESULT STDMETHODCALLTYPE put_MinBaudRate(::EKespBaudRate3 vData) override {
    return Put([&] { object_->SetMinBaudRate(static_cast<EKespBaudRate3>(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_MaxBaudRate(::EKespBaudRate3* retval) override {
    return Get(retval, [&] { return object_->MaxBaudRate(); });
  }
  HRESULT STDMETHODCALLTYPE put_MaxBaudRate(::EKespBaudRate3 vData) override {
    return Put([&] { object_->SetMaxBaudRate(static_cast<EKespBaudRate3>(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_TimeOut(LONG* retval) override {
    return Get(retval, [&] { return object_->TimeOut(); });
  }
  HRESULT STDMETHODCALLTYPE put_TimeOut(LONG vData) override {
    return Put([&] { object_->SetTimeOut(vData); });
  }
  HRESULT STDMETHODCALLTYPE get_SmartSwitch(::_CKespSmartSwitch3** retval) override;
  HRESULT STDMETHODCALLTYPE BaudRateName(::EKespBaudRate3 vData, BSTR* retval) override {
    return Get(retval, [&] { return object_->BaudRateName(static_cast<EKespBaudRate3>(vData)); });
  }
  HRESULT STDMETHODCALLTYPE GetSettings(BSTR* retval) override {
    return Get(retval, [&] { return object_->GetSettings(); });
  }
  HRESULT STDMETHODCALLTYPE GetKey(BSTR* retval) override {
    return Get(retval, [&] { return object_->GetKey(); });
  }
  HRESULT STDMETHODCALLTYPE OpenPort(VARIANT_BOOL* retval) override {
    return Operate(L"OpenPort()", retval, [&] { return object_->OpenPort(); });
  }
  HRESULT STDMETHODCALLTYPE ClosePort() override {
    return OperateOnly(L"ClosePort()", [&] { object_->ClosePort(); });
  }
  HRESULT STDMETHODCALLTYPE PortExists(SHORT cp, VARIANT_BOOL* retval) override {
    return Get(retval, [&] { return object_->PortExists(cp); });
  }
  HRESULT STDMETHODCALLTYPE IsPortAvailable(SHORT cp, VARIANT_BOOL* retval) override {
    return Get(retval, [&] { return object_->IsPortAvailable(cp); });
  }
  HRESULT STDMETHODCALLTYPE ClearBuffers() override {
    return OperateOnly(L"ClearBuffers()", [&] { object_->ClearBuffers(); });
  }
  HRESULT STDMETHODCALLTYPE SetInputMode(::EInputMode eMode) override {
    return OperateOnly(L"SetInputMode()", [&] { object_->SetInputMode(static_cast<EInputMode>(eMode)); });
  }
  HRESULT STDMETHODCALLTYPE WriteLine(BSTR cmd, BSTR OmegaAddress, BSTR OmegaValue, VARIANT_BOOL CRBeforeCmd,
                                      VARIANT_BOOL* retval) override {
    return Operate(L"WriteLine()", retval, [&] {
      return object_->WriteLine(TextOf(cmd), TextOf(OmegaAddress), TextOf(OmegaValue),
                                FromComBool(CRBeforeCmd));
    });
  }
  HRESULT STDMETHODCALLTYPE ReadLine(BSTR* result, VARIANT_BOOL* retval) override;
  HRESULT STDMETHODCALLTYPE ReadLineBinary(VARIANT* result, LONG lTimeoutms, VARIANT_BOOL* retval) override;
  HRESULT STDMETHODCALLTYPE Download(BSTR* result, VARIANT_BOOL* retval) override;
  HRESULT STDMETHODCALLTYPE AutoDetect(BSTR* Buffer, ::EDetectLevel DetectLevel, BSTR OmegaAddress,
                                       VARIANT_BOOL* retval) override;
  HRESULT STDMETHODCALLTYPE RFReadModemSettings(BSTR* sSerial, BSTR* sPowerLevel, BSTR* sPANID,
                                                BSTR* sChannel, BSTR* sModemAddr, BSTR* sTimeout,
                                                VARIANT_BOOL* retval) override;
  HRESULT STDMETHODCALLTYPE RFWriteModemSettings(DOUBLE dPANID, SHORT iChannel, DOUBLE dModemAddress,
                                                 DOUBLE dTimeout, VARIANT_BOOL bWriteToNVRAM,
                                                 VARIANT_BOOL* retval) override {
    return Operate(L"RFWriteModemSettings()", retval, [&] {
      return object_->RFWriteModemSettings(dPANID, iChannel, dModemAddress, dTimeout,
                                           FromComBool(bWriteToNVRAM));
    });
  }
  HRESULT STDMETHODCALLTYPE RFWriteModemInstrAddress(SHORT iInstrAddr, VARIANT_BOOL* retval) override {
    return Operate(L"RFWriteModemInstrAddress()", retval,
                   [&] { return object_->RFWriteModemInstrAddress(iInstrAddr); });
  }
  HRESULT STDMETHODCALLTYPE TestSmartSwitch() override {
    return OperateOnly(L"TestSmartSwitch()", [&] { object_->TestSmartSwitch(); });
  }
  HRESULT STDMETHODCALLTYPE Edit(::EEditCommFlags Flags, BSTR HelpFile, LONG HCID,
                                 VARIANT_BOOL* retval) override {
    return Operate(L"Edit()", retval,
                   [&] { return object_->Edit(static_cast<EEditCommFlags>(Flags), TextOf(HelpFile), HCID); });
  }

 protected:
  void* FindInterface(REFIID iid) override;

 private:
  EventSource events_;
  ComPortEventBridge bridge_;
  std::unique_ptr<CKespCOMPort3> object_;
  Microsoft::WRL::ComPtr<SmartSwitchClass> smart_switch_;
};

}  // namespace kesp
