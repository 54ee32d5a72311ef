// The languages of "kesp snippet".
#pragma once

#include <string>
#include <vector>

namespace kesp::console {

// As they are written on the command line, in lower case: "vbscript", "vba", ...
const std::vector<std::string>& SnippetLanguages();

}  // namespace kesp::console
