// Words and commands for one width.
#include "console/width_text.h"

#include <algorithm>
#include <cctype>

namespace kesp::console {

std::string WidthText(int bits) {
  return std::to_string(bits) + "-bit";
}

std::string RegisterCommand(const SystemFacts& system, int bits, Hive hive, const std::string& library) {
  const std::string folder = bits == 32 && system.windows_bits == 64 ? "SysWOW64" : "System32";
  const std::string command = "%SystemRoot%\\" + folder + "\\regsvr32.exe ";
  const std::string file = "\"" + library + "\"";
  if (hive == Hive::kThisUser) return command + "/n /i:user " + file;
  return command + file + "   (as administrator)";
}

bool IsSamePath(const std::string& one, const std::string& other) {
  return std::equal(one.begin(), one.end(), other.begin(), other.end(), [](char left, char right) {
    return std::tolower(static_cast<unsigned char>(left)) == std::tolower(static_cast<unsigned char>(right));
  });
}

}  // namespace kesp::console
