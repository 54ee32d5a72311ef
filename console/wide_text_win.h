// Texts between UTF-8, which the program has inside, and UTF-16, which Windows takes.
#pragma once

#include <string>
#include <string_view>

namespace kesp::console {

// What is no character becomes U+FFFD.
std::string ToUtf8(std::wstring_view text);
std::wstring ToWide(std::string_view text);

}  // namespace kesp::console
