// Where the documents say more about a failure.
#pragma once

#include <string>

namespace kesp::console {

// What a hint ends with: a place in the documents, such as "no-answer.md#nothing-comes". tools/check_links.py
// looks whether it is there.
inline std::string MoreAt(const std::string& place) {
  return " (docs\\" + place + ")";
}

}  // namespace kesp::console
