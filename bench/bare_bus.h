// The bare GPIB client that the library is measured against: the driver's functions and nothing else.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>

namespace kesp::bench {

// The simulated driver, loaded from where the library finds it too. Throws std::runtime_error where it is
// not. Its devices are opened as the library opens them: END with the last byte written, time-out of a
// second.
class BareBus {
 public:
  BareBus();

  // Puts another bus in the place of the present one. Threads that have used the driver cannot use it
  // afterwards, since their registration is forgotten.
  void Load(const std::string& description) const;

  // ibdev, ibclr, and ibeos with the character "1"; returns the descriptor. The three throw after a failure.
  int Open(int primary_address) const;

  // ibonl of the device and of the board.
  void Close(int device) const;

  // ibwrt; returns whether somebody listened.
  bool Write(int device, const std::string& bytes) const;

  // ibrd of 50 bytes at the most. Throws unless a reply came to its end.
  void Read(int device) const;

 private:
  template <class Function>
  void Find(Function& place, const char* name) const;

  HMODULE module_;
  int(__stdcall* ibdev_)(int, int, int, int, int, int);
  int(__stdcall* ibclr_)(int);
  int(__stdcall* ibeos_)(int, int);
  int(__stdcall* ibwrt_)(int, const void*, long);
  int(__stdcall* ibrd_)(int, void*, long);
  int(__stdcall* ibonl_)(int, int);
  int(__stdcall* load_)(const char*, char*, long);
};

}  // namespace kesp::bench
