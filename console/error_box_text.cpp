// From the text of a box to a failure.
#include "console/error_box_text.h"

#include <regex>
#include <string>

namespace kesp::console {

LibraryError ErrorOfBox(std::string_view text) {
  static const std::regex form(R"(Error: (-?\d+) - ([^\r\n]*)(?:\r?\n\(([^\r\n]*)\))?)");
  std::match_results<std::string_view::const_iterator> found;
  if (!std::regex_search(text.begin(), text.end(), found, form)) return {"", "", std::string(text)};
  return {"error " + found.str(1), found.str(3), found.str(2)};
}

}  // namespace kesp::console
