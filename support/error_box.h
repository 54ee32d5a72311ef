// The one box that tells the user of an unexpected failure.
#pragma once

#include <cstdint>
#include <string>

#include "support/failure.h"
#include "support/user_surface.h"

namespace kesp {

inline constexpr wchar_t kErrorBoxTitle[] = L"Kesp Communications Error";

// "An error occurred while " + action + ".", a line break, "Error: " + number + " - " + description, and,
// when the source is not empty, a line break and the source in parentheses.
std::wstring ErrorBoxText(const std::wstring& action, const Failure& failure);

// Shows the failure in a modal box with the stop icon. action starts with "attempting to". With a help file
// the box also carries a Help button bound to the file and the context.
void ShowError(UserSurface& user, const std::wstring& action, const Failure& failure,
               const std::wstring& title = kErrorBoxTitle, const std::wstring& help_file = {},
               std::int32_t help_context = 0);

}  // namespace kesp
