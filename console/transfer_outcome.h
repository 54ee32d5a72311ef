// How a long transfer ended.
#pragma once

#include "console/library.h"

namespace kesp::console {

// bytes: what came. told: what the library has told in a box. is_complete: what Download returned. Throws the
// failure where nothing came.
Transfer TransferOf(std::string bytes, bool aborted, const std::optional<LibraryError>& told,
                    bool is_complete);

}  // namespace kesp::console
