// A folder of the disk as the file seam, for logs that several threads write.
#pragma once

#include <filesystem>
#include <string>

#include "support/files.h"

namespace kesp::threads {

// Does natively what the Windows half does: each append is one write at the end of the file, and a file is
// never renamed to a name that is taken. Any thread may use it. The folder goes with it.
class DiskFiles final : public Files {
 public:
  DiskFiles();
  ~DiskFiles() override;

  bool Exists(const std::wstring& path) override;
  std::optional<CalendarDate> LastModified(const std::wstring& path) override;
  bool Append(const std::wstring& path, std::string_view bytes) override;
  bool Rename(const std::wstring& from, const std::wstring& to) override;
  std::wstring TemporaryFolder() override { return {}; }
  std::wstring LibraryFile() override { return {}; }

  // What is in the file of that name; empty when there is none.
  std::string Content(const std::wstring& name) const;
  // Makes a file that was last changed a day ago. Returns that day.
  CalendarDate PutYesterday(const std::wstring& name, const std::string& content);

 private:
  std::string PathOf(const std::wstring& name) const;

  std::filesystem::path folder_;
};

}  // namespace kesp::threads
