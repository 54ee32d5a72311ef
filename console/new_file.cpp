// Writes a file that is not there yet.
#include "console/new_file.h"

#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "console/part_file.h"
#include "console/utf8_path.h"

namespace kesp::console {

void RequireNewFile(const std::string& name) {
  std::error_code ignored;
  if (exists(symlink_status(PathOf(name), ignored))) throw std::runtime_error(name + " is there already");
}

void WriteNewFile(const std::string& name, std::string_view content) {
  RequireNewFile(name);
  PartFile(name).Complete(content);
}

}  // namespace kesp::console
