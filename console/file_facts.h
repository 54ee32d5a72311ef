// A library's file.
#pragma once

#include <string>
#include <string_view>

namespace kesp::console {

struct FileFacts {
  int bits = 0;         // 64 or 32; 0: no program file of either
  std::string version;  // empty: it has none
  std::string content;  // a number that only files with the same bytes share, but for chance
};

// Of versions such as "1.10.0", whether the first is after the second.
bool IsNewer(const std::string& one, const std::string& other);

// bytes: the whole file.
FileFacts FileFactsOf(std::string_view bytes);

}  // namespace kesp::console
