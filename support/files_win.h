// The file system of Windows.
#pragma once

#include "support/files.h"

namespace kesp {

// Paths that hold a NUL name no file. A folder is not a file.
class FilesWin final : public Files {
 public:
  bool Exists(const std::wstring& path) override;
  std::optional<CalendarDate> LastModified(const std::wstring& path) override;

  // As the seam says; besides, false for a path that names a device (such as a serial port) or a pipe.
  bool Append(const std::wstring& path, std::string_view bytes) override;

  bool Rename(const std::wstring& from, const std::wstring& to) override;
  std::wstring TemporaryFolder() override;
  std::wstring LibraryFile() override;
};

}  // namespace kesp
