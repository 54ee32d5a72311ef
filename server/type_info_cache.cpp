// Loads the type library and reads the calls of its interfaces.
#include "server/type_info_cache.h"

#include <wrl/client.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

#include "support/environment_win.h"
#include "support/failure.h"

namespace kesp {

namespace {

struct GuidLess {
  bool operator()(const GUID& a, const GUID& b) const {
    return std::lexicographical_compare(
        reinterpret_cast<const unsigned char*>(&a), reinterpret_cast<const unsigned char*>(&a + 1),
        reinterpret_cast<const unsigned char*>(&b), reinterpret_cast<const unsigned char*>(&b + 1));
  }
};

// Plain pointers, released by ReleaseTypeInfoCache and never by a destructor at process exit, when the
// automation library may be gone already.
struct Cache {
  std::mutex mutex;
  ITypeLib* library = nullptr;
  std::map<GUID, std::unique_ptr<InterfaceInfo>, GuidLess> interfaces;
};

void Check(HRESULT result) {
  if (FAILED(result))
    throw Failure(result, L"KespCommObj", L"The type library of KespCommObj cannot be read");
}

// In memory of its own, so that it can be had at the unloading, where nothing may be thrown.
Cache& TheCache() noexcept {
  alignas(Cache) static std::byte place[sizeof(Cache)];
  static auto* cache = new (place) Cache;
  return *cache;
}

// The description of one function, given back with it.
class FunctionDescription {
 public:
  FunctionDescription(ITypeInfo* type_info, UINT index) : type_info_(type_info) {
    Check(type_info->GetFuncDesc(index, &function_));
  }
  ~FunctionDescription() { type_info_->ReleaseFuncDesc(function_); }
  FunctionDescription(const FunctionDescription&) = delete;
  FunctionDescription& operator=(const FunctionDescription&) = delete;

  const FUNCDESC& operator*() const { return *function_; }

 private:
  ITypeInfo* type_info_;
  FUNCDESC* function_ = nullptr;
};

ITypeLib* Library(Cache& cache) {
  if (cache.library == nullptr) {
    Check(LoadTypeLibEx(SystemEnvironment().files.LibraryFile().c_str(), REGKIND_NONE, &cache.library));
  }
  return cache.library;
}

// The type that a pointer argument refers to, with enumerations as the numbers they are.
VARTYPE ReferredType(ITypeInfo* owner, const TYPEDESC& type) {
  if (type.vt != VT_USERDEFINED) return type.vt;
  ITypeInfo* referred = nullptr;
  TYPEATTR* attributes = nullptr;
  VARTYPE result = VT_DISPATCH;
  if (SUCCEEDED(owner->GetRefTypeInfo(type.hreftype, &referred))) {
    if (SUCCEEDED(referred->GetTypeAttr(&attributes))) {
      if (attributes->typekind == TKIND_ENUM) result = VT_I4;
      referred->ReleaseTypeAttr(attributes);
    }
    referred->Release();
  }
  return result;
}

MemberCall ReadCall(ITypeInfo* type_info, const FUNCDESC& function) {
  MemberCall call{.id = function.memid,
                  .kind = function.invkind,
                  .arguments = static_cast<UINT>(function.cParams),
                  .references = {},
                  .optional = {}};
  for (UINT i = 0; i < call.arguments; ++i) {
    const ELEMDESC& argument = function.lprgelemdescParam[i];
    if ((argument.paramdesc.wParamFlags & (PARAMFLAG_FOPT | PARAMFLAG_FHASDEFAULT)) != 0) {
      call.optional.push_back(i);
    }
    const TYPEDESC& type = argument.tdesc;
    if (type.vt != VT_PTR) continue;
    const VARTYPE referred = ReferredType(type_info, *type.lptdesc);
    // A pointer to an interface is an object passed by value.
    if (referred == VT_DISPATCH || referred == VT_UNKNOWN) continue;
    call.references.push_back({.position = i, .type = referred});
  }
  return call;
}

std::vector<MemberCall> ReadCalls(ITypeInfo* type_info) {
  TYPEATTR* attributes = nullptr;
  Check(type_info->GetTypeAttr(&attributes));
  const UINT count = attributes->cFuncs;
  type_info->ReleaseTypeAttr(attributes);
  std::vector<MemberCall> calls;
  for (UINT i = 0; i < count; ++i) {
    const FunctionDescription description(type_info, i);
    const FUNCDESC& function = *description;
    // The members of IDispatch and IUnknown are listed, too.
    if ((function.wFuncFlags & FUNCFLAG_FRESTRICTED) == 0 || function.memid == DISPID_NEWENUM) {
      calls.push_back(ReadCall(type_info, function));
    }
  }
  return calls;
}

}  // namespace

InterfaceInfo::InterfaceInfo(ITypeInfo* type_info, std::vector<MemberCall> calls)
    : type_info_(type_info), calls_(std::move(calls)) {}

const MemberCall* InterfaceInfo::Find(DISPID id, WORD flags) const {
  // INVOKEKIND has the values of the DISPATCH_ flags.
  const auto found = std::find_if(calls_.begin(), calls_.end(), [&](const MemberCall& call) {
    return call.id == id && (call.kind & flags) != 0;
  });
  return found == calls_.end() ? nullptr : &*found;
}

bool InterfaceInfo::HasMember(DISPID id) const {
  return std::any_of(calls_.begin(), calls_.end(), [&](const MemberCall& call) { return call.id == id; });
}

const InterfaceInfo& InterfaceInfoOf(REFIID iid) {
  Cache& cache = TheCache();
  const std::lock_guard lock(cache.mutex);
  std::unique_ptr<InterfaceInfo>& entry = cache.interfaces[iid];
  if (!entry) {
    Microsoft::WRL::ComPtr<ITypeInfo> type_info;
    Check(Library(cache)->GetTypeInfoOfGuid(iid, &type_info));
    entry = std::make_unique<InterfaceInfo>(type_info.Get(), ReadCalls(type_info.Get()));
    type_info.Detach();
  }
  return *entry;
}

ITypeInfo* ClassTypeInfo(REFCLSID clsid) {
  Cache& cache = TheCache();
  const std::lock_guard lock(cache.mutex);
  ITypeInfo* type_info = nullptr;
  Check(Library(cache)->GetTypeInfoOfGuid(clsid, &type_info));
  return type_info;
}

void ReleaseTypeInfoCache() noexcept {
  Cache& cache = TheCache();
  for (auto& [iid, info] : cache.interfaces) {
    if (info) info->type_info()->Release();
  }
  cache.interfaces.clear();
  if (cache.library != nullptr) cache.library->Release();
  cache.library = nullptr;
  cache.~Cache();
}

}  // namespace kesp
