// Writes a file that is not there yet.
#pragma once

#include <string>
#include <string_view>

namespace kesp::console {

// Throws std::runtime_error when there is anything of this name (in UTF-8).
void RequireNewFile(const std::string& name);

// The whole file or none. Throws std::runtime_error when it cannot be written, or is there meanwhile.
void WriteNewFile(const std::string& name, std::string_view content);

}  // namespace kesp::console
