// Counting in the shared memory.
#include "tests/faults/progress.h"

#include <stdexcept>

#include "tests/faults/replay.h"

namespace kesp::faults {

void Progress::CountFault(const char* scenario) {
  ++faults;
  if (tried_index != index || tried_nth != nth) ++calls_tried;
  tried_index = index;
  tried_nth = nth;
  replayed |= static_cast<LONG>(ReplayedBits(scenario, function, static_cast<unsigned>(nth)));
}

SharedProgress::SharedProgress(const std::wstring& name)
    : mapping_(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(Progress),
                                  name.c_str())),
      progress_(static_cast<Progress*>(
          mapping_ == nullptr ? nullptr
                              : MapViewOfFile(mapping_, FILE_MAP_ALL_ACCESS, 0, 0, sizeof(Progress)))) {
  if (progress_ == nullptr) throw std::runtime_error("there is no shared memory");
}

SharedProgress::~SharedProgress() {
  UnmapViewOfFile(progress_);
  CloseHandle(mapping_);
}

}  // namespace kesp::faults
