// Making and counting findings.
#include "console/finding.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace kesp::console {
namespace {

void Replace(std::string& text, const std::string& folder) {
  for (auto place = text.find(folder); place != std::string::npos; place = text.find(folder, place))
    text.replace(place, folder.size(), "%USERPROFILE%\\");
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

void HideUser(Findings& findings, const std::string& user_folder) {
  if (user_folder.empty()) return;
  for (Finding& each : findings) {
    Replace(each.text, user_folder + "\\");
    Replace(each.remedy, user_folder + "\\");
  }
}

int Count(const Findings& findings, Level level) {
  return static_cast<int>(std::count_if(findings.begin(), findings.end(),
                                        [level](const Finding& each) { return each.level == level; }));
}

}  // namespace kesp::console
