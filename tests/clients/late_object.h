// An object as a script sees it: names, VARIANTs and IDispatch.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tests/clients/automation.h"

namespace kesp::clients {

// What a late-bound call came to.
struct Outcome {
  HRESULT result = S_OK;
  Value value;
  // Of EXCEPINFO, when the result is DISP_E_EXCEPTION.
  HRESULT scode = S_OK;
  std::wstring source;
  std::wstring description;
  UINT bad_argument = 999;

  bool IsTrue() const {
    return result == S_OK && value.type() == VT_BOOL && V_BOOL(value.get()) == VARIANT_TRUE;
  }
};

// A named argument.
using Named = std::pair<std::wstring, VARIANT>;

// A VARIANT that refers to another one, as a script passes a variable.
VARIANT Variable(Value& value);
// A VARIANT that refers to a typed variable of the client.
VARIANT Reference(BSTR* text);
VARIANT Reference(SAFEARRAY** bytes);

// A plain argument. The object keeps owning it.
inline VARIANT Plain(const Value& value) {
  return *value.get();
}

// Late binding with a call for each kind of use.
class LateObject {
 public:
  explicit LateObject(ComPtr<IDispatch> object) : object_(std::move(object)) {}

  IDispatch* get() const { return object_.Get(); }

  // The identifiers of a member and, behind it, of its arguments.
  HRESULT IdsOf(const std::vector<std::wstring>& names, std::vector<DISPID>& ids) const;
  DISPID IdOf(const std::wstring& name) const;

  Outcome Call(const std::wstring& name, const std::vector<VARIANT>& arguments = {},
               const std::vector<Named>& named = {}) const;
  Outcome Get(const std::wstring& name) const;
  Outcome Put(const std::wstring& name, const VARIANT& value) const;

  // arguments in their order of declaration.
  Outcome Invoke(DISPID id, WORD flags, const std::vector<VARIANT>& arguments,
                 const std::vector<std::pair<DISPID, VARIANT>>& named = {}) const;

 private:
  ComPtr<IDispatch> object_;
};

}  // namespace kesp::clients
