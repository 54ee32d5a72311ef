// What the registry tells about Windows, the processor and installed programs.
#include "console/system_facts_win.h"

#include <windows.h>

#include <cstdlib>
#include <string>

#include "console/program_folders_win.h"
#include "console/registry_win.h"
#include "console/wide_text_win.h"

namespace kesp::console {
namespace {

constexpr const char* kOffice = "SOFTWARE\\Microsoft\\Office\\";

// Windows programs run in Wine, too, which then says so.
std::string Emulator() {
  const FARPROC found = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version");
  if (found == nullptr) return "";
  const auto version = reinterpret_cast<const char* (*)()>(reinterpret_cast<void*>(found));
  return std::string(" (Wine ") + version() + ")";
}

std::string Windows() {
  const RegistryKeyWin key(HKEY_LOCAL_MACHINE, "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion",
                           WindowsBits() == 64 ? KEY_WOW64_64KEY : 0);
  return WindowsName(key.Text("ProductName"), key.Text("DisplayVersion"),
                     std::atoi(key.Text("CurrentBuildNumber").c_str())) +
         Emulator();
}

// An emulated program is told of another processor but by this function, which Windows has from 10 on.
bool IsArm64() {
  using Asking = BOOL(WINAPI*)(HANDLE, USHORT*, USHORT*);
  const FARPROC found = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "IsWow64Process2");
  const auto ask = reinterpret_cast<Asking>(reinterpret_cast<void*>(found));
  constexpr USHORT kArm64 = 0xAA64;
  USHORT process = 0;
  USHORT machine = 0;
  return ask != nullptr && ask(GetCurrentProcess(), &process, &machine) != FALSE && machine == kArm64;
}

std::string Architecture() {
  if (IsArm64()) return "ARM64";
  SYSTEM_INFO info{};
  GetNativeSystemInfo(&info);
  return info.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_AMD64 ? "x64" : "x86";
}

bool IsElevated() {
  HANDLE token = nullptr;
  if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token) == FALSE) return false;
  TOKEN_ELEVATION elevation{};
  DWORD size = 0;
  const bool known = GetTokenInformation(token, TokenElevation, &elevation, sizeof elevation, &size) != FALSE;
  CloseHandle(token);
  return known && elevation.TokenIsElevated != 0;
}

// As programs may name it: by its long name and by its short one.
std::vector<std::string> UserFolders() {
  constexpr DWORD kLongest = 32767;
  std::wstring folder(kLongest, L'\0');
  folder.resize(GetEnvironmentVariableW(L"USERPROFILE", folder.data(), kLongest));
  if (folder.empty()) return {};
  std::vector<std::string> folders = {ToUtf8(folder)};
  for (const auto function : {GetLongPathNameW, GetShortPathNameW}) {
    std::wstring other(kLongest, L'\0');
    other.resize(function(folder.c_str(), other.data(), kLongest));
    if (!other.empty()) folders.push_back(ToUtf8(other));
  }
  return folders;
}

std::optional<Office> ClickToRunOffice() {
  const RegistryKeyWin key(HKEY_LOCAL_MACHINE, kOffice + std::string("ClickToRun\\Configuration"),
                           ViewOf(WindowsBits()));
  const std::string platform = key.Text("Platform");
  if (platform.empty()) return std::nullopt;
  return Office{key.Text("VersionToReport"), platform == "x64" ? 64 : 32};
}

// As the installer of Windows leaves it.
std::optional<Office> InstalledOffice() {
  for (const char* version : {"16.0", "15.0", "14.0", "12.0"}) {
    for (const int bits : {64, 32}) {
      if (bits == 64 && WindowsBits() == 32) continue;
      const RegistryKeyWin key(HKEY_LOCAL_MACHINE, kOffice + std::string(version) + "\\Excel\\InstallRoot",
                               WindowsBits() == 32 ? 0 : ViewOf(bits));
      if (!key.Text("Path").empty()) return Office{version, bits};
    }
  }
  return std::nullopt;
}

}  // namespace

SystemFacts ReadSystemFacts() {
  SystemFacts facts;
  facts.windows = Windows();
  facts.processor = RegistryKeyWin(HKEY_LOCAL_MACHINE, "HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0")
                        .Text("ProcessorNameString");
  facts.architecture = Architecture();
  facts.windows_bits = WindowsBits();
  facts.both_widths = RunsBothWidths();
  facts.program_bits = kProgramBits;
  facts.elevated = IsElevated();
  facts.windows_folder = WindowsFolder();
  facts.user_folders = UserFolders();
  return facts;
}

std::optional<Office> FindOffice() {
  if (auto office = ClickToRunOffice()) return office;
  return InstalledOffice();
}

bool FindVbScript(int bits) {
  const RegistryKeyWin key(HKEY_LOCAL_MACHINE,
                           "SOFTWARE\\Classes\\CLSID\\{B54F3741-5B07-11CF-A4B0-00AA004A55E8}\\InprocServer32",
                           WindowsBits() == 32 ? 0 : ViewOf(bits));
  return key.Exists() && IsFile(SystemFolder(bits) + "vbscript.dll");
}

}  // namespace kesp::console
