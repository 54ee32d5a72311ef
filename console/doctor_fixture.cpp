// Findings in short.
#include "console/doctor_fixture.h"

namespace kesp::console {

std::vector<std::string> Lines(const Findings& findings) {
  std::vector<std::string> lines;
  for (const Finding& each : findings) {
    const char* word = each.level == Level::kOk ? "OK " : each.level == Level::kWarn ? "WARN " : "FAIL ";
    lines.push_back(word + each.subject + ": " + each.text +
                    (each.remedy.empty() ? "" : " -> " + each.remedy));
  }
  return lines;
}

void ExpectRemedies(const Findings& findings) {
  for (const Finding& each : findings)
    EXPECT_EQ(each.remedy.empty(), each.level == Level::kOk) << each.subject << ": " << each.text;
}

}  // namespace kesp::console
