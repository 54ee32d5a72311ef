// The languages of "kesp snippet".
#include "console/snippet_languages.h"

namespace kesp::console {

const std::vector<std::string>& SnippetLanguages() {
  static const std::vector<std::string> languages = {"vbscript", "vba", "powershell", "python",
                                                     "csharp",   "cpp", "matlab",     "jscript"};
  return languages;
}

}  // namespace kesp::console
