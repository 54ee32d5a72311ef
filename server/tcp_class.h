// The COM object of the class CKespTCP.
#pragma once

#include <wrl/client.h>

#include <memory>

#include "KespCommObj.h"
#include "network/kesp_tcp.h"
#include "server/com_headers.h"
#include "server/connection_points.h"
#include "server/instruments_class.h"
#include "server/operating_object.h"
#include "server/tcp_event_bridge.h"

namespace kesp {

// Wraps one network transport and hands out its collection of instruments.
class TcpClass final : public OperatingObject<::_CKespTCP> {
 public:
  TcpClass();

  // The transport, which lives as long as this object.
  CKespTCP& object() { return *object_; }

  HRESULT STDMETHODCALLTYPE get_CheckNonAscii(VARIANT_BOOL* retval) override {
    return Get(retval, [&] { return object_->CheckNonAscii(); });
  }
  HRESULT STDMETHODCALLTYPE put_CheckNonAscii(VARIANT_BOOL vData) override {
    return Put([&] { object_->SetCheckNonAscii(FromComBool(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_TerminateOnEOS(VARIANT_BOOL* retval) override {
    return Get(retval, [&] { return object_->TerminateOnEOS(); });
  }
  HRESULT STDMETHODCALLTYPE put_TerminateOnEOS(VARIANT_BOOL vData) override {
    return Put([&] { object_->SetTerminateOnEOS(FromComBool(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_StripCRLF(VARIANT_BOOL* retval) override {
    return Get(retval, [&] { return object_->StripCRLF(); });
  }
  HRESULT STDMETHODCALLTYPE put_StripCRLF(VARIANT_BOOL vData) override {
    return Put([&] { object_->SetStripCRLF(FromComBool(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_TimeOutmSecs(SHORT* retval) override {
    return Get(retval, [&] { return object_->TimeOutmSecs(); });
  }
  HRESULT STDMETHODCALLTYPE put_TimeOutmSecs(SHORT vData) override {
    return Put([&] { object_->SetTimeOutmSecs(vData); });
  }
  HRESULT STDMETHODCALLTYPE get_EOSChar(BSTR* retval) override {
    return Get(retval, [&] { return object_->EOSChar(); });
  }
  HRESULT STDMETHODCALLTYPE put_EOSChar(BSTR vData) override {
    return Put([&] { object_->SetEOSChar(TextOf(vData)); });
  }
  HRESULT STDMETHODCALLTYPE GetKey(BSTR* retval) override {
    return Get(retval, [&] { return object_->GetKey(); });
  }
  HRESULT STDMETHODCALLTYPE get_State(::EKespTCPState* retval) override {
    return Get(retval, [&] { return object_->State(); });
  }
  HRESULT STDMETHODCALLTYPE get_Port(SHORT* retval) override {
    return Get(retval, [&] { return object_->Port(); });
  }
  HRESULT STDMETHODCALLTYPE put_Port(SHORT vData) override {
    return Put([&] { object_->SetPort(vData); });
  }
  HRESULT STDMETHODCALLTYPE get_IPAddress(BSTR* retval) override {
    return Get(retval, [&] { return object_->IPAddress(); });
  }
  HRESULT STDMETHODCALLTYPE put_IPAddress(BSTR vData) override {
    return Put([&] { object_->SetIPAddress(TextOf(vData)); });
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
  HRESULT STDMETHODCALLTYPE get_Devices(::_CInstruments** retval) override;
  HRESULT STDMETHODCALLTYPE get_Protocol(::EKespProtocol* retval) override {
    return Get(retval, [&] { return object_->Protocol(); });
  }
  HRESULT STDMETHODCALLTYPE put_Protocol(::EKespProtocol vData) override {
    return Put([&] { object_->SetProtocol(static_cast<EKespProtocol>(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_IPType(::EIPType* retval) override {
    return Get(retval, [&] { return object_->IPType(); });
  }
  HRESULT STDMETHODCALLTYPE put_IPType(::EIPType vData) override {
    return Put([&] { object_->SetIPType(static_cast<EIPType>(vData)); });
  }
  HRESULT STDMETHODCALLTYPE Initialize(VARIANT_BOOL* retval) override {
    return Operate(L"Initialize()", retval, [&] { return object_->Initialize(); });
  }
  HRESULT STDMETHODCALLTYPE Uninitialize(VARIANT_BOOL* retval) override {
    return Operate(L"Uninitialize()", retval, [&] { return object_->Uninitialize(); });
  }
  HRESULT STDMETHODCALLTYPE WriteLine(BSTR cmd, VARIANT_BOOL* retval) override {
    return Operate(L"WriteLine()", retval, [&] { return object_->WriteLine(TextOf(cmd)); });
  }
  HRESULT STDMETHODCALLTYPE ReadLine(BSTR* result, VARIANT_BOOL* retval) override;
  HRESULT STDMETHODCALLTYPE ReadLineBinary(VARIANT* result, LONG lTimeoutms, VARIANT_BOOL* retval) override;
  HRESULT STDMETHODCALLTYPE AutoDetect(BSTR* result, ::EDetectLevel DetectLevel,
                                       VARIANT_BOOL* retval) override;
  HRESULT STDMETHODCALLTYPE Edit(::EEditCommFlags Flags, BSTR HelpFile, LONG HCID,
                                 VARIANT_BOOL* retval) override {
    return Operate(L"Edit()", retval,
                   [&] { return object_->Edit(static_cast<EEditCommFlags>(Flags), TextOf(HelpFile), HCID); });
  }

 protected:
  void* FindInterface(REFIID iid) override;

 private:
  EventSource events_;
  TcpEventBridge bridge_;
  std::unique_ptr<CKespTCP> object_;
  Microsoft::WRL::ComPtr<InstrumentsClass> devices_;
};

}  // namespace kesp
