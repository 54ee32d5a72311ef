// The simulated driver as a Windows program sees it: a DLL, loaded by name, and its functions.
#pragma once

#include <windows.h>

#include <filesystem>
#include <string>

namespace kesp::simulator::gpib {

// The DLL, for as long as this lives.
class DriverLibrary {
 public:
  // A name alone is looked for where Windows looks, beside the program to begin with. Fails the test when
  // there is no such DLL or one of its functions is missing.
  explicit DriverLibrary(const std::filesystem::path& path = "Gpib-32.dll");
  ~DriverLibrary();
  DriverLibrary(const DriverLibrary&) = delete;
  DriverLibrary& operator=(const DriverLibrary&) = delete;

  // Where the DLL lies.
  std::filesystem::path Path() const;

  int(__stdcall* ibdev)(int, int, int, int, int, int) = nullptr;
  int(__stdcall* ibclr)(int) = nullptr;
  int(__stdcall* ibeos)(int, int) = nullptr;
  int(__stdcall* ibwrt)(int, const void*, long) = nullptr;
  int(__stdcall* ibrd)(int, void*, long) = nullptr;
  int(__stdcall* ibonl)(int, int) = nullptr;
  int(__stdcall* ibrsp)(int, char*) = nullptr;
  int(__stdcall* Register)(int*, int*, int*, int*) = nullptr;
  int(__stdcall* Unregister)() = nullptr;
  int(__stdcall* load)(const char*, char*, long) = nullptr;
  long(__stdcall* record)(char*, long) = nullptr;
  int(__stdcall* open_descriptors)() = nullptr;

  // Opens address 5 and sends the command; what one read brings.
  std::string Ask(const std::string& command);
  // Loads a bus; the message, empty after success.
  std::string Load(const std::string& json);
  // The whole record.
  std::string Record();

 private:
  template <typename Function>
  void Find(Function& function, const char* name);

  const HMODULE module_;
};

}  // namespace kesp::simulator::gpib
