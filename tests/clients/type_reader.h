// Type information in words. What cannot be read throws std::runtime_error.
#pragma once

#include <string>
#include <vector>

#include "tests/clients/automation.h"

namespace kesp::clients {

// One type of a library.
class TypeReader {
 public:
  explicit TypeReader(ComPtr<ITypeInfo> info);
  ~TypeReader();
  TypeReader(const TypeReader&) = delete;
  TypeReader& operator=(const TypeReader&) = delete;

  const TYPEATTR* operator->() const { return attributes_; }

  // The lines of the type in the list of all that is public: a heading, and one for each member.
  std::vector<std::wstring> Lines() const;

 private:
  // The name of the type or of a member, which must have a help text of at most 255 characters: browsers and
  // compilers cut longer ones, or refuse them.
  std::wstring NameWithHelp(MEMBERID member) const;
  std::wstring Heading() const;
  unsigned Flags() const;
  ComPtr<ITypeInfo> VtableHalf() const;
  std::wstring ImplementedTypes() const;
  std::wstring Constant(UINT index) const;
  // A function with its place in the vtable; empty for one of IUnknown's or IDispatch's own.
  std::wstring Function(UINT index) const;
  std::wstring Place(const FUNCDESC& function) const;
  std::wstring Arguments(const FUNCDESC& function) const;
  std::wstring ArgumentType(const ELEMDESC& argument) const;
  std::wstring TypeName(const TYPEDESC& type) const;
  std::wstring NameOf(HREFTYPE reference) const;
  bool IsDual() const { return (attributes_->wTypeFlags & TYPEFLAG_FDUAL) != 0; }

  ComPtr<ITypeInfo> info_;
  TYPEATTR* attributes_ = nullptr;
};

// "{2d794e96-0780-4200-a425-c3c3836e4bf8}", in lower case.
std::wstring TextOf(const GUID& guid);

}  // namespace kesp::clients
