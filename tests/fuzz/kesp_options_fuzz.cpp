// The command line of kesp: a line of the input for each argument.
#include <string>
#include <vector>

#include "console/options.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/require.h"

namespace kesp::console {
namespace {

void Parse(FuzzInput& input) {
  constexpr std::size_t kMostArguments = 12;
  std::vector<std::string> arguments;
  while (input.HasMore() && arguments.size() < kMostArguments) arguments.emplace_back(input.Line());
  const ParsedOptions parsed = ParseOptions(arguments);
  if (parsed.options) {
    Require(parsed.exit_code == kExitDone && parsed.error.empty(), "what is understood is no mistake");
    const auto* query = std::get_if<QueryOptions>(&parsed.options->command);
    Require(query == nullptr || !query->commands.empty(), "a query has a command");
    Require(query == nullptr || !query->repeat || *query->repeat >= 0, "rounds are counted");
  } else {
    Require(parsed.exit_code == kExitDone || parsed.exit_code == kExitUsage, "a mistake is one of use");
    Require((parsed.exit_code == kExitDone) == parsed.error.empty(), "a mistake is told");
    Require(!parsed.error.empty() || !parsed.output.empty(), "something is said");
  }
}

}  // namespace
}  // namespace kesp::console

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesp::FuzzInput input(data, size);
  kesp::console::Parse(input);
  return 0;
}
