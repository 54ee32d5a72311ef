// A file system in memory that can be made to fail.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "support/clock.h"
#include "support/failing_call_fake.h"
#include "support/files.h"

namespace kesp {

// Appending dates a file with the clock's present day. Paths are compared as they are written.
class FilesFake final : public Files {
 public:
  struct File {
    std::string content;
    CalendarDate modified;
  };

  // The operations that Refuse can make fail.
  enum class Operation { kExists, kLastModified, kAppend, kRename, kTemporaryFolder, kLibraryFile };

  explicit FilesFake(Clock& clock);
  ~FilesFake() override;

  bool Exists(const std::wstring& path) override;
  std::optional<CalendarDate> LastModified(const std::wstring& path) override;
  bool Append(const std::wstring& path, std::string_view bytes) override;
  bool Rename(const std::wstring& from, const std::wstring& to) override;
  std::wstring TemporaryFolder() override;
  std::wstring LibraryFile() override;

  // From now on the operation fails as its contract says.
  void Refuse(Operation operation);

  // A failing call does nothing and throws std::bad_alloc or, with answers_failure, fails as its contract
  // says.
  FailingCallFake faults;
  bool answers_failure = false;

  // Told the path and the bytes of everything that is appended from now on.
  void OnAppend(std::function<void(const std::wstring&, std::string_view)> action);

  void SetLibraryFile(const std::wstring& path) { library_file_ = path; }
  void SetTemporaryFolder(const std::wstring& path) { temporary_folder_ = path; }

  // Makes a file, or replaces one.
  void Put(const std::wstring& path, const std::string& content, const CalendarDate& modified);

  // What is on the disk.
  const std::map<std::wstring, File>& files() const { return files_; }

  // The content of a file; empty when there is none.
  std::string Content(const std::wstring& path) const;

 private:
  // Counts a call. Whether it is refused.
  bool Refused(Operation operation);

  Clock& clock_;
  std::map<std::wstring, File> files_;
  std::set<Operation> refused_;
  std::wstring library_file_ = L"C:\\Kesp\\KespCommObj.dll";
  std::wstring temporary_folder_ = L"C:\\Temp\\";
  std::function<void(const std::wstring&, std::string_view)> on_append_ = [](const std::wstring&,
                                                                             std::string_view) {};
};

}  // namespace kesp
