// The type library in this DLL's resources, loaded once, and what the dispatch needs to know of its
// interfaces.
#pragma once

#include <vector>

#include "server/com_headers.h"

namespace kesp {

// An argument of a member that is passed by reference to a value of a fixed type.
struct ReferenceArgument {
  UINT position = 0;        // from 0, in the order of declaration
  VARTYPE type = VT_EMPTY;  // of the value, for example VT_BSTR; VT_VARIANT for an argument of any type
};

// One way of calling a member: as a method, or getting or setting a property.
struct MemberCall {
  DISPID id = 0;
  INVOKEKIND kind = INVOKE_FUNC;
  UINT arguments = 0;  // the result not counted
  std::vector<ReferenceArgument> references;
  std::vector<UINT> optional;  // positions of the arguments that may be left out
};

// What is known of one dual interface. Lives until the DLL is unloaded; any thread may read it.
class InterfaceInfo {
 public:
  InterfaceInfo(ITypeInfo* type_info, std::vector<MemberCall> calls);

  ITypeInfo* type_info() const { return type_info_; }

  // The call that Invoke's flags ask for; null when the member cannot be called that way or does not exist.
  const MemberCall* Find(DISPID id, WORD flags) const;

  bool HasMember(DISPID id) const;

 private:
  ITypeInfo* type_info_;
  std::vector<MemberCall> calls_;
};

// The interface's information. Throws Failure when the type library cannot be read.
const InterfaceInfo& InterfaceInfoOf(REFIID iid);

// The type information of a class, with a reference for the caller. Throws Failure likewise.
ITypeInfo* ClassTypeInfo(REFCLSID clsid);

// Gives everything back; only for the unloading of the DLL.
void ReleaseTypeInfoCache() noexcept;

}  // namespace kesp
