// Opening a topic of a help file in Windows' help viewer.
#pragma once

#include <cstdint>
#include <string>

namespace kesp {

// Shows the topic of that context number. False when the system has no help viewer call, or it refused. owner
// is the window (HWND) that asks; it may be null.
bool ShowHelpContext(void* owner, const std::wstring& help_file, std::int32_t help_context);

}  // namespace kesp
