// Reading and comparing the levels.
#include "tests/faults/levels.h"

#include <windows.h>

#include "tests/clients/handle_count.h"
#include "tests/faults/held_blocks.h"
#include "tests/faults/injector.h"

namespace kesp::faults {

namespace {

// All windows of this process but the children of others, hidden ones and those for messages alone included.
long CountWindows() {
  const auto is_ours = [](HWND window) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    return process == GetCurrentProcessId();
  };
  long count = 0;
  for (const HWND parent : {static_cast<HWND>(nullptr), HWND_MESSAGE}) {
    for (HWND window = nullptr; (window = FindWindowExW(parent, window, nullptr, nullptr)) != nullptr;) {
      if (is_ours(window)) ++count;
    }
  }
  return count;
}

}  // namespace

Levels LevelsNow() {
  Levels levels = {{"blocks of the library", LibraryBlocks().Count()},
                   {"blocks of COM", ComBlocks().Count()},
                   {"handles", clients::CountHandles()},
                   {"windows", CountWindows()}};
  for (int i = 1; i < static_cast<int>(Resource::kCount); ++i) {
    const auto resource = static_cast<Resource>(i);
    levels.push_back({NameOf(resource), TheInjector().Outstanding(resource)});
  }
  return levels;
}

std::string Growth(const Levels& before, const Levels& after) {
  std::string text;
  for (std::size_t i = 0; i < before.size(); ++i) {
    const long more = after[i].count - before[i].count;
    if (more <= 0) continue;
    if (!text.empty()) text += ", ";
    text += std::string(after[i].name) + " +" + std::to_string(more);
  }
  return text;
}

}  // namespace kesp::faults
