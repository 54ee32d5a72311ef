// Taking over the reference of a new object.
#pragma once

#include <wrl/client.h>

namespace kesp {

// A pointer that owns the one reference with which the object was made. ComPtr::Attach is meant for that, but
// MinGW's takes a reference of its own, so that the object would never die.
template <class Interface>
Microsoft::WRL::ComPtr<Interface> Adopt(Interface* made) {
  Microsoft::WRL::ComPtr<Interface> owner;
  *owner.GetAddressOf() = made;
  return owner;
}

}  // namespace kesp
