// Type information in the words of the tests.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tests/clients/automation.h"
#include "tests/clients/public_events.h"

namespace kesp::clients {

// One function of a type.
class FunctionReader {
 public:
  FunctionReader(ComPtr<ITypeInfo> info, UINT index);
  ~FunctionReader();
  FunctionReader(const FunctionReader&) = delete;
  FunctionReader& operator=(const FunctionReader&) = delete;

  const FUNCDESC* operator->() const { return function_; }
  std::wstring Name() const { return names_.front(); }
  std::wstring HelpText() const;
  // Whether it is one of IUnknown's or IDispatch's own.
  bool IsInherited() const;
  std::wstring ArgumentName(std::size_t index) const { return names_.at(index + 1); }
  // For example "string", "&string" by reference, "string=\"\"" with a default.
  std::wstring ArgumentType(std::size_t index) const;
  // For example: 12 method Query(result &string,cmd string) boolean
  std::wstring Declaration() const;

 private:
  std::wstring TypeName(const TYPEDESC& type) const;
  std::wstring NameOf(HREFTYPE reference) const;

  ComPtr<ITypeInfo> info_;
  FUNCDESC* function_ = nullptr;
  std::vector<std::wstring> names_;
};

// One type.
class TypeReader {
 public:
  explicit TypeReader(ComPtr<ITypeInfo> info);
  TypeReader(TypeReader&& other) noexcept
      : info_(std::move(other.info_)), attributes_(std::exchange(other.attributes_, nullptr)) {}
  ~TypeReader();
  TypeReader& operator=(TypeReader&&) = delete;

  static TypeReader OfName(ITypeLib* library, const std::wstring& name, TYPEKIND kind);

  const TYPEATTR* operator->() const { return attributes_; }
  std::wstring HelpText() const;

  struct Implemented {
    GUID guid;
    int flags;
  };
  Implemented ImplementedType(UINT index) const;
  // Of a dual interface, which is described as a dispatch interface, the other description.
  TypeReader VtableHalf() const;

  std::vector<std::pair<std::wstring, long>> Constants() const;
  FunctionReader Function(UINT index) const { return {info_, index}; }
  // The declarations of all members that are not IUnknown's or IDispatch's.
  std::vector<std::wstring> DeclaredMembers() const;

 private:
  ComPtr<ITypeInfo> info_;
  TYPEATTR* attributes_ = nullptr;
};

std::wstring DescriptionOf(ArgumentKind kind);

}  // namespace kesp::clients
