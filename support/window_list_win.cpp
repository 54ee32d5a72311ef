// Windows, collected from the system's callbacks.
#include "support/window_list_win.h"

#include <exception>
#include <utility>

namespace kesp {

namespace {

struct WindowList {
  std::vector<HWND> windows;
  std::exception_ptr failure;
};

// No exception may pass through the system: it is kept until the system has returned.
BOOL CALLBACK AddTo(HWND window, LPARAM second) {
  auto& list = *reinterpret_cast<WindowList*>(second);
  try {
    list.windows.push_back(window);
    return TRUE;
  } catch (...) {
    list.failure = std::current_exception();
    return FALSE;
  }
}

std::vector<HWND> Collected(WindowList& list) {
  if (list.failure != nullptr) std::rethrow_exception(list.failure);
  return std::move(list.windows);
}

}  // namespace

std::vector<HWND> WindowsOfThread() {
  WindowList list;
  EnumThreadWindows(GetCurrentThreadId(), &AddTo, reinterpret_cast<LPARAM>(&list));
  return Collected(list);
}

std::vector<HWND> DescendantsOf(HWND window) {
  WindowList list;
  EnumChildWindows(window, &AddTo, reinterpret_cast<LPARAM>(&list));
  return Collected(list);
}

}  // namespace kesp
