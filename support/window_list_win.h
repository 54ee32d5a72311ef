// The windows that the system names one by one, as lists.
#pragma once

#include <windows.h>

#include <vector>

namespace kesp {

// The top-level windows of the calling thread, in their order on the screen. Throws std::bad_alloc when
// memory is out.
std::vector<HWND> WindowsOfThread();

// The child windows of a window, and theirs. Throws std::bad_alloc when memory is out.
std::vector<HWND> DescendantsOf(HWND window);

}  // namespace kesp
