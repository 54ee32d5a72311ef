// New GUIDs from the system.
#include "support/guid_source_win.h"

#include <objbase.h>
#include <windows.h>

#include <algorithm>

namespace kesp {

std::optional<GuidFields> GuidSourceWin::NewGuid() {
  GUID guid{};
  if (FAILED(CoCreateGuid(&guid))) return std::nullopt;
  GuidFields fields;
  fields.data1 = static_cast<std::uint32_t>(guid.Data1);
  fields.data2 = guid.Data2;
  fields.data3 = guid.Data3;
  std::copy(std::begin(guid.Data4), std::end(guid.Data4), fields.data4.begin());
  return fields;
}

}  // namespace kesp
