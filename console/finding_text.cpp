// Writing findings down, and reading them.
#include "console/finding_text.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

#include "console/table.h"

namespace kesp::console {
namespace {

using nlohmann::ordered_json;

constexpr std::array<const char*, 3> kWords = {"OK", "WARN", "FAIL"};

std::string WordOf(Level level) {
  return kWords.at(static_cast<std::size_t>(level));
}

Level LevelOf(const std::string& word) {
  const auto* found = std::find(kWords.begin(), kWords.end(), word);
  if (found == kWords.end()) throw std::out_of_range(word);
  return static_cast<Level>(found - kWords.begin());
}

std::string SumOf(const Findings& findings) {
  std::string sum;
  for (const Level level : {Level::kOk, Level::kWarn, Level::kFail})
    sum += (sum.empty() ? "" : ", ") + std::to_string(Count(findings, level)) + " " + WordOf(level);
  return sum;
}

Finding FindingOf(const ordered_json& object) {
  return {LevelOf(object.at("level").get<std::string>()), object.at("subject").get<std::string>(),
          object.at("text").get<std::string>(), object.value("remedy", "")};
}

}  // namespace

std::string PageOf(const Findings& findings) {
  std::vector<TableRow> rows;
  for (const Finding& each : findings) {
    rows.push_back({WordOf(each.level), each.subject, each.text});
    if (!each.remedy.empty()) rows.push_back({"", "", "-> " + each.remedy});
  }
  return "kesp " KESP_VERSION " doctor\n\n" + TableOf(rows) + "\n" + SumOf(findings) + "\n";
}

std::string JsonOf(const Findings& findings) {
  auto list = ordered_json::array();
  for (const Finding& each : findings) {
    ordered_json object = {{"level", WordOf(each.level)}, {"subject", each.subject}, {"text", each.text}};
    if (!each.remedy.empty()) object["remedy"] = each.remedy;
    list.push_back(std::move(object));
  }
  const ordered_json all = {{"version", KESP_VERSION},
                            {"warnings", Count(findings, Level::kWarn)},
                            {"fails", Count(findings, Level::kFail)},
                            {"findings", std::move(list)}};
  return all.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

std::optional<Findings> FindingsOf(std::string_view json) {
  try {
    Findings findings;
    const ordered_json all = ordered_json::parse(json);
    for (const ordered_json& each : all.at("findings")) findings.push_back(FindingOf(each));
    return findings;
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

}  // namespace kesp::console
