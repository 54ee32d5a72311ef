// The words of the terminal.
#include "console/terminal_line.h"

#include <algorithm>
#include <cctype>

namespace kesp::console {
namespace {

using Kind = TerminalLine::Kind;

struct Word {
  std::string_view name;
  Kind kind;
};

constexpr Word kWords[] = {{"send", Kind::kSend}, {"hex", Kind::kHex},   {"timeout", Kind::kTimeout},
                           {"log", Kind::kLog},   {"help", Kind::kHelp}, {"quit", Kind::kQuit}};

std::string Lower(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return lower;
}

std::string_view Trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(" \t\r");
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(" \t\r") - begin + 1);
}

// A name may stand in quotes, as at the command line.
std::string_view WithoutQuotes(std::string_view text) {
  const bool quoted = text.size() > 1 && text.starts_with('"') && text.ends_with('"');
  return quoted ? text.substr(1, text.size() - 2) : text;
}

std::string TextBehind(Kind kind, std::string_view text) {
  const std::string_view trimmed = Trimmed(text);
  return std::string(kind == Kind::kLog ? WithoutQuotes(trimmed) : trimmed);
}

}  // namespace

TerminalLine ReadTerminalLine(std::string_view line) {
  const std::string_view text = Trimmed(line);
  if (text.empty()) return {};
  if (!text.starts_with(':')) return {Kind::kQuery, std::string(text)};
  if (text.starts_with("::")) return {Kind::kQuery, std::string(text.substr(1))};
  const std::size_t end = std::min(text.find_first_of(" \t"), text.size());
  const std::string name = Lower(text.substr(1, end - 1));
  for (const Word& word : kWords)
    if (word.name == name) return {word.kind, TextBehind(word.kind, text.substr(end))};
  return {Kind::kUnknown, std::string(text.substr(0, end))};
}

}  // namespace kesp::console
