// The binding over the installed driver.
#include "gpib/system_gpib_driver_win.h"

#include "gpib/gpib_library_win.h"
#include "gpib/gpib_threads_win.h"

namespace kesp {

GpibDriver& SystemGpibDriver() {
  static GpibLibraryWin library;
  static GpibThreadsWin threads;
  static GpibDriver driver(library, threads);
  return driver;
}

}  // namespace kesp
