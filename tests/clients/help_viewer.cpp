// The viewer's window, and what is sent to it.
#include "tests/clients/help_viewer.h"

#include <gtest/gtest.h>

namespace kesp::clients {

namespace {

constexpr wchar_t kClass[] = L"MS_WINHELP";

}  // namespace

HelpViewer::HelpViewer() {
  WNDCLASSW windows{};
  windows.lpfnWndProc = &Procedure;
  windows.hInstance = GetModuleHandleW(nullptr);
  windows.lpszClassName = kClass;
  RegisterClassW(&windows);
  EXPECT_EQ(FindWindowW(kClass, nullptr), nullptr) << "a viewer is open already";
  window_ =
      CreateWindowExW(0, kClass, L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, windows.hInstance, nullptr);
  EXPECT_NE(window_, nullptr);
  SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

HelpViewer::~HelpViewer() {
  DestroyWindow(window_);
  UnregisterClassW(kClass, GetModuleHandleW(nullptr));
}

bool HelpViewer::Mentions(long number) const {
  return last_.find(std::string(reinterpret_cast<const char*>(&number), sizeof(number))) != std::string::npos;
}

LRESULT CALLBACK HelpViewer::Procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
  auto* viewer = reinterpret_cast<HelpViewer*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (message != WM_COPYDATA || viewer == nullptr) return DefWindowProcW(window, message, first, second);
  const auto& request = *reinterpret_cast<const COPYDATASTRUCT*>(second);
  ++viewer->requests_;
  viewer->last_.assign(static_cast<const char*>(request.lpData), request.cbData);
  return TRUE;
}

}  // namespace kesp::clients
