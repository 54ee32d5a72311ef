// Reading type information.
#include "tests/clients/type_reader.h"

#include <gtest/gtest.h>

#include <array>

namespace kesp::clients {

namespace {

std::wstring DefaultOf(const VARIANT& value) {
  if (V_VT(&value) == VT_BSTR) return L"=\"" + Text(V_BSTR(&value)).str() + L"\"";
  Value text;
  VariantChangeType(text.get(), const_cast<VARIANT*>(&value), 0, VT_BSTR);
  return L"=" + text.text();
}

std::wstring HelpTextOf(ITypeInfo* info, MEMBERID id) {
  Text text;
  info->GetDocumentation(id, nullptr, text.out(), nullptr, nullptr);
  return text.str();
}

// Identifiers from here on are IUnknown's and IDispatch's own.
constexpr MEMBERID kInherited = 0x60000000;

}  // namespace

std::wstring DescriptionOf(ArgumentKind kind) {
  switch (kind) {
    case ArgumentKind::kInteger16:
      return L"integer16";
    case ArgumentKind::kInteger32:
      return L"integer32";
    case ArgumentKind::kText:
      return L"string";
    case ArgumentKind::kTextInOut:
      return L"&string";
    case ArgumentKind::kBooleanInOut:
      return L"&boolean";
    default:
      return L"EKespBaudRate3";
  }
}

FunctionReader::FunctionReader(ComPtr<ITypeInfo> info, UINT index) : info_(std::move(info)) {
  EXPECT_EQ(info_->GetFuncDesc(index, &function_), S_OK);
  std::array<BSTR, 16> names{};
  UINT count = 0;
  info_->GetNames(function_->memid, names.data(), static_cast<UINT>(names.size()), &count);
  for (UINT i = 0; i < count; ++i) {
    names_.emplace_back(names.at(i));
    SysFreeString(names.at(i));
  }
  // The argument that a property is put with has no name of its own in this list.
  names_.resize(static_cast<std::size_t>(function_->cParams) + 1, L"vData");
}

FunctionReader::~FunctionReader() {
  info_->ReleaseFuncDesc(function_);
}

std::wstring FunctionReader::HelpText() const {
  return HelpTextOf(info_.Get(), function_->memid);
}

bool FunctionReader::IsInherited() const {
  return function_->memid >= kInherited;
}

std::wstring FunctionReader::NameOf(HREFTYPE reference) const {
  ComPtr<ITypeInfo> referred;
  if (FAILED(info_->GetRefTypeInfo(reference, &referred))) return L"?";
  Text name;
  referred->GetDocumentation(MEMBERID_NIL, name.out(), nullptr, nullptr, nullptr);
  return name.str();
}

std::wstring FunctionReader::TypeName(const TYPEDESC& type) const {
  switch (type.vt) {
    case VT_BSTR:
      return L"string";
    case VT_BOOL:
      return L"boolean";
    case VT_I2:
      return L"integer16";
    case VT_I4:
      return L"integer32";
    case VT_R8:
      return L"double";
    case VT_VARIANT:
      return L"any";
    case VT_DISPATCH:
      return L"object";
    case VT_UNKNOWN:
      return L"unknown";
    case VT_VOID:
    case VT_HRESULT:
      return L"";
    case VT_USERDEFINED:
      return NameOf(type.hreftype);
    case VT_PTR: {
      const std::wstring pointed = TypeName(*type.lptdesc);
      // A pointer to an interface is the object itself, not a reference to a variable.
      return pointed.starts_with(L"_") ? pointed : L"&" + pointed;
    }
    default:
      return L"type " + std::to_wstring(type.vt);
  }
}

std::wstring FunctionReader::ArgumentType(std::size_t index) const {
  const ELEMDESC& argument = function_->lprgelemdescParam[index];
  const bool has_default = (argument.paramdesc.wParamFlags & PARAMFLAG_FHASDEFAULT) != 0;
  return TypeName(argument.tdesc) +
         (has_default ? DefaultOf(argument.paramdesc.pparamdescex->varDefaultValue) : std::wstring());
}

std::wstring FunctionReader::Declaration() const {
  const wchar_t* const kind = function_->invkind == INVOKE_PROPERTYGET   ? L" get "
                              : function_->invkind == INVOKE_PROPERTYPUT ? L" put "
                                                                         : L" method ";
  std::wstring arguments;
  for (int i = 0; i < function_->cParams; ++i) {
    const auto index = static_cast<std::size_t>(i);
    arguments += (i > 0 ? L"," : L"") + ArgumentName(index) + L" " + ArgumentType(index);
  }
  const std::wstring result = TypeName(function_->elemdescFunc.tdesc);
  return std::to_wstring(function_->memid) + kind + Name() + L"(" + arguments + L")" +
         (result.empty() ? L"" : L" " + result);
}

TypeReader::TypeReader(ComPtr<ITypeInfo> info) : info_(std::move(info)) {
  EXPECT_EQ(info_->GetTypeAttr(&attributes_), S_OK);
}

TypeReader::~TypeReader() {
  if (attributes_ != nullptr) info_->ReleaseTypeAttr(attributes_);
}

TypeReader TypeReader::OfName(ITypeLib* library, const std::wstring& name, TYPEKIND kind) {
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    TYPEKIND found = TKIND_MAX;
    library->GetTypeInfoType(i, &found);
    Text found_name;
    library->GetDocumentation(static_cast<INT>(i), found_name.out(), nullptr, nullptr, nullptr);
    if (found != kind || found_name.str() != name) continue;
    ComPtr<ITypeInfo> info;
    library->GetTypeInfo(i, &info);
    return TypeReader(info);
  }
  ADD_FAILURE() << "no type " << testing::PrintToString(name);
  ComPtr<ITypeInfo> first;
  library->GetTypeInfo(0, &first);
  return TypeReader(first);
}

