// kesp: the library at the command line.
#include <objbase.h>

#include <exception>

#include "console/clock_win.h"
#include "console/commands.h"
#include "console/console_win.h"
#include "console/library_win.h"
#include "console/machine_win.h"
#include "console/wide_text_win.h"

namespace kesp::console {
namespace {

// A single-threaded apartment, as scripts and most programs with windows are.
class Apartment {
 public:
  Apartment() : result_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
  ~Apartment() {
    if (SUCCEEDED(result_)) CoUninitialize();
  }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;

 private:
  HRESULT result_;
};

int RunWith(const Options& options, Console& console, Interruption& interruption) {
  const Apartment apartment;
  ClockWin clock(interruption);
  std::unique_ptr<LibraryWin> library;
  const auto loaded = [&]() -> Library& {
    if (!library)
      library = std::make_unique<LibraryWin>(options.registered ? ObjectSource::Registered()
                                                                : ObjectSource::Beside());
    return *library;
  };
  MachineWin machine;
  const auto broadcast_adapter = [&machine] { return BroadcastAdapterAmong(machine.NetworkAdapters()); };
  Surroundings around{console, clock, machine, loaded, broadcast_adapter};
  return RunCommand(options, around);
}

std::vector<std::string> Arguments(int count, wchar_t** words) {
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(ToUtf8(words[i]));
  return arguments;
}

int Main(int count, wchar_t** words) {
  const ParsedOptions parsed = ParseOptions(Arguments(count, words));
  Interruption interruption;
  ConsoleWin console(interruption);
  if (parsed.options) return RunWith(*parsed.options, console, interruption);
  console.WriteError(parsed.error);
  console.Write(parsed.output);
  return parsed.exit_code;
}

}  // namespace
}  // namespace kesp::console

int wmain(int count, wchar_t** words) {
  // A drive without a disk, or a damaged file, brings up no box of the system's.
  SetErrorMode(SEM_FAILCRITICALERRORS);
  try {
    return kesp::console::Main(count, words);
  } catch (const std::exception&) {
    // Standard output takes no more; where the command ran, that was told.
    return kesp::console::kExitFailed;
  }
}
