// Names for windows that no label stands before, by the annotations of Active Accessibility.
#include "dialogs/accessible_name_win.h"

// clang-format off
#include <objbase.h>
#include <oleacc.h>
// clang-format on
#include <wrl/client.h>

#include <array>

namespace kesp {

void SetAccessibleName(HWND window, HWND label) {
  Microsoft::WRL::ComPtr<IAccPropServices> services;
  const HRESULT made =
      CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER, IID_IAccPropServices,
                       reinterpret_cast<void**>(services.GetAddressOf()));
  if (FAILED(made)) return;
  std::array<wchar_t, 128> name{};
  GetWindowTextW(label, name.data(), static_cast<int>(name.size()));
  services->SetHwndPropStr(window, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF, PROPID_ACC_NAME,
                           name.data());
}

}  // namespace kesp
