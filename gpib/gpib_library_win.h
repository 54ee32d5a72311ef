// The driver's DLL on Windows.
#pragma once

#include "gpib/gpib_library.h"

namespace kesp {

// A DLL that is not given up stays loaded for the rest of the process: threads may be registered with it.
class GpibLibraryWin final : public GpibLibrary {
 public:
  // Gpib-32.dll is the driver's name on 32 bit and that of the compatible drivers of other makers on both.
  // What NI-488.2 installs for 64-bit programs is called ni4882.dll.
  std::vector<std::wstring> FileNames() const override;

  // Looks in the folder of the host program, in the folders that the program named with AddDllDirectory, and
  // in the system's folder; neither in the current folder nor along PATH.
  std::uint32_t Load(const std::wstring& file_name) override;

  GpibEntryPoint Find(const char* name) override;
  void Unload() override;

 private:
  void* module_ = nullptr;
};

}  // namespace kesp
