// Reading classes and members out of the type library.
#include "tests/variants/type_members.h"

#include <stdexcept>

namespace kesp::variants {

namespace {

void Check(HRESULT result) {
  if (FAILED(result)) throw std::runtime_error("the type library cannot be read");
}

std::wstring NameOf(ITypeInfo* info, MEMBERID member) {
  clients::Text name;
  Check(info->GetDocumentation(member, name.out(), nullptr, nullptr, nullptr));
  return name.str();
}

// Attributes that are given back.
class Attributes {
 public:
  explicit Attributes(ITypeInfo* info) : info_(info) { Check(info->GetTypeAttr(&attributes_)); }
  ~Attributes() { info_->ReleaseTypeAttr(attributes_); }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;
  const TYPEATTR* operator->() const { return attributes_; }

 private:
  ITypeInfo* info_;
  TYPEATTR* attributes_ = nullptr;
};

VARTYPE PlainType(ITypeInfo* info, const TYPEDESC& type) {
  if (type.vt != VT_USERDEFINED) return type.vt;
  ComPtr<ITypeInfo> named;
  Check(info->GetRefTypeInfo(type.hreftype, &named));
  return Attributes(named.Get())->typekind == TKIND_ENUM ? VT_I4 : VT_DISPATCH;
}

Parameter ReadParameter(ITypeInfo* info, const ELEMDESC& description, const std::wstring& name) {
  const USHORT flags = description.paramdesc.wParamFlags;
  Parameter parameter{.name = name, .is_optional = (flags & (PARAMFLAG_FOPT | PARAMFLAG_FHASDEFAULT)) != 0};
  if (description.tdesc.vt != VT_PTR) {
    parameter.type = PlainType(info, description.tdesc);
    return parameter;
  }
  parameter.type = PlainType(info, *description.tdesc.lptdesc);
  parameter.is_reference = parameter.type != VT_DISPATCH && parameter.type != VT_UNKNOWN;
  return parameter;
}

Member ReadMember(ITypeInfo* info, const FUNCDESC& function) {
  Member member{
      .name = NameOf(info, function.memid), .id = function.memid, .kind = function.invkind, .parameters = {}};
  std::vector<BSTR> names(static_cast<std::size_t>(function.cParams) + 1);
  UINT count = 0;
  Check(info->GetNames(function.memid, names.data(), static_cast<UINT>(names.size()), &count));
  for (SHORT i = 0; i < function.cParams; ++i) {
    // The value of a property has no name there.
    const BSTR name = names[static_cast<std::size_t>(i) + 1];
    member.parameters.push_back(ReadParameter(info, function.lprgelemdescParam[i], name ? name : L""));
  }
  for (BSTR name : names) SysFreeString(name);
  const TYPEDESC& result = function.elemdescFunc.tdesc;
  member.result = result.vt == VT_PTR ? PlainType(info, *result.lptdesc) : PlainType(info, result);
  return member;
}

std::vector<Member> ReadMembers(ITypeInfo* info) {
  std::vector<Member> members;
  const UINT count = Attributes(info)->cFuncs;
  for (UINT i = 0; i < count; ++i) {
    FUNCDESC* function = nullptr;
    Check(info->GetFuncDesc(i, &function));
    // Those of IUnknown and IDispatch are restricted, and so is the enumerator, which languages call all the
    // same.
    const bool is_own =
        (function->wFuncFlags & FUNCFLAG_FRESTRICTED) == 0 || function->memid == DISPID_NEWENUM;
    if (is_own) members.push_back(ReadMember(info, *function));
    info->ReleaseFuncDesc(function);
  }
  return members;
}

PublicClass ReadClass(ITypeInfo* class_info) {
  const Attributes attributes(class_info);
  PublicClass one{.name = NameOf(class_info, MEMBERID_NIL),
                  .clsid = attributes->guid,
                  .is_creatable = (attributes->wTypeFlags & TYPEFLAG_FCANCREATE) != 0,
                  .info = {},
                  .members = {}};
  for (UINT i = 0; i < attributes->cImplTypes; ++i) {
    INT flags = 0;
    Check(class_info->GetImplTypeFlags(i, &flags));
    if (flags != IMPLTYPEFLAG_FDEFAULT) continue;
    HREFTYPE reference = 0;
    Check(class_info->GetRefTypeOfImplType(i, &reference));
    Check(class_info->GetRefTypeInfo(reference, &one.info));
  }
  if (one.info == nullptr) throw std::runtime_error("a class without a default interface");
  one.default_interface = Attributes(one.info.Get())->guid;
  one.members = ReadMembers(one.info.Get());
  return one;
}

ComPtr<ITypeInfo> ClassInfoOf(IUnknown* object) {
  ComPtr<IProvideClassInfo> provider;
  ComPtr<ITypeInfo> info;
  if (object != nullptr && SUCCEEDED(object->QueryInterface(IID_PPV_ARGS(provider.GetAddressOf())))) {
    Check(provider->GetClassInfo(&info));
  }
  return info;
}

}  // namespace

std::vector<PublicClass> ReadPublicClasses() {
  CLSID clsid{};
  Check(CLSIDFromProgID(L"KespCommObj.CKespCommObj", &clsid));
  ComPtr<IUnknown> object;
  Check(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(object.GetAddressOf())));
  ComPtr<ITypeLib> library;
  UINT index = 0;
  Check(ClassInfoOf(object.Get())->GetContainingTypeLib(&library, &index));
  std::vector<PublicClass> classes;
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    TYPEKIND kind{};
    Check(library->GetTypeInfoType(i, &kind));
    if (kind != TKIND_COCLASS) continue;
    ComPtr<ITypeInfo> class_info;
    Check(library->GetTypeInfo(i, &class_info));
    classes.push_back(ReadClass(class_info.Get()));
  }
  return classes;
}

std::wstring ClassNameOf(IUnknown* object) {
  const ComPtr<ITypeInfo> info = ClassInfoOf(object);
  return info ? NameOf(info.Get(), MEMBERID_NIL) : std::wstring();
}

}  // namespace kesp::variants
