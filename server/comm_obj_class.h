// The COM object of the class CKespCommObj.
#pragma once

#include <memory>

#include "KespCommObj.h"
#include "commobj/kesp_comm_obj.h"
#include "server/com_headers.h"
#include "server/operating_object.h"

namespace kesp {

// Wraps one communication object, whose transports are COM objects that clients may hold on to.
class CommObjClass final : public OperatingObject<::_CKespCommObj> {
 public:
  CommObjClass();

  HRESULT STDMETHODCALLTYPE get_AutoClose(VARIANT_BOOL* retval) override {
    return Get(retval, [&] { return object_->AutoClose(); });
  }
  HRESULT STDMETHODCALLTYPE put_AutoClose(VARIANT_BOOL vData) override {
    return Put([&] { object_->SetAutoClose(FromComBool(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_BinaryTimeoutms(LONG* retval) override {
    return Get(retval, [&] { return object_->BinaryTimeoutms(); });
  }
  HRESULT STDMETHODCALLTYPE put_BinaryTimeoutms(LONG vData) override {
    return Put([&] { object_->SetBinaryTimeoutms(vData); });
  }
  HRESULT STDMETHODCALLTYPE get_CRBeforeCommand(VARIANT_BOOL* retval) override {
    return Get(retval, [&] { return object_->CRBeforeCommand(); });
  }
  HRESULT STDMETHODCALLTYPE put_CRBeforeCommand(VARIANT_BOOL vData) override {
    return Put([&] { object_->SetCRBeforeCommand(FromComBool(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_DebugFilename(BSTR* retval) override {
    return Get(retval, [&] { return object_->DebugFilename(); });
  }
  HRESULT STDMETHODCALLTYPE put_DebugFilename(BSTR vData) override {
    return Put([&] { object_->SetDebugFilename(TextOf(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_Debugging(VARIANT_BOOL* retval) override {
    return Get(retval, [&] { return object_->Debugging(); });
  }
  HRESULT STDMETHODCALLTYPE put_Debugging(VARIANT_BOOL vData) override {
    return Put([&] { object_->SetDebugging(FromComBool(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_CommError(::ECommError* retval) override {
    return Get(retval, [&] { return object_->CommError(); });
  }
  HRESULT STDMETHODCALLTYPE get_CommErrorSource(BSTR* retval) override {
    return Get(retval, [&] { return object_->CommErrorSource(); });
  }
  HRESULT STDMETHODCALLTYPE get_CommErrorDescr(BSTR* retval) override {
    return Get(retval, [&] { return object_->CommErrorDescr(); });
  }
  HRESULT STDMETHODCALLTYPE GetKey(BSTR* retval) override {
    return Get(retval, [&] { return object_->GetKey(); });
  }
  HRESULT STDMETHODCALLTYPE get_CommObject(IDispatch** retval) override;
  HRESULT STDMETHODCALLTYPE get_CommStyle(::ECommStyle* retval) override {
    return Get(retval, [&] { return object_->CommStyle(); });
  }
  HRESULT STDMETHODCALLTYPE put_CommStyle(::ECommStyle* vData) override {
    return OperateOnly(
        L"CommStyle", [&] { object_->SetCommStyle(static_cast<ECommStyle>(*vData)); }, vData);
  }
  HRESULT STDMETHODCALLTYPE Query(BSTR* result, BSTR cmd, BSTR OmegaAddress, BSTR OmegaValue,
                                  VARIANT_BOOL* retval) override;
  HRESULT STDMETHODCALLTYPE QueryBinary(VARIANT* result, BSTR cmd, BSTR OmegaAddress, BSTR OmegaValue,
                                        VARIANT_BOOL* retval) override;
  HRESULT STDMETHODCALLTYPE Update(BSTR cmd, BSTR OmegaAddress, BSTR OmegaValue,
                                   VARIANT_BOOL* retval) override;
  HRESULT STDMETHODCALLTYPE DetectInstrument(BSTR* result, ::EDetectLevel DetectLevel,
                                             VARIANT_BOOL* retval) override;
  HRESULT STDMETHODCALLTYPE SetInputMode(::EInputMode eMode) override {
    return OperateOnly(L"SetInputMode()", [&] { object_->SetInputMode(static_cast<EInputMode>(eMode)); });
  }
  HRESULT STDMETHODCALLTYPE Edit(::EEditCommFlags Flags, BSTR HelpFile, LONG HCID,
                                 VARIANT_BOOL* retval) override {
    return Operate(L"Edit()", retval,
                   [&] { return object_->Edit(static_cast<EEditCommFlags>(Flags), TextOf(HelpFile), HCID); });
  }

 protected:
  // Clients may use the transport directly, too.
  OperationGate* FurtherGate() override { return SelectedTransport().gate; }

 private:
  // The COM object of a transport, whose reference belongs to object_, and its gate.
  struct Transport {
    IDispatch* object = nullptr;
    OperationGate* gate = nullptr;
  };

  TransportFactory MakeFactory();
  Transport SelectedTransport() const;
  void RequireRoomForReply(const VARIANT& argument) const;

  Transport serial_;
  Transport network_;
  Transport ieee_;
  std::unique_ptr<CKespCommObj> object_;
};

}  // namespace kesp
