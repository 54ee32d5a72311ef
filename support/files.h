// The file seam: the few operations on the file system that the library needs.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "support/clock.h"

namespace kesp {

class Files {
 public:
  virtual ~Files() = default;

  virtual bool Exists(const std::wstring& path) = 0;

  // The local date of the last change; empty when there is no such file.
  virtual std::optional<CalendarDate> LastModified(const std::wstring& path) = 0;

  // Opens the file (made when missing), appends the bytes and closes it again. False on any failure. Other
  // programs may have the file open meanwhile.
  virtual bool Append(const std::wstring& path, std::string_view bytes) = 0;

  // Renames a file. False on any failure, also when `to` exists.
  virtual bool Rename(const std::wstring& from, const std::wstring& to) = 0;

  // The system's temporary folder with a closing "\"; empty when it cannot be told.
  virtual std::wstring TemporaryFolder() = 0;

  // The full path of the file that holds this library (not the host program's); empty when it cannot be told.
  virtual std::wstring LibraryFile() = 0;
};

}  // namespace kesp
