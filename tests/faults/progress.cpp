// The shared memory.
#include "tests/faults/progress.h"

#include <stdexcept>

namespace kesp::faults {

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
