// What every object tells about its class.
#include "server/automation_object.h"

#include "server/error_bridge.h"

namespace kesp {

HRESULT DescribeClass(const ClassDescription& description, ITypeInfo** type_info) noexcept {
  if (type_info == nullptr) return E_POINTER;
  *type_info = nullptr;
  try {
    *type_info = ClassTypeInfo(description.clsid);
    return S_OK;
  } catch (...) {
    return ReportException(description.default_interface);
  }
}

HRESULT GuidOfClass(const ClassDescription& description, DWORD kind, GUID* guid) noexcept {
  if (guid == nullptr) return E_POINTER;
  *guid = GUID_NULL;
  if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID || description.events == nullptr) return E_INVALIDARG;
  *guid = *description.events;
  return S_OK;
}

}  // namespace kesp
