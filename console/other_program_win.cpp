// Starting a program, and reading what it writes.
#include "console/other_program_win.h"

#include <windows.h>

#include <array>

#include "console/program_folders_win.h"
#include "console/wide_text_win.h"

namespace kesp::console {
namespace {

constexpr DWORD kLongestWaitMs = 60'000;

// A file that a child can write to, and that is gone afterwards.
class Scratch {
 public:
  Scratch() {
    std::array<wchar_t, MAX_PATH + 1> folder{};
    std::array<wchar_t, MAX_PATH + 1> path{};
    GetTempPathW(MAX_PATH, folder.data());
    if (GetTempFileNameW(folder.data(), L"ksp", 0, path.data()) == 0) return;
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    file_ = CreateFileW(path.data(), GENERIC_READ | GENERIC_WRITE,
                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &inherited, CREATE_ALWAYS,
                        FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  }
  ~Scratch() {
    if (file_ != INVALID_HANDLE_VALUE) CloseHandle(file_);
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  HANDLE get() const { return file_; }

  std::string Content() const {
    std::string content(GetFileSize(file_, nullptr), '\0');
    DWORD count = 0;
    SetFilePointer(file_, 0, nullptr, FILE_BEGIN);
    if (ReadFile(file_, content.data(), static_cast<DWORD>(content.size()), &count, nullptr) == FALSE)
      return "";
    content.resize(count);
    return content;
  }

 private:
  HANDLE file_ = INVALID_HANDLE_VALUE;
};

// Ends a process that takes too long.
void WaitFor(HANDLE process) {
  if (WaitForSingleObject(process, kLongestWaitMs) == WAIT_OBJECT_0) return;
  TerminateProcess(process, 1);
  WaitForSingleObject(process, kLongestWaitMs);
}

std::string OutputOf(const std::string& path, const std::string& arguments) {
  const Scratch output;
  if (output.get() == INVALID_HANDLE_VALUE) return "";
  std::wstring line = ToWide("\"" + path + "\" " + arguments);
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = output.get();
  PROCESS_INFORMATION process{};
  if (CreateProcessW(ToWide(path).c_str(), line.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr,
                     nullptr, &start, &process) == FALSE)
    return "";
  WaitFor(process.hProcess);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return output.Content();
}

}  // namespace

OtherProgram AskOtherProgram() {
  OtherProgram other;
  const std::string folder = OtherFolder();
  if (!RunsBothWidths() || folder.empty()) return other;
  other.path = folder + "kesp.exe";
  other.found = IsFile(other.path);
  if (other.found) other.output = OutputOf(other.path, "doctor --json --this-width-only");
  return other;
}

}  // namespace kesp::console
