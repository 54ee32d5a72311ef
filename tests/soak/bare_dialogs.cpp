// Dialogs of templates, shown and destroyed.
#include "tests/soak/bare_dialogs.h"

#include <array>
#include <stdexcept>

#include "dialogs/dialog_ids.h"
#include "tests/soak/resources_win.h"

namespace kesp::soak {

namespace {

constexpr std::array kTcp = {DIALOG_TCP_SETTINGS, DIALOG_TCP_GENERAL_PAGE, DIALOG_TCP_EXTENDED_PAGE};
constexpr std::array kSerial = {DIALOG_COM_SETTINGS, DIALOG_COM_PORT_PAGE, DIALOG_SMART_SWITCH_PAGE,
                                DIALOG_COM_EXTENDED_PAGE};

INT_PTR CALLBACK LeaveToSystem(HWND, UINT, WPARAM, LPARAM) {
  return FALSE;
}

void WorkOffMessages() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) DispatchMessageW(&message);
}

}  // namespace

BareDialogs::BareDialogs() : library_(GetModuleHandleW(L"KespCommObj.dll")) {
  ACTCTXW description{};
  description.cbSize = sizeof description;
  description.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID | ACTCTX_FLAG_HMODULE_VALID;
  description.lpResourceName = MAKEINTRESOURCEW(2);
  description.hModule = library_;
  context_ = CreateActCtxW(&description);
  if (library_ == nullptr || context_ == INVALID_HANDLE_VALUE)
    throw std::runtime_error("the resources of the library are not there");
}

BareDialogs::~BareDialogs() {
  ReleaseActCtx(context_);
}

HWND BareDialogs::Make(int resource, HWND parent) const {
  HWND window = CreateDialogParamW(library_, MAKEINTRESOURCEW(resource), parent, &LeaveToSystem, 0);
  if (window == nullptr) throw std::runtime_error("a bare dialog cannot be made");
  ShowWindow(window, SW_SHOW);
  return window;
}

void BareDialogs::Open(long number) const {
  HWND dialog = nullptr;
  const auto make_all = [&](const auto& resources) {
    for (const int resource : resources) {
      HWND window = Make(resource, dialog);
      if (dialog == nullptr) dialog = window;
    }
  };
  ULONG_PTR cookie = 0;
  ActivateActCtx(context_, &cookie);
  if (number % 2 == 0) {
    make_all(kTcp);
  } else {
    make_all(kSerial);
  }
  DeactivateActCtx(0, cookie);
  RedrawWindow(dialog, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
  WorkOffMessages();
  DestroyWindow(dialog);
  WorkOffMessages();
}

Resources BareDialogs::LostBy(long dialogs) const {
  // What is made once, at the first dialogs, is not lost.
  constexpr long kFirst = 20;
  for (long number = 0; number < kFirst; ++number) Open(number);
  const Resources before = ReadResources();
  for (long number = 0; number < dialogs; ++number) Open(number);
  const Resources after = ReadResources();
  Resources lost;
  for (const auto value : {&Resources::system_blocks, &Resources::system_bytes, &Resources::private_bytes})
    lost.*value = after.*value - before.*value;
  return lost;
}

}  // namespace kesp::soak
