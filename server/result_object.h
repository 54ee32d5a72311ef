// An object that a client hands over in place of a variable for a result.
#pragma once

#include <wrl/client.h>

#include "server/com_headers.h"

namespace kesp {

// The member `value` of such an object; nothing where the argument is none, or has no such member. In the
// thread of the call.
class ResultObject {
 public:
  ResultObject() = default;
  // `argument` as the client passed it, by value.
  explicit ResultObject(const VARIANT& argument);

  explicit operator bool() const { return object_ != nullptr; }
  // What it holds, in an empty VARIANT. Empty also when the object refuses to tell.
  void Read(VARIANT* value) const;
  // Fails when the object refuses the new value.
  HRESULT Write(VARIANT* value) const;

 private:
  Microsoft::WRL::ComPtr<IDispatch> object_;
  DISPID member_ = DISPID_UNKNOWN;
};

}  // namespace kesp
