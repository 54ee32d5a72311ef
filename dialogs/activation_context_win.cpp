// The module's manifest, made active.
#include "dialogs/activation_context_win.h"

#include "dialogs/common_controls_win.h"

namespace kesp {

HMODULE ThisModule() {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<LPCWSTR>(&ThisModule), &module);
  return module;
}

ActivationContext::ActivationContext() {
  ACTCTXW description{};
  description.cbSize = sizeof(description);
  description.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID | ACTCTX_FLAG_HMODULE_VALID;
  description.lpResourceName = MAKEINTRESOURCEW(2);
  description.hModule = ThisModule();
  context_ = CreateActCtxW(&description);
  active_ = context_ != INVALID_HANDLE_VALUE && ActivateActCtx(context_, &cookie_) != FALSE;
  INITCOMMONCONTROLSEX controls{};
  controls.dwSize = sizeof(controls);
  controls.dwICC = ICC_STANDARD_CLASSES | ICC_TAB_CLASSES | ICC_UPDOWN_CLASS | ICC_PROGRESS_CLASS;
  InitCommonControlsEx(&controls);
}

ActivationContext::~ActivationContext() {
  if (active_) DeactivateActCtx(0, cookie_);
  // Windows that were made in it keep it alive.
  if (context_ != INVALID_HANDLE_VALUE) ReleaseActCtx(context_);
}

}  // namespace kesp
