// How the languages of "kesp snippet" differ.
#pragma once

#include <string>

#include "console/snippet_settings.h"

namespace kesp::console {

struct Dialect {
  const char* name;
  // One assignment, with the value as a literal and, behind it, the name of an enumerator as a comment.
  std::string (*assign)(const Dialect& dialect, const Assignment& assignment);
  const char* true_word;
  const char* false_word;
  const char* comment;
  std::string (*text)(const std::string& value);
  // What Query is handed behind the reply; the address of an Omega controller may be empty.
  std::string (*arguments)(const Dialect& dialect, const std::string& omega_address);
};

// The whole program in which @ADDRESS@, @STYLE@, @TRANSPORT@, @SETTINGS@ and @ARGUMENTS@ (those of Query
// behind the reply) are to be replaced: the file of that name in snippets/. @SETTINGS@ stands on a line of
// its own, whose indentation each assignment gets.
std::string SnippetProgram(const std::string& language);

// Null for a language that there is not.
const Dialect* FindDialect(const std::string& name);

}  // namespace kesp::console
