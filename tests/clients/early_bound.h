// Reading properties and calling methods through the dual interfaces in one expression each.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "tests/clients/automation.h"

namespace kesp::clients {

// The value of a property; a text as std::wstring. A failing call fails the test.
template <class Interface, class Result>
auto Read(const ComPtr<Interface>& object, HRESULT (STDMETHODCALLTYPE Interface::*getter)(Result*)) {
  if constexpr (std::is_same_v<Result, BSTR>) {
    Text text;
    EXPECT_EQ((object.Get()->*getter)(text.out()), S_OK);
    return text.str();
  } else {
    Result value{};
    EXPECT_EQ((object.Get()->*getter)(&value), S_OK);
    return value;
  }
}

// The object that a property holds.
template <class Interface, class Result>
ComPtr<Result> ReadObject(const ComPtr<Interface>& object,
                          HRESULT (STDMETHODCALLTYPE Interface::*getter)(Result**)) {
  ComPtr<Result> value;
  EXPECT_EQ((object.Get()->*getter)(value.GetAddressOf()), S_OK);
  return value;
}

// Puts a property (a text as std::wstring); what comes of it is the result.
template <class Interface, class Value>
HRESULT Write(
    const ComPtr<Interface>& object, HRESULT (STDMETHODCALLTYPE Interface::*setter)(Value),
    std::conditional_t<std::is_same_v<Value, BSTR>, const std::wstring&, std::type_identity_t<Value>> value) {
  if constexpr (std::is_same_v<Value, BSTR>) {
    return (object.Get()->*setter)(Text(value).get());
  } else {
    return (object.Get()->*setter)(value);
  }
}

// The same for the enumerations that are put by reference.
template <class Interface, class Value>
HRESULT WriteByReference(const ComPtr<Interface>& object,
                         HRESULT (STDMETHODCALLTYPE Interface::*setter)(Value*), long number) {
  auto value = static_cast<Value>(number);
  const HRESULT result = (object.Get()->*setter)(&value);
  EXPECT_EQ(static_cast<long>(value), number) << "the argument is not to be changed";
  return result;
}

// A method without arguments that answers with a boolean.
template <class Interface>
bool CallsTrue(const ComPtr<Interface>& object,
               HRESULT (STDMETHODCALLTYPE Interface::*method)(VARIANT_BOOL*)) {
  VARIANT_BOOL value = VARIANT_FALSE;
  const HRESULT result = (object.Get()->*method)(&value);
  EXPECT_EQ(result, S_OK);
  return result == S_OK && value == VARIANT_TRUE;
}

}  // namespace kesp::clients
