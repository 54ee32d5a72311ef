// The entries of a list with images, which the dialog draws itself.
#pragma once

#include <string>

#include "dialogs/common_controls_win.h"

namespace kesp {

// Makes the entries of an owner-drawn combo box as high as its font and its images ask for.
void FitItems(HWND combo, HIMAGELIST images);

// Draws an entry: the image of that number, none for -1, and the text behind it, marked when it is selected.
void DrawImageItem(const DRAWITEMSTRUCT& item, HIMAGELIST images, int image, const std::wstring& text);

}  // namespace kesp
