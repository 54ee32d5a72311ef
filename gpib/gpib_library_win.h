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

  // The folders of Windows are that of the host program, those that the program named with AddDllDirectory,
  // and the system's. Other DLLs that the driver needs are looked for there, too, and beside a driver that
  // lies in this library's folder. Neither the current folder nor PATH is searched for any of them.
  std::uint32_t Load(const std::wstring& file_name, GpibPlace place) override;

  GpibEntryPoint Find(const char* name) override;
  void Unload() override;

 private:
  void* module_ = nullptr;
};

}  // namespace kesp
