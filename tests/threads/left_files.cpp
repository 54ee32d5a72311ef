// Reading logs and settings files strictly.
#include "tests/threads/left_files.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>

namespace kesp::threads {

std::string ContentOf(const std::wstring& path) {
  std::ifstream file(std::filesystem::path(path), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

LogLines LinesOf(const std::string& content) {
  // Date and time in whatever form, and the tick count. A message has no such head in it, but may have single
  // control characters of what an instrument sent.
  static const std::regex head("[^\t]*[0-9][^\t]*\t-?[0-9]+\t");
  LogLines lines;
  std::size_t begin = 0;
  for (std::size_t end = 0; (end = content.find("\r\n", begin)) != std::string::npos; begin = end + 2) {
    const std::string line = content.substr(begin, end - begin);
    const std::size_t tab = line.find('\t');
    const std::size_t message = tab == std::string::npos ? 0 : line.find('\t', tab + 1) + 1;
    const bool is_whole = message > 0 && std::regex_match(line.substr(0, message), head) &&
                          line.find('\t', message) == std::string::npos && line.size() > message;
    if (is_whole) {
      lines.messages.push_back(line.substr(message));
    } else {
      lines.torn.push_back(line);
    }
  }
  if (begin != content.size()) lines.torn.push_back(content.substr(begin));
  return lines;
}

std::string FaultOfSettings(const std::string& content, int ports,
                            const std::vector<std::string>& addresses) {
  static const std::regex section("\\[COM([0-9]+)\\]");
  static const std::regex entry("InstrAddr=(.*)");
  std::set<int> seen;
  bool awaits_entry = false;
  std::size_t begin = 0;
  for (std::size_t end = 0; (end = content.find("\r\n", begin)) != std::string::npos; begin = end + 2) {
    const std::string line = content.substr(begin, end - begin);
    std::smatch match;
    if (line.empty()) continue;
    if (!awaits_entry && std::regex_match(line, match, section)) {
      if (!seen.insert(std::stoi(match[1])).second) return "twice: " + line;
    } else if (!awaits_entry || !std::regex_match(line, match, entry) ||
               std::find(addresses.begin(), addresses.end(), match[1].str()) == addresses.end()) {
      return "unexpected: " + line;
    }
    awaits_entry = !awaits_entry;
  }
  if (begin != content.size() || awaits_entry) return "cut off: " + content.substr(begin);
  for (int port = 1; port <= ports; ++port) {
    if (!seen.contains(port)) return "missing: COM" + std::to_string(port);
  }
  return {};
}

}  // namespace kesp::threads
