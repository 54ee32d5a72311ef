// Reading type information.
#include "tests/clients/type_reader.h"

#include <array>
#include <cwctype>
#include <stdexcept>
#include <utility>

namespace kesp::clients {

namespace {

// Identifiers from here on are IUnknown's and IDispatch's own.
constexpr MEMBERID kInherited = 0x60000000;

void Check(HRESULT result) {
  if (FAILED(result)) throw std::runtime_error("type information cannot be read");
}

// Words for those flags that are set.
template <class Words>
std::wstring WordsOf(unsigned flags, const Words& words) {
  std::wstring text;
  for (const auto& [flag, word] : words) {
    if ((flags & flag) != 0) text += L" " + std::wstring(word);
  }
  return text;
}

constexpr std::pair<unsigned, const wchar_t*> kTypeWords[] = {{TYPEFLAG_FCANCREATE, L"creatable"},
                                                              {TYPEFLAG_FAPPOBJECT, L"appobject"},
                                                              {TYPEFLAG_FDUAL, L"dual"},
                                                              {TYPEFLAG_FOLEAUTOMATION, L"oleautomation"},
                                                              {TYPEFLAG_FNONEXTENSIBLE, L"nonextensible"},
                                                              {TYPEFLAG_FHIDDEN, L"hidden"},
                                                              {TYPEFLAG_FRESTRICTED, L"restricted"}};
constexpr std::pair<unsigned, const wchar_t*> kFunctionWords[] = {{FUNCFLAG_FHIDDEN, L"hidden"},
                                                                  {FUNCFLAG_FRESTRICTED, L"restricted"}};
constexpr std::pair<unsigned, const wchar_t*> kArgumentWords[] = {
    {PARAMFLAG_FIN, L"in"}, {PARAMFLAG_FOUT, L"out"}, {PARAMFLAG_FOPT, L"optional"}};
constexpr std::pair<unsigned, const wchar_t*> kImplementedWords[] = {
    {IMPLTYPEFLAG_FDEFAULT, L"default"},
    {IMPLTYPEFLAG_FSOURCE, L"source"},
    {IMPLTYPEFLAG_FRESTRICTED, L"restricted"}};

std::wstring KindOf(const TYPEATTR& type) {
  switch (type.typekind) {
    case TKIND_COCLASS:
      return L"class";
    case TKIND_ENUM:
      return L"enumeration";
    case TKIND_ALIAS:
      return L"alias";
    case TKIND_DISPATCH:
      return (type.wTypeFlags & TYPEFLAG_FDUAL) != 0 ? L"interface" : L"events";
    default:
      return L"kind " + std::to_wstring(type.typekind);
  }
}

std::wstring UseOf(const FUNCDESC& function) {
  switch (function.invkind) {
    case INVOKE_FUNC:
      return L"";
    case INVOKE_PROPERTYGET:
      return L"get ";
    case INVOKE_PROPERTYPUT:
      return L"put ";
    default:
      return L"set ";
  }
}

std::wstring DefaultOf(const VARIANT& value) {
  if (V_VT(&value) == VT_BSTR) return L"=\"" + Value(value.bstrVal ? value.bstrVal : L"").text() + L"\"";
  Value text;
  Check(VariantChangeType(text.get(), const_cast<VARIANT*>(&value), 0, VT_BSTR));
  return L"=" + text.text();
}

}  // namespace

std::wstring TextOf(const GUID& guid) {
  std::array<wchar_t, 39> text{};
  StringFromGUID2(guid, text.data(), static_cast<int>(text.size()));
  for (wchar_t& letter : text) letter = static_cast<wchar_t>(std::towlower(letter));
  return text.data();
}

TypeReader::TypeReader(ComPtr<ITypeInfo> info) : info_(std::move(info)) {
  Check(info_->GetTypeAttr(&attributes_));
}

TypeReader::~TypeReader() {
  info_->ReleaseTypeAttr(attributes_);
}

std::vector<std::wstring> TypeReader::Lines() const {
  std::vector<std::wstring> lines = {Heading()};
  for (UINT i = 0; i < attributes_->cVars; ++i) lines.push_back(Constant(i));
  for (UINT i = 0; i < attributes_->cFuncs; ++i) {
    if (const std::wstring line = Function(i); !line.empty()) lines.push_back(line);
  }
  return lines;
}

std::wstring TypeReader::NameWithHelp(MEMBERID member) const {
  Text name;
  Text help;
  Check(info_->GetDocumentation(member, name.out(), help.out(), nullptr, nullptr));
  // The second name of an enumeration has none.
  const bool is_alias = attributes_->typekind == TKIND_ALIAS;
  if (!is_alias && (help.str().empty() || help.str().size() > 255)) {
    const std::wstring wide = name.str();
    throw std::runtime_error("no help text, or too long a one: " + std::string(wide.begin(), wide.end()));
  }
  return name.str();
}

std::wstring TypeReader::Heading() const {
  std::wstring heading = KindOf(*attributes_) + L" " + NameWithHelp(MEMBERID_NIL);
  if (!IsEqualGUID(attributes_->guid, GUID_NULL)) heading += L" " + TextOf(attributes_->guid);
  heading += WordsOf(Flags(), kTypeWords);
  if (attributes_->typekind == TKIND_ALIAS) heading += L" of " + TypeName(attributes_->tdescAlias);
  return attributes_->typekind == TKIND_COCLASS ? heading + ImplementedTypes() : heading;
}

// Of a dual interface, which is described as a dispatch interface, those of the other description as well.
unsigned TypeReader::Flags() const {
  return attributes_->wTypeFlags | (IsDual() ? TypeReader(VtableHalf())->wTypeFlags : 0U);
}

ComPtr<ITypeInfo> TypeReader::VtableHalf() const {
  HREFTYPE reference = 0;
  ComPtr<ITypeInfo> half;
  Check(info_->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference));
  Check(info_->GetRefTypeInfo(reference, &half));
  return half;
}

