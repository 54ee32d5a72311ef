// "kesp discover": the instruments on the local network.
#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "console/commands.h"
#include "console/deadline.h"
#include "console/more_at.h"
#include "console/table.h"

namespace kesp::console {
namespace {

using nlohmann::ordered_json;

// "192.168.0.9" comes before "192.168.0.10".
std::vector<int> NumbersOf(const std::string& dotted) {
  std::vector<int> numbers;
  std::istringstream stream(dotted);
  for (int number = 0; stream >> number; stream.ignore()) numbers.push_back(number);
  return numbers;
}

void SortByAddress(std::vector<FoundInstrument>& found) {
  std::stable_sort(found.begin(), found.end(), [](const FoundInstrument& one, const FoundInstrument& other) {
    return NumbersOf(one.address) < NumbersOf(other.address);
  });
}

std::string AddressOf(const FoundInstrument& instrument) {
  TcpAddress address;
  address.host = instrument.address;
  return TextOf(address);
}

std::string Listed(const std::vector<FoundInstrument>& found) {
  if (found.empty()) return "";
  std::vector<TableRow> rows = {{"ADDRESS", "MODEL", "SERIAL NUMBER"}};
  for (const FoundInstrument& each : found) rows.push_back({AddressOf(each), each.model, each.serial});
  return TableOf(rows);
}

std::string JsonOf(const std::vector<FoundInstrument>& found,
                   const std::optional<BroadcastAdapter>& adapter) {
  ordered_json instruments = ordered_json::array();
  for (const FoundInstrument& each : found) {
    instruments.push_back(
        {{"address", AddressOf(each)}, {"model", each.model}, {"serial_number", each.serial}});
  }
  ordered_json all;
  if (adapter) all["adapter"] = {{"name", adapter->name}, {"address", adapter->address}};
  all["instruments"] = std::move(instruments);
  return all.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

// Who is asked, and before that how many have answered.
std::string ProgressLine(const DetectionStep& step) {
  if (step.where.empty()) return "waiting for answers \u2026 " + std::to_string(step.number);
  return step.where + ", " + step.command + " \u2026 " + std::to_string(step.number) + " of " +
         std::to_string(step.of);
}

std::string Leaving(const std::optional<BroadcastAdapter>& adapter) {
  if (!adapter) return "the system does not tell by which network adapter the broadcast leaves\n";
  return "the broadcast leaves by " + adapter->name + " (" + adapter->address + ")\n";
}

}  // namespace

int Run(const DiscoverOptions& options, Surroundings& around) {
  Console& console = around.console;
  Library& library = around.library();
  const auto adapter = around.broadcast_adapter();
  console.WriteError(Leaving(adapter));
  const Deadline deadline(around.clock, options.timeout_ms);
  std::vector<FoundInstrument> found = library.Discover(options.trace, [&](const DetectionStep& step) {
    console.ShowProgress(ProgressLine(step));
    return !console.Interrupted() && !deadline.IsPast();
  });
  console.ShowProgress("");
  SortByAddress(found);
  console.Write(options.json ? JsonOf(found, adapter) : Listed(found));
  if (console.Interrupted()) return kExitInterrupted;
  if (!found.empty()) return kExitDone;
  console.WriteError(
      "kesp: nobody answered the broadcast; instruments behind another network adapter or a "
      "router do not hear it" +
      MoreAt("no-answer.md#discovery-finds-nobody") + "\n");
  return kExitFailed;
}

}  // namespace kesp::console
