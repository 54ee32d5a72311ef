// Standard output and standard error: a console, a file or a pipe.
#pragma once

#include <windows.h>

#include <string_view>

namespace kesp::console {

class OutputStream {
 public:
  // name: "standard output", for messages; which: STD_OUTPUT_HANDLE or STD_ERROR_HANDLE.
  OutputStream(const char* name, DWORD which);

  bool IsConsole() const { return is_console_; }
  // Columns of the console's window; 0 where it is none.
  int Width() const;
  // Text in UTF-8 to a console, else the bytes as they are. Throws std::system_error.
  void Write(std::string_view text) const;

 private:
  const char* name_;
  HANDLE handle_;
  bool is_console_ = false;
};

}  // namespace kesp::console
