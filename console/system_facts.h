// Windows, the processor, and what else is installed.
#pragma once

#include <string>
#include <vector>

namespace kesp::console {

struct SystemFacts {
  std::string windows;       // "Windows 11 Pro 24H2, build 26100"
  std::string processor;     // "AMD Ryzen 5 5600G"
  std::string architecture;  // "x64", "x86", "ARM64"
  int windows_bits = 64;     // 32: no 64-bit programs run here
  bool both_widths = true;   // programs of both widths run here
  int program_bits = 64;     // of this kesp.exe
  bool elevated = false;     // this program runs as administrator
  std::string windows_folder = "C:\\Windows\\";
  std::vector<std::string> user_folders;  // that of this user, by its long and its short name
};

struct Office {
  std::string version;  // "16.0"
  int bits = 0;
};

// product: as the registry has it, where Windows 11 is called 10. release: "24H2", or empty.
std::string WindowsName(std::string product, const std::string& release, int build);

}  // namespace kesp::console
