// The file system in memory: what its operations do, and how they are made to fail.
#include "support/files_fake.h"

#include <new>
#include <utility>

namespace kesp {

FilesFake::FilesFake(Clock& clock) : clock_(clock) {}

FilesFake::~FilesFake() = default;

bool FilesFake::Exists(const std::wstring& path) {
  return !Refused(Operation::kExists) && files_.contains(path);
}

std::optional<CalendarDate> FilesFake::LastModified(const std::wstring& path) {
  if (Refused(Operation::kLastModified) || !files_.contains(path)) return std::nullopt;
  return files_.at(path).modified;
}

bool FilesFake::Append(const std::wstring& path, std::string_view bytes) {
  if (Refused(Operation::kAppend) || path.empty()) return false;
  on_append_(path, bytes);
  File& file = files_[path];
  file.content += bytes;
  file.modified = clock_.Today();
  return true;
}

bool FilesFake::Rename(const std::wstring& from, const std::wstring& to) {
  if (Refused(Operation::kRename) || !files_.contains(from) || files_.contains(to)) return false;
  std::wstring key = to;  // before anything is changed
  auto node = files_.extract(from);
  node.key() = std::move(key);
  files_.insert(std::move(node));
  return true;
}

std::wstring FilesFake::TemporaryFolder() {
  return Refused(Operation::kTemporaryFolder) ? L"" : temporary_folder_;
}

std::wstring FilesFake::LibraryFile() {
  return Refused(Operation::kLibraryFile) ? L"" : library_file_;
}

void FilesFake::Refuse(Operation operation) {
  refused_.insert(operation);
}

void FilesFake::OnAppend(std::function<void(const std::wstring&, std::string_view)> action) {
  on_append_ = std::move(action);
}

void FilesFake::Put(const std::wstring& path, const std::string& content, const CalendarDate& modified) {
  files_[path] = {content, modified};
}

std::string FilesFake::Content(const std::wstring& path) const {
  const auto found = files_.find(path);
  return found == files_.end() ? std::string() : found->second.content;
}

bool FilesFake::Refused(Operation operation) {
  if (!faults.IsFailing()) return refused_.contains(operation);
  if (!answers_failure) throw std::bad_alloc();
  return true;
}

}  // namespace kesp
