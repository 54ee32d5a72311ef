// Windows' common controls and themes, included in the order that their headers ask for.
#pragma once

#include <windows.h>
// clang-format off
#include <commctrl.h>
#include <uxtheme.h>
#include <vssym32.h>
// clang-format on
