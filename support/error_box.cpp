// Text and style of the box that tells the user of an unexpected failure.
#include "support/error_box.h"

namespace kesp {

std::wstring ErrorBoxText(const std::wstring& action, const Failure& failure) {
  std::wstring text = L"An error occurred while " + action + L".\r\nError: " + NumberAndDescription(failure);
  if (!failure.source().empty()) text += L"\r\n(" + failure.source() + L")";
  return text;
}

void ShowError(UserSurface& user, const std::wstring& action, const Failure& failure,
               const std::wstring& title, const std::wstring& help_file, std::int32_t help_context) {
  user.ShowMessageBox(BoxWithIcon(kStopIcon, ErrorBoxText(action, failure), title, help_file, help_context));
}

}  // namespace kesp
