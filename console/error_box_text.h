// The text of a box with which the library tells a failure.
#pragma once

#include <string_view>

#include "console/library.h"

namespace kesp::console {

// "An error occurred while attempting to download from COM3.\r\nError: 8020 - Error reading comm
// device\r\n(commCOMControl)" as the failure that it tells. A text of another form is the description.
LibraryError ErrorOfBox(std::string_view text);

}  // namespace kesp::console
