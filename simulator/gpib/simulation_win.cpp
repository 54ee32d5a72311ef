// The simulated driver of this DLL, which loads its bus when it is first needed.
#include "simulator/gpib/simulation_win.h"

#include <algorithm>
#include <array>

#include "simulator/description.h"
#include "simulator/gpib/bus_file_win.h"

namespace kesp::simulator::gpib {
namespace {

// Has the lock of the loading for as long as it lives.
class Loading {
 public:
  explicit Loading(SRWLOCK& lock) : lock_(lock) { AcquireSRWLockExclusive(&lock_); }
  ~Loading() { ReleaseSRWLockExclusive(&lock_); }
  Loading(const Loading&) = delete;
  Loading& operator=(const Loading&) = delete;

 private:
  SRWLOCK& lock_;
};

}  // namespace

void Simulation::Begin(HINSTANCE library) {
  std::array<wchar_t, 32768> path{};
  const DWORD length = GetModuleFileNameW(library, path.data(), static_cast<DWORD>(path.size()));
  path_.assign(path.data(), length);
  path_.resize(std::min(path_.size(), path_.rfind(L'.')));
}

Driver& Simulation::Ready() {
  if (!is_loaded_) {
    const Loading loading(loading_);
    if (!is_loaded_) {
      driver_.Load(BusBeside(path_));
      is_loaded_ = true;
    }
  }
  return driver_;
}

void Simulation::Load(const std::string& json_text) {
  const BusDescription bus = ReadBus(json_text);
  const Loading loading(loading_);
  driver_.Load(bus);
  is_loaded_ = true;
}

void Simulation::ThreadEnds() {
  driver_.ThreadEnds(GetCurrentThreadId());
}

}  // namespace kesp::simulator::gpib
