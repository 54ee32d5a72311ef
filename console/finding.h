// What the doctor found, line by line.
#pragma once

#include <string>
#include <vector>

namespace kesp::console {

enum class Level { kOk, kWarn, kFail };

struct Finding {
  Level level = Level::kOk;
  std::string subject;  // "64-bit clients"
  std::string text;
  std::string remedy;  // the command or the step that mends it; empty for what is well
  bool operator==(const Finding&) const = default;
};

using Findings = std::vector<Finding>;

Finding Well(std::string subject, std::string text);
Finding Warning(std::string subject, std::string text, std::string remedy);
Finding Fault(std::string subject, std::string text, std::string remedy);

void Append(Findings& findings, Findings more);

// Writes %USERPROFILE% for the user's own folder, in which the user's name stands. Remedies keep it: an
// administrator who runs one may be another user.
void HideUser(Findings& findings, const std::vector<std::string>& user_folders);

// How many are of that level.
int Count(const Findings& findings, Level level);

}  // namespace kesp::console
