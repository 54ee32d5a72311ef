// From a failure to its message and exit code.
#include "console/commands.h"

#include <exception>

#include "console/failure_text.h"
#include "console/usage_error.h"

namespace kesp::console {
namespace {

int Fail(Console& console, const std::string& text, int code) {
  console.ShowProgress("");
  console.WriteError("kesp: " + text + "\n");
  return code;
}

}  // namespace

int RunCommand(const Options& options, Surroundings& around) {
  try {
    return std::visit([&around](const auto& command) { return Run(command, around); }, options.command);
  } catch (const NoLibrary& error) {
    return Fail(around.console, error.what(), kExitNoLibrary);
  } catch (const LibraryError& error) {
    const std::string hint = error.hint.empty() ? "" : "\n  " + error.hint;
    return Fail(around.console, FailureText(error) + hint, kExitFailed);
  } catch (const AddressError& error) {
    return Fail(around.console, std::string("a mistake in the address\n") + error.what(), kExitUsage);
  } catch (const UsageError& error) {
    return Fail(around.console, error.what(), kExitUsage);
  } catch (const std::exception& error) {
    return Fail(around.console, error.what(), kExitFailed);
  }
}

}  // namespace kesp::console