std::wstring TypeReader::ImplementedTypes() const {
  std::wstring text;
  for (UINT i = 0; i < attributes_->cImplTypes; ++i) {
    HREFTYPE reference = 0;
    INT flags = 0;
    Check(info_->GetRefTypeOfImplType(i, &reference));
    Check(info_->GetImplTypeFlags(i, &flags));
    text += L"," + WordsOf(static_cast<unsigned>(flags), kImplementedWords) + L" " + NameOf(reference);
  }
  return text;
}

std::wstring TypeReader::Constant(UINT index) const {
  VARDESC* variable = nullptr;
  Check(info_->GetVarDesc(index, &variable));
  Text name;
  UINT count = 0;
  info_->GetNames(variable->memid, name.out(), 1, &count);
  const std::wstring line = L"  " + name.str() + L" = " + std::to_wstring(V_I4(variable->lpvarValue));
  info_->ReleaseVarDesc(variable);
  return line;
}

std::wstring TypeReader::Function(UINT index) const {
  FUNCDESC* function = nullptr;
  Check(info_->GetFuncDesc(index, &function));
  std::wstring line;
  if (function->memid < kInherited) {
    const std::wstring name = NameWithHelp(function->memid);
    const std::wstring result = TypeName(function->elemdescFunc.tdesc);
    line = L"  " + Place(*function) + L"id " + std::to_wstring(function->memid) + L"  " + UseOf(*function) +
           name + L"(" + Arguments(*function) + L")" + (result.empty() ? L"" : L" " + result) +
           WordsOf(function->wFuncFlags, kFunctionWords);
  }
  info_->ReleaseFuncDesc(function);
  return line;
}

// The place is that of the vtable half, which lists the same functions.
std::wstring TypeReader::Place(const FUNCDESC& function) const {
  if (!IsDual()) return L"";
  const ComPtr<ITypeInfo> half = VtableHalf();
  const TypeReader vtable(half);
  for (UINT i = 0; i < vtable->cFuncs; ++i) {
    FUNCDESC* found = nullptr;
    Check(half->GetFuncDesc(i, &found));
    const bool is_it = found->memid == function.memid && found->invkind == function.invkind;
    const auto place = static_cast<std::size_t>(found->oVft) / sizeof(void*);
    half->ReleaseFuncDesc(found);
    if (is_it) return L"vtable " + std::to_wstring(place) + L"  ";
  }
  throw std::runtime_error("a member has no place in the vtable");
}

std::wstring TypeReader::Arguments(const FUNCDESC& function) const {
  std::array<BSTR, 16> names{};
  UINT count = 0;
  Check(info_->GetNames(function.memid, names.data(), static_cast<UINT>(names.size()), &count));
  std::wstring arguments;
  for (UINT i = 0; i < static_cast<UINT>(function.cParams); ++i) {
    // The value that a property is put with has no name in this list.
    const std::wstring name = i + 1 < count ? names.at(i + 1) : L"value";
    arguments += (i > 0 ? L", " : L"") + name + L" " + ArgumentType(function.lprgelemdescParam[i]);
  }
  for (BSTR name : names) SysFreeString(name);
  return arguments;
}

std::wstring TypeReader::ArgumentType(const ELEMDESC& argument) const {
  const PARAMDESC& details = argument.paramdesc;
  const bool has_default = (details.wParamFlags & PARAMFLAG_FHASDEFAULT) != 0;
  // Of a value, that it goes in is understood.
  const unsigned directions = argument.tdesc.vt == VT_PTR ? PARAMFLAG_FIN | PARAMFLAG_FOUT : PARAMFLAG_FOUT;
  const unsigned shown = directions | (has_default ? 0U : PARAMFLAG_FOPT);
  const std::wstring words = WordsOf(details.wParamFlags & shown, kArgumentWords);
  return (words.empty() ? L"" : words.substr(1) + L" ") + TypeName(argument.tdesc) +
         (has_default ? DefaultOf(details.pparamdescex->varDefaultValue) : std::wstring());
}

std::wstring TypeReader::TypeName(const TYPEDESC& type) const {
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

std::wstring TypeReader::NameOf(HREFTYPE reference) const {
  ComPtr<ITypeInfo> referred;
  Check(info_->GetRefTypeInfo(reference, &referred));
  Text name;
  Check(referred->GetDocumentation(MEMBERID_NIL, name.out(), nullptr, nullptr, nullptr));
  return name.str();
}

}  // namespace kesp::clients
