// From the description of a language and the settings of an address to a program.
#include "console/snippet.h"

#include <stdexcept>

#include "console/snippet_dialect.h"

namespace kesp::console {
namespace {

void Replace(std::string& text, const std::string& word, const std::string& value) {
  for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + value.size()))
    text.replace(at, word.size(), value);
}

std::string Assignments(const Dialect& dialect, const SnippetSettings& settings,
                        const std::string& indentation) {
  std::string text;
  for (const Assignment& assignment : settings.assignments) {
    if (!text.empty()) text += "\n" + indentation;
    text += dialect.assign(dialect, assignment);
  }
  return text;
}

std::string IndentationOf(const std::string& program, const std::string& word) {
  const std::size_t at = program.find(word);
  const std::size_t line = program.rfind('\n', at) + 1;
  return program.substr(line, at - line);
}

}  // namespace

std::string Snippet(const std::string& language, const Address& address, const std::string& said) {
  const Dialect* dialect = FindDialect(language);
  if (dialect == nullptr) throw std::invalid_argument("no such language: " + language);
  const SnippetSettings settings = SettingsFor(address);
  std::string program = SnippetProgram(language);
  Replace(program, "@SETTINGS@", Assignments(*dialect, settings, IndentationOf(program, "@SETTINGS@")));
  Replace(program, "@STYLE@", dialect->assign(*dialect, {"CommStyle", settings.style, true}));
  Replace(program, "@TRANSPORT@", settings.transport);
  Replace(program, "@ARGUMENTS@", dialect->arguments(*dialect, settings.omega_address));
  Replace(program, "@ADDRESS@", said);
  return program;
}

}  // namespace kesp::console
