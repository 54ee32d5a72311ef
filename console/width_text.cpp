// Words and commands for one width.
#include "console/width_text.h"

#include <algorithm>
#include <cctype>

namespace kesp::console {

std::string WidthText(int bits) {
  return std::to_string(bits) + "-bit";
}

std::string RegisterRemedy(const SystemFacts& system, int bits, Hive hive, const std::string& library) {
  std::string setup = "install the library with its setup program";
  if (library.empty()) return setup;
  const std::string folder = bits == 32 && system.windows_bits == 64 ? "SysWOW64" : "System32";
  const std::string command = system.windows_folder + folder + "\\regsvr32.exe ";
  const std::string file = "\"" + library + "\"";
  std::string for_this_user = command + "/n /i:user " + file;
  if (hive == Hive::kThisUser) return for_this_user;
  const bool is_of_user = std::any_of(system.user_folders.begin(), system.user_folders.end(),
                                      [&](const std::string& each) { return IsBelow(library, each); });
  return is_of_user ? setup + "; for this user alone: " + for_this_user
                    : "as administrator: " + command + file;
}

std::string FolderBeside(const std::string& folder, const std::string& name) {
  const auto end = folder.rfind('\\', folder.size() - 2);
  return folder.size() < 2 || end == std::string::npos ? "" : folder.substr(0, end + 1) + name + "\\";
}

bool IsBelow(const std::string& path, const std::string& folder) {
  return !folder.empty() && path.size() > folder.size() && path[folder.size()] == '\\' &&
         IsSamePath(path.substr(0, folder.size()), folder);
}

std::string Joined(const std::vector<std::string>& names, const std::string& between) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : between) + name;
  return text;
}

bool IsSamePath(const std::string& one, const std::string& other) {
  return std::equal(one.begin(), one.end(), other.begin(), other.end(), [](char left, char right) {
    return std::tolower(static_cast<unsigned char>(left)) == std::tolower(static_cast<unsigned char>(right));
  });
}

}  // namespace kesp::console
