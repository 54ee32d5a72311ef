// The simulated GPIB driver beside this program, as the tests steer it and look at it.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace kesp::clients {

using CallLines = std::vector<std::string>;

// The driver's DLL, which is one in the process.
class SimulatedDriver {
 public:
  SimulatedDriver();
  ~SimulatedDriver();
  SimulatedDriver(const SimulatedDriver&) = delete;
  SimulatedDriver& operator=(const SimulatedDriver&) = delete;

  // Replaces the bus by the one of this JSON text (simulator/gpib tells its form). Whatever was recorded
  // is gone.
  void Load(const std::string& description) const;

  // Calls of that name, such as "ibclr", do not return from now on, before their time-out is over; none with
  // a null pointer. From any thread.
  void Hold(const char* call) const;

  // What the driver heard since then: "1 ibclr(1) = 256 sta 0100 err 0 cnt 0".
  CallLines Record() const;
  // Of the calls of the bus only what was asked for: "ibclr(1)".
  CallLines Calls() const;

  // The record's last lines, for messages.
  std::string RecordText() const;

  int OpenDescriptors() const;

  // Fails the test when a device is open, or a thread registered that is not just about to end, or one has
  // ended so.
  void ExpectNothingLeft() const;

 private:
  template <class Function>
  Function* Find(const char* name) const;

  HMODULE module_;
};

}  // namespace kesp::clients
