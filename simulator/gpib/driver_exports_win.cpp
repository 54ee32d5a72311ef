// The DLL's functions: those of the NI-488.2 driver's public interface, and four that steer the simulation.
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <string_view>

#include "simulator/gpib/simulation_win.h"

namespace {

kesp::simulator::gpib::Simulation& Simulation() {
  static kesp::simulator::gpib::Simulation simulation;
  return simulation;
}

kesp::simulator::gpib::Driver& Driver() {
  return Simulation().Ready();
}

// Copies as much of a text as fits, with a NUL, and returns the size that it needs.
long CopyText(std::string_view text, char* target, long size) {
  if (target != nullptr && size > 0) {
    const std::size_t length = std::min(text.size(), static_cast<std::size_t>(size) - 1);
    std::memcpy(target, text.data(), length);
    target[length] = '\0';
  }
  return static_cast<long>(text.size()) + 1;
}

}  // namespace

extern "C" {

int __stdcall ibdev(int board, int primary, int secondary, int time_out, int sends_end, int end_of_string) {
  return Driver().Ibdev(GetCurrentThreadId(),
                        {board, {primary, secondary}, time_out, sends_end, end_of_string});
}

int __stdcall ibclr(int descriptor) {
  return Driver().Ibclr(GetCurrentThreadId(), descriptor);
}

int __stdcall ibeos(int descriptor, int value) {
  return Driver().Ibeos(GetCurrentThreadId(), descriptor, value);
}

int __stdcall ibwrt(int descriptor, const void* bytes, long length) {
  return Driver().Ibwrt(GetCurrentThreadId(), descriptor, bytes, length);
}

int __stdcall ibrd(int descriptor, void* buffer, long length) {
  return Driver().Ibrd(GetCurrentThreadId(), descriptor, buffer, length);
}

int __stdcall ibonl(int descriptor, int value) {
  return Driver().Ibonl(GetCurrentThreadId(), descriptor, value);
}

int __stdcall ibrsp(int descriptor, char* status_byte) {
  return Driver().Ibrsp(GetCurrentThreadId(), descriptor, status_byte);
}

int __stdcall RegisterGpibGlobalsForThread(int* status, int* error, int* count, int* long_count) {
  return Driver().Register(GetCurrentThreadId(), {status, error, count, long_count});
}

int __stdcall UnregisterGpibGlobalsForThread() {
  return Driver().Unregister(GetCurrentThreadId());
}

// Puts the bus of this JSON text (UTF-8) in the place of the present one. Returns 0; or 1, with the reason as
// far as it fits, and nothing is changed.
int __stdcall KespSimulationLoad(const char* utf8_json, char* message, long size) {
  try {
    if (utf8_json == nullptr) {
      CopyText("there is no text", message, size);
      return 1;
    }
    Simulation().Load(utf8_json);
    CopyText("", message, size);
    return 0;
  } catch (const std::exception& error) {
    CopyText(error.what(), message, size);
    return 1;
  }
}

// Calls of that name, such as "ibclr", wait from now on, until another one is named or their time is up; a
// null pointer ends it. Returns 0, or 1 for another name, which changes nothing.
int __stdcall KespSimulationHold(const char* call) {
  const auto named = call == nullptr ? std::nullopt : kesp::simulator::gpib::CallNamed(call);
  if (call != nullptr && !named) return 1;
  Driver().Hold(named);
  return 0;
}

// Copies the record as far as it fits, NUL-terminated, and returns the size that the whole needs.
long __stdcall KespSimulationRecord(char* text, long size) {
  return CopyText(Driver().Record(), text, size);
}

int __stdcall KespSimulationOpenDescriptors() {
  return Driver().OpenDescriptors();
}

BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, void* /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) Simulation().Begin(library);
  if (reason == DLL_THREAD_DETACH) Simulation().ThreadEnds();
  return TRUE;
}

}  // extern "C"
