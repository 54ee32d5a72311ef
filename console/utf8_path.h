// The path of a file whose name the user gave.
#pragma once

#include <filesystem>
#include <string>

namespace kesp::console {

// name: in UTF-8, on every system.
inline std::filesystem::path PathOf(const std::string& name) {
  return {std::u8string(name.begin(), name.end())};
}

}  // namespace kesp::console
