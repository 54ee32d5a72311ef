// The base of the objects that carry out operations.
#pragma once

#include <utility>

#include "server/automation_object.h"
#include "server/operation_gate.h"

namespace kesp {

// An object with members that are operations. Each of those passes the object's gate first, by Operate.
// Members that only read or set something do not: anybody may use them meanwhile.
template <class Interface>
class OperatingObject : public AutomationObject<Interface> {
 public:
  OperationGate& gate() { return gate_; }

 protected:
  // `class_name` is the class in the source of a refusal.
  OperatingObject(const ClassDescription& description, const wchar_t* class_name)
      : AutomationObject<Interface>(description), class_name_(class_name) {}

  // The gate of an object through which this one works; null for none.
  virtual OperationGate* FurtherGate() { return nullptr; }

  // The body of an operation with a result, as in AutomationObject::Get. `member` is its name in the source
  // of a refusal, for example "ReadLine()".
  template <class Result, class Value, class... Pointers>
  HRESULT Operate(const wchar_t* member, Result* result, Value&& value, Pointers*... pointers) noexcept {
    return this->Get(
        result,
        [&] {
          const OperationGate::Passage passage(&gate_, class_name_, member);
          const OperationGate::Passage further(FurtherGate(), class_name_, member);
          return value();
        },
        pointers...);
  }

  // The body of an operation that hands nothing out, as in AutomationObject::Put.
  template <class Body, class... Pointers>
  HRESULT OperateOnly(const wchar_t* member, Body&& body, Pointers*... pointers) noexcept {
    return this->Put(
        [&] {
          const OperationGate::Passage passage(&gate_, class_name_, member);
          const OperationGate::Passage further(FurtherGate(), class_name_, member);
          body();
        },
        pointers...);
  }

 private:
  const wchar_t* const class_name_;
  OperationGate gate_;
};

}  // namespace kesp