std::wstring TypeReader::HelpText() const {
  return HelpTextOf(info_.Get(), MEMBERID_NIL);
}

TypeReader::Implemented TypeReader::ImplementedType(UINT index) const {
  Implemented implemented{};
  HREFTYPE reference = 0;
  ComPtr<ITypeInfo> referred;
  EXPECT_EQ(info_->GetRefTypeOfImplType(index, &reference), S_OK);
  EXPECT_EQ(info_->GetRefTypeInfo(reference, &referred), S_OK);
  EXPECT_EQ(info_->GetImplTypeFlags(index, &implemented.flags), S_OK);
  const TypeReader type(referred);
  implemented.guid = type->guid;
  return implemented;
}

TypeReader TypeReader::VtableHalf() const {
  HREFTYPE reference = 0;
  ComPtr<ITypeInfo> half;
  EXPECT_EQ(info_->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), S_OK);
  EXPECT_EQ(info_->GetRefTypeInfo(reference, &half), S_OK);
  return TypeReader(half);
}

std::vector<std::pair<std::wstring, long>> TypeReader::Constants() const {
  std::vector<std::pair<std::wstring, long>> constants;
  for (UINT i = 0; i < attributes_->cVars; ++i) {
    VARDESC* variable = nullptr;
    if (FAILED(info_->GetVarDesc(i, &variable))) continue;
    Text name;
    UINT count = 0;
    info_->GetNames(variable->memid, name.out(), 1, &count);
    constants.emplace_back(name.str(), V_I4(variable->lpvarValue));
    info_->ReleaseVarDesc(variable);
  }
  return constants;
}

std::vector<std::wstring> TypeReader::DeclaredMembers() const {
  std::vector<std::wstring> declared;
  for (UINT i = 0; i < attributes_->cFuncs; ++i) {
    const FunctionReader function = Function(i);
    if (!function.IsInherited()) declared.push_back(function.Declaration());
  }
  return declared;
}

}  // namespace kesp::clients
