// HTML Help that writes down what it is asked for.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace kesp {

// While it lives, the system's HTML Help in this program opens nothing: its function begins with a jump here.
// One at a time.
class HtmlHelpFake {
 public:
  // Fails the test when the system has no HTML Help.
  HtmlHelpFake();
  ~HtmlHelpFake();
  HtmlHelpFake(const HtmlHelpFake&) = delete;
  HtmlHelpFake& operator=(const HtmlHelpFake&) = delete;

  struct Call {
    HWND owner;
    std::wstring file;
    UINT command;
    DWORD_PTR data;
    bool operator==(const Call&) const = default;
  };
  const std::vector<Call>& calls() const { return calls_; }

 private:
  static HWND WINAPI Record(HWND owner, const wchar_t* file, UINT command, DWORD_PTR data);
  void Overwrite(const std::vector<BYTE>& code) const;

  void* function_;
  std::vector<BYTE> original_;
  std::vector<Call> calls_;
};

}  // namespace kesp
