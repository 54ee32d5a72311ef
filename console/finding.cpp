// Making and counting findings.
#include "console/finding.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <iterator>
#include <utility>

namespace kesp::console {
namespace {

bool IsSameLetter(char one, char other) {
  return std::tolower(static_cast<unsigned char>(one)) == std::tolower(static_cast<unsigned char>(other));
}

void Replace(std::string& text, const std::string& folder) {
  const std::string variable = "%USERPROFILE%\\";
  for (std::size_t from = 0;;) {
    const auto begin = text.begin() + static_cast<std::ptrdiff_t>(from);
    const auto found = std::search(begin, text.end(), folder.begin(), folder.end(), IsSameLetter);
    if (found == text.end()) return;
    from = static_cast<std::size_t>(found - text.begin());
    text.replace(from, folder.size(), variable);
    from += variable.size();
  }
}

}  // namespace

Finding Well(std::string subject, std::string text) {
  return {Level::kOk, std::move(subject), std::move(text), ""};
}

Finding Warning(std::string subject, std::string text, std::string remedy) {
  return {Level::kWarn, std::move(subject), std::move(text), std::move(remedy)};
}

Finding Fault(std::string subject, std::string text, std::string remedy) {
  return {Level::kFail, std::move(subject), std::move(text), std::move(remedy)};
}

void Append(Findings& findings, Findings more) {
  std::move(more.begin(), more.end(), std::back_inserter(findings));
}

void HideUser(Findings& findings, const std::vector<std::string>& user_folders) {
  for (Finding& each : findings)
    for (const std::string& folder : user_folders) Replace(each.text, folder + "\\");
}

int Count(const Findings& findings, Level level) {
  return static_cast<int>(std::count_if(findings.begin(), findings.end(),
                                        [level](const Finding& each) { return each.level == level; }));
}

}  // namespace kesp::console
