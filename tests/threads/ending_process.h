// The ways in which a client's process ends in the middle of a call, as the test tells the client.
#pragma once

#include <array>

namespace kesp::threads {

// What ends it. The test names the way on the client's command line.
enum class Way {
  kExitProcess,    // ExitProcess on a thread that makes no calls
  kTerminateSelf,  // TerminateProcess on such a thread
  kTerminated,     // TerminateProcess by the test
  kReturn,         // main returns, with a call in progress on another thread
  kUninitialize,   // a handler leaves COM and lets the library go; then main returns
  kFreeLibrary,    // another thread lets the library go again and again; then ExitProcess
};

inline constexpr std::array kWays = {Way::kExitProcess, Way::kTerminateSelf, Way::kTerminated,
                                     Way::kReturn,      Way::kUninitialize,  Way::kFreeLibrary};

// The exit code of each of them.
inline constexpr unsigned kEnded = 7;

// Ports whose address the settings file keeps; those from 1 up.
inline constexpr short kSettingsPorts = 200;

}  // namespace kesp::threads
