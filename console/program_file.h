// What stands in a program file (.exe or .dll) of Windows, read without loading it.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace kesp::console {

struct ProgramFile {
  int bits = 0;         // 64 (x64) or 32 (x86); 0: made for another processor
  std::string version;  // "1.0.0", or "1.0.0.7" where the last number is not 0; empty: none
  std::set<std::string> exports;
};

// bytes: the whole file. Nothing for a file that is no program, or is damaged.
std::optional<ProgramFile> ReadProgramFile(std::string_view bytes);

}  // namespace kesp::console
