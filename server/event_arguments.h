// The arguments of an event, from the library's types to what a handler's Invoke takes.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "server/com_headers.h"
#include "server/text_bridge.h"

namespace kesp {

// Collects arguments in the order of their declaration. Texts and in/out values live as long as this object.
class EventArguments {
 public:
  EventArguments() = default;
  ~EventArguments() {
    for (BSTR text : texts_) SysFreeString(text);
  }
  EventArguments(const EventArguments&) = delete;
  EventArguments& operator=(const EventArguments&) = delete;

  EventArguments& Add(std::int16_t value) {
    V_I2(&New(VT_I2)) = value;
    return *this;
  }
  EventArguments& Add(std::int32_t value) {
    V_I4(&New(VT_I4)) = value;
    return *this;
  }
  EventArguments& Add(const std::wstring& value) {
    V_BSTR(&New(VT_BSTR)) = Keep(value);
    return *this;
  }
  // In/out arguments: the returned place holds what the handlers left there.
  VARIANT_BOOL* AddInOut(bool value) {
    flags_.push_back(value ? VARIANT_TRUE : VARIANT_FALSE);
    V_BOOLREF(&New(VT_BYREF | VT_BOOL)) = &flags_.back();
    return &flags_.back();
  }
  BSTR* AddInOut(const std::wstring& value) {
    Keep(value);
    V_BSTRREF(&New(VT_BYREF | VT_BSTR)) = &texts_.back();
    return &texts_.back();
  }

  // Last to first, as Invoke wants them.
  std::vector<VARIANT> ForInvoke() const { return {arguments_.rbegin(), arguments_.rend()}; }

 private:
  VARIANT& New(int type) {
    VARIANT argument;
    VariantInit(&argument);
    V_VT(&argument) = static_cast<VARTYPE>(type);
    arguments_.push_back(argument);
    return arguments_.back();
  }
  BSTR Keep(const std::wstring& value) {
    texts_.push_back(Bstr(value).Detach());
    return texts_.back();
  }

  std::vector<VARIANT> arguments_;
  std::deque<BSTR> texts_;          // at fixed addresses, since arguments refer to them
  std::deque<VARIANT_BOOL> flags_;  // likewise
};

}  // namespace kesp
