// The public classes and their members as the type library tells them.
#pragma once

#include <string>
#include <vector>

#include "tests/clients/automation.h"

namespace kesp::variants {

using Microsoft::WRL::ComPtr;

struct Parameter {
  std::wstring name;
  VARTYPE type = VT_EMPTY;    // an enumeration as the number that it is, an interface as VT_DISPATCH
  bool is_reference = false;  // to a value of that type
  bool is_optional = false;
};

struct Member {
  std::wstring name;
  DISPID id = 0;
  INVOKEKIND kind = INVOKE_FUNC;
  std::vector<Parameter> parameters;  // the result not counted
  VARTYPE result = VT_VOID;

  bool IsPut() const { return (kind & (INVOKE_PROPERTYPUT | INVOKE_PROPERTYPUTREF)) != 0; }
};

struct PublicClass {
  std::wstring name;
  CLSID clsid{};
  bool is_creatable = false;
  IID default_interface{};
  ComPtr<ITypeInfo> info;  // of that interface
  std::vector<Member> members;
};

// All classes of the registered library, each with all members of its default interface. Throws
// std::runtime_error when something cannot be read.
std::vector<PublicClass> ReadPublicClasses();

// The name of the class of an object that tells it; empty for others.
std::wstring ClassNameOf(IUnknown* object);

}  // namespace kesp::variants
