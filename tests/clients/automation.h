// The client's side of COM in the tests: texts, values, apartments and errors.
#pragma once

// The order of these headers matters.
#include <objbase.h>
#include <ocidl.h>
#include <oleauto.h>
#include <olectl.h>
#include <unknwn.h>
#include <windows.h>
#include <wrl/client.h>

#include <ostream>
#include <string>
#include <vector>

namespace kesp::clients {

using Microsoft::WRL::ComPtr;

// Owns a BSTR. Embedded NULs are kept.
class Text {
 public:
  Text() = default;
  Text(const std::wstring& text) : text_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}
  Text(const wchar_t* text) : text_(SysAllocString(text)) {}
  ~Text() { SysFreeString(text_); }
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;

  BSTR get() const { return text_; }
  // For an argument by reference: what is there stays the callee's to free.
  BSTR* in_out() { return &text_; }
  // For an out argument: what was there is freed.
  BSTR* out() {
    SysFreeString(text_);
    text_ = nullptr;
    return &text_;
  }
  std::wstring str() const { return text_ ? std::wstring(text_, SysStringLen(text_)) : std::wstring(); }

 private:
  BSTR text_ = nullptr;
};

// Owns a VARIANT.
class Value {
 public:
  Value() { VariantInit(&value_); }
  Value(const wchar_t* text) : Value() {
    V_VT(&value_) = VT_BSTR;
    V_BSTR(&value_) = SysAllocString(text);
  }
  Value(long number) : Value() {
    V_VT(&value_) = VT_I4;
    V_I4(&value_) = number;
  }
  Value(int number) : Value(static_cast<long>(number)) {}
  ~Value() { VariantClear(&value_); }
  Value(const Value& other) : Value() { VariantCopy(&value_, const_cast<VARIANT*>(&other.value_)); }
  Value& operator=(const Value& other) {
    if (this != &other) VariantCopy(&value_, const_cast<VARIANT*>(&other.value_));
    return *this;
  }

  VARIANT* get() { return &value_; }
  const VARIANT* get() const { return &value_; }
  VARIANT* operator->() { return &value_; }
  VARTYPE type() const { return V_VT(&value_); }
  std::wstring text() const {
    return type() == VT_BSTR ? std::wstring(V_BSTR(&value_), SysStringLen(V_BSTR(&value_))) : std::wstring();
  }

 private:
  VARIANT value_;
};

// A value of that type that is zero, or null.
Value OfType(VARTYPE type);
Value Real(double number);

// A pointer that owns the one reference of a new object. (MinGW's ComPtr::Attach takes another one.)
template <class Interface>
ComPtr<Interface> Adopt(Interface* made) {
  ComPtr<Interface> owner;
  *owner.GetAddressOf() = made;
  return owner;
}

// The bytes of a one-dimensional array of VT_UI1 with lower bound 0; a type or bound other than that fails
// the test.
std::string BytesOf(const VARIANT& value);

// A one-dimensional array of VT_UI1.
SAFEARRAY* NewByteArray(const std::string& bytes);

// What a client learns of a failed call: the result, and the error information of the calling thread.
struct Refusal {
  HRESULT result = S_OK;
  std::wstring source;
  std::wstring description;

  friend bool operator==(const Refusal&, const Refusal&) = default;
};

std::ostream& operator<<(std::ostream& out, const Refusal& refusal);

// The result together with, after a failure, the thread's error information, which is taken by that.
Refusal RefusalOf(HRESULT result);

// The result of a call that failed with a bare number, such as 5 or 8002.
inline HRESULT ControlError(long number) {
  return MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, number);
}

// An apartment for as long as it lives.
class Apartment {
 public:
  explicit Apartment(DWORD kind = COINIT_APARTMENTTHREADED) : result_(CoInitializeEx(nullptr, kind)) {}
  ~Apartment() {
    if (SUCCEEDED(result_)) CoUninitialize();
  }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;

 private:
  HRESULT result_;
};

// Creates an object of the registered library; fails the test and returns null where it cannot.
template <class Interface>
ComPtr<Interface> Create(REFCLSID clsid) {
  ComPtr<Interface> object;
  const HRESULT result = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface),
                                          reinterpret_cast<void**>(object.GetAddressOf()));
  void ExpectCreated(HRESULT result);
  ExpectCreated(result);
  return object;
}

// Whether two pointers are of one object, which is what their IUnknown says.
bool IsSameObject(IUnknown* one, IUnknown* other);

// Works off the messages of this thread until the condition holds; false when it did not in that time.
template <class Condition>
bool PumpUntil(const Condition& condition, DWORD milliseconds = 10000) {
  const DWORD start = GetTickCount();
  while (!condition()) {
    if (GetTickCount() - start > milliseconds) return false;
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
  }
  return true;
}

}  // namespace kesp::clients
