// From a failure to its message and exit code.
#include "console/commands.h"

#include <exception>

#include "console/failure_text.h"
#include "console/hint.h"
#include "console/port_hint.h"
#include "console/usage_error.h"

namespace kesp::console {
namespace {

int Fail(Console& console, const std::string& text, int code) {
  console.ShowProgress("");
  console.WriteError("kesp: " + text + "\n");
  return code;
}

// What helps, by the address of the command, if it has one.
struct HintOf {
  const LibraryError& error;

  template <class CommandOptions>
  std::string operator()(const CommandOptions& options) const {
    if (!error.hint.empty()) return error.hint;
    if constexpr (requires { options.talk; }) return HintFor(error, ParseAddress(options.talk.address));
    return PortHint(error);
  }
};

}  // namespace

int RunCommand(const Options& options, Surroundings& around) {
  try {
    return std::visit([&around](const auto& command) { return Run(command, around); }, options.command);
  } catch (const NoLibrary& error) {
    return Fail(around.console, error.what(), kExitNoLibrary);
  } catch (const LibraryError& error) {
    const std::string hint = std::visit(HintOf{error}, options.command);
    return Fail(around.console, FailureText(error) + (hint.empty() ? "" : "\n  " + hint), kExitFailed);
  } catch (const AddressError& error) {
    return Fail(around.console, std::string("a mistake in the address\n") + error.what(), kExitUsage);
  } catch (const UsageError& error) {
    return Fail(around.console, error.what(), kExitUsage);
  } catch (const std::exception& error) {
    return Fail(around.console, error.what(), kExitFailed);
  }
}

}  // namespace kesp::console
