// The file seam over a folder of its own.
#include "tests/threads/disk_files.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <fstream>
#include <iterator>

namespace kesp::threads {
namespace {

CalendarDate DayOf(time_t time) {
  tm local{};
  localtime_r(&time, &local);
  return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday};
}

}  // namespace

DiskFiles::DiskFiles() {
  std::string folder = (std::filesystem::temp_directory_path() / "kesp-threads-XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) std::abort();
  folder_ = folder;
}

DiskFiles::~DiskFiles() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

std::string DiskFiles::PathOf(const std::wstring& name) const {
  return (folder_ / std::string(name.begin(), name.end())).string();
}

bool DiskFiles::Exists(const std::wstring& path) {
  return access(PathOf(path).c_str(), F_OK) == 0;
}

std::optional<CalendarDate> DiskFiles::LastModified(const std::wstring& path) {
  struct stat status {};
  if (stat(PathOf(path).c_str(), &status) != 0) return std::nullopt;
  return DayOf(status.st_mtime);
}

bool DiskFiles::Append(const std::wstring& path, std::string_view bytes) {
  const int file = open(PathOf(path).c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
  if (file < 0) return false;
  const bool written = write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
  close(file);
  return written;
}

// Fails where there is a file of that name.
bool DiskFiles::Rename(const std::wstring& from, const std::wstring& to) {
  return renameat2(AT_FDCWD, PathOf(from).c_str(), AT_FDCWD, PathOf(to).c_str(), RENAME_NOREPLACE) == 0;
}

std::string DiskFiles::Content(const std::wstring& name) const {
  std::ifstream file(PathOf(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

CalendarDate DiskFiles::PutYesterday(const std::wstring& name, const std::string& content) {
  std::ofstream(PathOf(name), std::ios::binary) << content;
  const time_t yesterday = time(nullptr) - 24 * 60 * 60;
  const timespec times[2] = {{yesterday, 0}, {yesterday, 0}};
  utimensat(AT_FDCWD, PathOf(name).c_str(), times, 0);
  return DayOf(yesterday);
}

}  // namespace kesp::threads
