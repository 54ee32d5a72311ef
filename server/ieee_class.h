// The COM object of the class CKespIEEE.
#pragma once

#include <memory>

#include "KespCommObj.h"
#include "gpib/kesp_ieee.h"
#include "server/com_headers.h"
#include "server/connection_points.h"
#include "server/ieee_event_bridge.h"
#include "server/operating_object.h"

namespace kesp {

// Wraps one IEEE-488 transport.
class IeeeClass final : public OperatingObject<::_CKespIEEE> {
 public:
  IeeeClass();

  // The transport, which lives as long as this object.
  CKespIEEE& object() { return *object_; }

  HRESULT STDMETHODCALLTYPE get_ClearDevice(VARIANT_BOOL* retval) override {
    return Get(retval, [&] { return object_->ClearDevice(); });
  }
  HRESULT STDMETHODCALLTYPE put_ClearDevice(VARIANT_BOOL vData) override {
    return Put([&] { object_->SetClearDevice(FromComBool(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_SetEOS(VARIANT_BOOL* retval) override {
    return Get(retval, [&] { return object_->SetEOS(); });
  }
  HRESULT STDMETHODCALLTYPE put_SetEOS(VARIANT_BOOL vData) override {
    return Put([&] { object_->SetSetEOS(FromComBool(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_TimeOutSecs(::ETimeOutSecs* retval) override {
    return Get(retval, [&] { return object_->TimeOutSecs(); });
  }
  HRESULT STDMETHODCALLTYPE put_TimeOutSecs(::ETimeOutSecs vData) override {
    return Put([&] { object_->SetTimeOutSecs(static_cast<ETimeOutSecs>(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_PrimaryAddress(SHORT* retval) override {
    return Get(retval, [&] { return object_->PrimaryAddress(); });
  }
  HRESULT STDMETHODCALLTYPE put_PrimaryAddress(SHORT vData) override {
    return Put([&] { object_->SetPrimaryAddress(vData); });
  }
  HRESULT STDMETHODCALLTYPE get_SecondaryAddress(SHORT* retval) override {
    return Get(retval, [&] { return object_->SecondaryAddress(); });
  }
  HRESULT STDMETHODCALLTYPE put_SecondaryAddress(SHORT vData) override {
    return Put([&] { object_->SetSecondaryAddress(vData); });
  }
  HRESULT STDMETHODCALLTYPE get_BoardIndex(SHORT* retval) override {
    return Get(retval, [&] { return object_->BoardIndex(); });
  }
  HRESULT STDMETHODCALLTYPE put_BoardIndex(SHORT vData) override {
    return Put([&] { object_->SetBoardIndex(vData); });
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
  HRESULT STDMETHODCALLTYPE Initialize(VARIANT_BOOL* retval) override {
    return Operate(L"Initialize()", retval, [&] { return object_->Initialize(); });
  }
  HRESULT STDMETHODCALLTYPE Uninitialize(VARIANT_BOOL* retval) override {
    return Operate(L"Uninitialize()", retval, [&] { return object_->Uninitialize(); });
  }
  HRESULT STDMETHODCALLTYPE AutoDetect(BSTR* result, ::EDetectLevel DetectLevel, ::ESearchOption SearchOption,
                                       VARIANT_BOOL* retval) override;
  HRESULT STDMETHODCALLTYPE WriteLine(BSTR cmd, VARIANT_BOOL* retval) override {
    return Operate(L"WriteLine()", retval, [&] { return object_->WriteLine(TextOf(cmd)); });
  }
  HRESULT STDMETHODCALLTYPE ReadLine(BSTR* result, VARIANT_BOOL* retval) override;

 protected:
  void* FindInterface(REFIID iid) override;

 private:
  EventSource events_;
  IeeeEventBridge bridge_;
  std::unique_ptr<CKespIEEE> object_;
};

}  // namespace kesp
