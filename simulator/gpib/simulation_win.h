// The simulated driver of this DLL, which loads its bus when it is first needed.
#pragma once

#include <windows.h>

#include <atomic>
#include <string>

#include "simulator/gpib/driver.h"
#include "simulator/gpib/waiting_win.h"

namespace kesp::simulator::gpib {

// The one of the module, from its loading to its unloading.
class Simulation {
 public:
  // While the DLL is being loaded: remembers where it lies, because to ask later may wait for a thread that
  // ends and holds the loader's lock.
  void Begin(HINSTANCE library);

  // The driver with a bus.
  Driver& Ready();

  // Puts a described bus in the place of the present one, whether that had been loaded or not. Throws
  // DescriptionError and leaves everything as it was when the text cannot be used.
  void Load(const std::string& json_text);

  // When a thread ends. Never waits for the loading.
  void ThreadEnds();

 private:
  // The DLL's path without its extension.
  std::wstring path_;
  WaitingWin waiting_;
  Driver driver_{waiting_};
  SRWLOCK loading_ = SRWLOCK_INIT;
  std::atomic<bool> is_loaded_ = false;
};

}  // namespace kesp::simulator::gpib
