// Writing a file under another name first.
#include "console/part_file.h"

#include <cerrno>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include "console/counted.h"
#include "console/utf8_path.h"

namespace kesp::console {
namespace {

[[noreturn]] void Refuse(const std::string& name, const std::error_code& reason) {
  throw std::runtime_error(name + " cannot be written: " + reason.message());
}

std::error_code LastError() {
  return {errno == 0 ? EIO : errno, std::generic_category()};
}

}  // namespace

PartFile::PartFile(const std::string& name)
    : name_(name), whole_(PathOf(name)), part_(PathOf(name + ".part")) {
  if (is_directory(whole_)) Refuse(name, std::make_error_code(std::errc::is_a_directory));
  errno = 0;
  if (!std::ofstream(part_, std::ios::binary | std::ios::app)) Refuse(name, LastError());
  std::error_code ignored;
  if (file_size(part_, ignored) == 0) remove(part_, ignored);
}

void PartFile::Complete(std::string_view content) {
  Write(content);
  std::error_code error;
  rename(part_, whole_, error);
  if (error) {
    throw std::runtime_error(name_ + " cannot be written: " + error.message() + "; all is in " + name_ +
                             ".part");
  }
}

std::string PartFile::Keep(std::string_view content) {
  Write(content);
  return name_ + ".part";
}

std::string PartFile::KeepAndTell(std::string_view content) {
  if (content.empty()) return "nothing had come";
  const bool is_one = content.size() == 1;
  return "the " + Counted(static_cast<std::int64_t>(content.size()), "byte") + " that had come " +
         (is_one ? "is in " : "are in ") + Keep(content);
}

void PartFile::Write(std::string_view content) {
  errno = 0;
  std::ofstream file(part_, std::ios::binary | std::ios::trunc);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  file.close();
  if (file) return;
  const std::error_code reason = LastError();
  std::error_code ignored;
  remove(part_, ignored);
  Refuse(name_, reason);
}

}  // namespace kesp::console
