// A program that talks to an address, in one of several languages.
#pragma once

#include <string>

#include "console/address.h"

namespace kesp::console {

// language: one of SnippetLanguages(). said: the address as the user wrote it, for the comment on top;
// `address` has a COM port in place of an adapter's serial number. Throws UsageError for an address that no
// program can ask.
std::string Snippet(const std::string& language, const Address& address, const std::string& said);

}  // namespace kesp::console
