// Calls of the library through COM: its texts, its properties, and its failures as LibraryError.
#pragma once

#include <oleauto.h>
#include <wrl/client.h>

#include <string>
#include <string_view>
#include <type_traits>

#include "console/library.h"

namespace kesp::console {

using Microsoft::WRL::ComPtr;

// A text in a call.
class ComText {
 public:
  ComText() = default;
  explicit ComText(std::string_view utf8);
  ~ComText() { SysFreeString(text_); }
  ComText(const ComText&) = delete;
  ComText& operator=(const ComText&) = delete;

  BSTR get() const { return text_; }
  // For a text that the call returns, or exchanges.
  BSTR* out() { return &text_; }
  std::string str() const;  // in UTF-8

 private:
  BSTR text_ = nullptr;
};

// What Windows says of a number, without a full stop.
std::string SystemText(HRESULT result);

// Throws LibraryError with what the call has left as error information; nothing after a success.
void Check(HRESULT result);

// The value of a property, a text as UTF-8. A truth value is a short integer to C++, not 0 where it is true.
template <class Interface, class Value>
auto Read(Interface* object, HRESULT (STDMETHODCALLTYPE Interface::*getter)(Value*)) {
  if constexpr (std::is_same_v<Value, BSTR>) {
    ComText text;
    Check((object->*getter)(text.out()));
    return text.str();
  } else {
    Value value{};
    Check((object->*getter)(&value));
    return value;
  }
}

template <class Interface>
void Write(Interface* object, HRESULT (STDMETHODCALLTYPE Interface::*setter)(BSTR), std::string_view utf8) {
  Check((object->*setter)(ComText(utf8).get()));
}

template <class Interface>
void Write(Interface* object, HRESULT (STDMETHODCALLTYPE Interface::*setter)(VARIANT_BOOL), bool value) {
  Check((object->*setter)(value ? VARIANT_TRUE : VARIANT_FALSE));
}

// For the enumerations that are put by reference.
template <class Interface, class Value>
void Write(Interface* object, HRESULT (STDMETHODCALLTYPE Interface::*setter)(Value*), int number) {
  auto value = static_cast<Value>(number);
  Check((object->*setter)(&value));
}

}  // namespace kesp::console
