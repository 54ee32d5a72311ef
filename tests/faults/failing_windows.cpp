// How the system's functions for windows and drawing fail.
#include "dialogs/common_controls_win.h"
#include "tests/faults/functions.h"
#include "tests/faults/hook.h"

namespace kesp::faults {

namespace {

const std::vector<Way> kNoMemory = {{0, ERROR_NOT_ENOUGH_MEMORY}};
const std::vector<Way> kNoWindow = {{0, ERROR_INVALID_WINDOW_HANDLE}};
const std::vector<Way> kRefused = {{0, ERROR_INVALID_HANDLE}};

HookState box_state;

// A box that tells of an error is answered at once; nobody sits at the screen.
int WINAPI AnswerBox(const MSGBOXPARAMSW* box) {
  const Way* way = TheInjector().Ask(box_state.number);
  if (way != nullptr) SetLastError(way->error);
  if (way != nullptr) return 0;
  const DWORD buttons = box->dwStyle & MB_TYPEMASK;
  return buttons == MB_YESNO || buttons == MB_YESNOCANCEL ? IDYES : IDOK;
}

void AddMaking(std::vector<Import>& functions) {
  functions.push_back(Fails<&CreateWindowExW>(
      "CreateWindowExW", {{0, ERROR_NOT_ENOUGH_MEMORY}, {0, ERROR_NO_MORE_USER_HANDLES}}));
  functions.push_back(
      Fails<&CreateDialogIndirectParamW>("CreateDialogIndirectParamW", {{0, ERROR_NOT_ENOUGH_MEMORY}}));
  functions.push_back(
      Fails<&RegisterClassW>("RegisterClassW", {{0, ERROR_NOT_ENOUGH_MEMORY}}).Makes(Resource::kWindowClass));
  functions.push_back(Fails<&UnregisterClassW>("UnregisterClassW", {{0, ERROR_CLASS_HAS_WINDOWS}})
                          .TakesBack(Resource::kWindowClass));
  functions.push_back(Fails<&LoadCursorW>("LoadCursorW", {{0, ERROR_RESOURCE_NAME_NOT_FOUND}}));
  functions.push_back(
      Fails<&LoadImageW>("LoadImageW", {{0, ERROR_RESOURCE_NAME_NOT_FOUND}}).Makes(Resource::kIcon));
  functions.push_back(Fails<&DestroyIcon>("DestroyIcon", kRefused).TakesBack(Resource::kIcon));
  functions.emplace_back("MessageBoxIndirectW", reinterpret_cast<void*>(&AnswerBox), box_state, kNoMemory);
  functions.push_back(Fails<&InitCommonControlsEx>("InitCommonControlsEx", kNoMemory));
  functions.push_back(Fails<&ImageList_Create>("ImageList_Create", kNoMemory).Makes(Resource::kImageList));
  functions.push_back(
      Fails<&ImageList_Destroy>("ImageList_Destroy", kRefused).TakesBack(Resource::kImageList));
  functions.push_back(Fails<&ImageList_Draw>("ImageList_Draw", kNoMemory));
  functions.push_back(Fails<&ImageList_GetIconSize>("ImageList_GetIconSize", kRefused));
  functions.push_back(
      Fails<&ImageList_ReplaceIcon>("ImageList_ReplaceIcon", {{-1, ERROR_NOT_ENOUGH_MEMORY}}));
  functions.push_back(Fails<&OpenThemeData>("OpenThemeData", kNoMemory).Makes(Resource::kTheme));
  functions.push_back(
      Fails<&CloseThemeData>("CloseThemeData", {{E_HANDLE, 0}}).TakesBack(Resource::kTheme).ZeroIsSuccess());
  functions.push_back(
      Fails<&DrawThemeBackground>("DrawThemeBackground", {{E_HANDLE, 0}, {E_OUTOFMEMORY, 0}}));
}

void AddAsking(std::vector<Import>& functions) {
  functions.push_back(Fails<&GetClientRect>("GetClientRect", kNoWindow));
  functions.push_back(Fails<&GetWindowRect>("GetWindowRect", kNoWindow));
  functions.push_back(Fails<&GetWindowTextW>("GetWindowTextW", kNoWindow));
  functions.push_back(Fails<&GetWindowTextLengthW>("GetWindowTextLengthW", kNoWindow));
  functions.push_back(Fails<&GetDlgItem>("GetDlgItem", {{0, ERROR_CONTROL_ID_NOT_FOUND}}));
  functions.push_back(Fails<&GetParent>("GetParent", kNoWindow));
  functions.push_back(Fails<&GetWindow>("GetWindow", kNoWindow));
  functions.push_back(Fails<&GetNextDlgTabItem>("GetNextDlgTabItem", kNoWindow));
  functions.push_back(Fails<&GetMonitorInfoW>("GetMonitorInfoW", kRefused));
  functions.push_back(Fails<&GetCursorPos>("GetCursorPos", {{0, ERROR_ACCESS_DENIED}}));
  functions.push_back(Fails<&GetActiveWindow>("GetActiveWindow", {{0, 0}}));
  functions.push_back(Fails<&GetFocus>("GetFocus", {{0, 0}}));
  functions.push_back(Fails<&SystemParametersInfoW>("SystemParametersInfoW", {{0, ERROR_INVALID_PARAMETER}}));
  functions.push_back(Fails<&EnumThreadWindows>("EnumThreadWindows", kNoMemory));
  functions.push_back(Fails<&EnumChildWindows>("EnumChildWindows", kNoMemory));
}

void AddChanging(std::vector<Import>& functions) {
  functions.push_back(Fails<&DestroyWindow>("DestroyWindow", {{0, ERROR_ACCESS_DENIED}}).WorksAnyway());
  // 32-bit libraries import them by the other name.
  functions.push_back(Fails<&SetWindowLongPtrW>("SetWindowLongPtrW", kNoWindow));
  functions.push_back(Fails<&SetWindowLongPtrW>("SetWindowLongW", kNoWindow));
  functions.push_back(Fails<&SetWindowTextW>("SetWindowTextW", kNoMemory));
  functions.push_back(Fails<&SetWindowPos>("SetWindowPos", kNoWindow));
  functions.push_back(Fails<&RedrawWindow>("RedrawWindow", kNoWindow));
  functions.push_back(Fails<&SetFocus>("SetFocus", {{0, ERROR_INVALID_PARAMETER}}));
  functions.push_back(Fails<&SetForegroundWindow>("SetForegroundWindow", {{0, 0}}));
  functions.push_back(Fails<&MapWindowPoints>("MapWindowPoints", kNoWindow));
  functions.push_back(Fails<&PostMessageW>("PostMessageW", {{0, ERROR_NOT_ENOUGH_QUOTA}}));
  functions.push_back(Fails<&PostThreadMessageW>("PostThreadMessageW", {{0, ERROR_NOT_ENOUGH_QUOTA}}));
  functions.push_back(Fails<&GetMessageW>("GetMessageW", {{-1, ERROR_INVALID_WINDOW_HANDLE}}));
  functions.push_back(Fails<&ImmAssociateContext>("ImmAssociateContext", {{0, 0}}));
}

void AddDrawing(std::vector<Import>& functions) {
  functions.push_back(Fails<&GetDC>("GetDC", kNoMemory).Makes(Resource::kWindowDc));
  functions.push_back(Fails<&ReleaseDC>("ReleaseDC", {{0, 0}}).TakesBack(Resource::kWindowDc));
  functions.push_back(Fails<&CreateCompatibleDC>("CreateCompatibleDC", kNoMemory).Makes(Resource::kDc));
  functions.push_back(Fails<&DeleteDC>("DeleteDC", kRefused).TakesBack(Resource::kDc));
  functions.push_back(
      Fails<&CreateCompatibleBitmap>("CreateCompatibleBitmap", kNoMemory).Makes(Resource::kGdiObject));
  functions.push_back(
      Fails<&CreatePatternBrush>("CreatePatternBrush", kNoMemory).Makes(Resource::kGdiObject));
  functions.push_back(Fails<&DeleteObject>("DeleteObject", kRefused).TakesBack(Resource::kGdiObject));
  functions.push_back(Fails<&SaveDC>("SaveDC", kNoMemory).Makes(Resource::kSavedDc));
  functions.push_back(Fails<&RestoreDC>("RestoreDC", kRefused).TakesBack(Resource::kSavedDc));
  functions.push_back(Fails<&SelectObject>("SelectObject", kRefused));
  functions.push_back(Fails<&GetTextExtentPoint32W>("GetTextExtentPoint32W", kNoMemory));
  functions.push_back(Fails<&GetTextMetricsW>("GetTextMetricsW", kRefused));
  functions.push_back(Fails<&GetViewportOrgEx>("GetViewportOrgEx", kRefused));
  functions.push_back(Fails<&SetBrushOrgEx>("SetBrushOrgEx", kRefused));
  functions.push_back(Fails<&SetBkMode>("SetBkMode", kRefused));
  functions.push_back(Fails<&DrawFocusRect>("DrawFocusRect", kRefused));
  functions.push_back(Fails<&DrawTextW>("DrawTextW", kNoMemory));
  functions.push_back(Fails<&FillRect>("FillRect", kRefused));
}

}  // namespace

void AddWindowFunctions(std::vector<Import>& functions) {
  AddMaking(functions);
  AddAsking(functions);
  AddChanging(functions);
  AddDrawing(functions);
}

}  // namespace kesp::faults
