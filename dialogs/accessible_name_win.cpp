// Names for windows that no label stands before, by the annotations of Active Accessibility.
#include "dialogs/accessible_name_win.h"

// clang-format off
#include <objbase.h>
#include <oleacc.h>
// clang-format on
#include <wrl/client.h>

#include <array>

namespace kesp {

namespace {

constexpr auto kClient = static_cast<DWORD>(OBJID_CLIENT);

// Null where there are none.
Microsoft::WRL::ComPtr<IAccPropServices> Annotations() {
  Microsoft::WRL::ComPtr<IAccPropServices> services;
  CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER, IID_IAccPropServices,
                   reinterpret_cast<void**>(services.GetAddressOf()));
  return services;
}

}  // namespace

AccessibleName::AccessibleName(HWND window, HWND label) : window_(window) {
  std::array<wchar_t, 128> name{};
  GetWindowTextW(label, name.data(), static_cast<int>(name.size()));
  if (const auto services = Annotations()) {
    services->SetHwndPropStr(window_, kClient, CHILDID_SELF, PROPID_ACC_NAME, name.data());
  }
}

// The system keeps an annotation until it is told, also when the window has gone.
AccessibleName::~AccessibleName() {
  MSAAPROPID name = PROPID_ACC_NAME;
  if (const auto services = Annotations()) services->ClearHwndProps(window_, kClient, CHILDID_SELF, &name, 1);
}

}  // namespace kesp
