// An instrument of the client's own making, which may refuse, and act when it is asked.
#pragma once

#include <atomic>
#include <functional>
#include <string>

#include "KespCommObj.h"
#include "tests/clients/automation.h"

namespace kesp::clients {

class ForeignInstrument final : public _CInstrument {
 public:
  static ComPtr<ForeignInstrument> Make() { return Adopt(new ForeignInstrument); }

  std::wstring model;
  std::wstring serial;
  std::wstring address;
  // What asking for the address and setting the model come to.
  HRESULT address_result = S_OK;
  HRESULT model_result = S_OK;
  // Runs when the address is asked for.
  std::function<void()> on_address = [] {};

  HRESULT STDMETHODCALLTYPE get_Model(BSTR* retval) override { return Give(model, retval); }
  HRESULT STDMETHODCALLTYPE put_Model(BSTR vData) override {
    if (SUCCEEDED(model_result)) model = vData;
    return model_result;
  }
  HRESULT STDMETHODCALLTYPE get_Serial(BSTR* retval) override { return Give(serial, retval); }
  HRESULT STDMETHODCALLTYPE put_Serial(BSTR vData) override {
    serial = vData;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE get_IPAddress(BSTR* retval) override {
    on_address();
    return SUCCEEDED(address_result) ? Give(address, retval) : address_result;
  }
  HRESULT STDMETHODCALLTYPE put_IPAddress(BSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_IPType(EIPType*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_IPType(EIPType) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_MACAddress(BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_MACAddress(BSTR) override { return E_NOTIMPL; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    const bool is_known = iid == IID_IUnknown || iid == IID_IDispatch || iid == __uuidof(_CInstrument);
    *object = is_known ? this : nullptr;
    if (is_known) AddRef();
    return is_known ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                   UINT*) override {
    return E_NOTIMPL;
  }

 private:
  ForeignInstrument() = default;
  ~ForeignInstrument() = default;

  static HRESULT Give(const std::wstring& text, BSTR* retval) {
    *retval = SysAllocString(text.c_str());
    return S_OK;
  }

  std::atomic<ULONG> references_ = 1;
};

}  // namespace kesp::clients
