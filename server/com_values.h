// Single values between the library's types and those of the dual interfaces.
#pragma once

#include <cstdint>
#include <string>
#include <type_traits>

#include "server/com_headers.h"
#include "server/text_bridge.h"

namespace kesp {

// Automation's boolean: true is -1.
inline VARIANT_BOOL ToCom(bool value) {
  return value ? VARIANT_TRUE : VARIANT_FALSE;
}
inline SHORT ToCom(std::int16_t value) {
  return value;
}
inline LONG ToCom(std::int32_t value) {
  return value;
}
inline BSTR ToCom(const std::wstring& value) {
  return Bstr(value).Detach();
}

// An enumeration or an object pointer is made the type of its destination.
template <class Destination, class Value>
Destination ToComAs(Value&& value) {
  if constexpr (std::is_enum_v<Destination>) {
    return static_cast<Destination>(value);
  } else if constexpr (std::is_convertible_v<Value, Destination> && std::is_pointer_v<Destination> &&
                       !std::is_same_v<Destination, BSTR>) {
    return value;
  } else {
    return ToCom(value);
  }
}

// Only 0 is false: clients write 1 as well as -1.
inline bool FromComBool(VARIANT_BOOL value) {
  return value != VARIANT_FALSE;
}

}  // namespace kesp
