// The binding over the installed driver.
#include "gpib/system_gpib_driver_win.h"

#include "gpib/gpib_library_win.h"
#include "gpib/gpib_threads_win.h"

namespace kesp {

namespace {

struct Binding {
  GpibLibraryWin library;
  GpibThreadsWin threads;
  GpibDriver driver{library, threads};
};

// Null until it is needed. Never freed: a thread that ends late still refers to the table in it.
Binding* binding = nullptr;

}  // namespace

GpibDriver& SystemGpibDriver() {
  static Binding& made = *(binding = new Binding);
  return made.driver;
}

void ReleaseSystemGpibDriver() {
  if (binding != nullptr) binding->threads.Release();
}

}  // namespace kesp
