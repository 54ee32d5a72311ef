// Reads a file that another program may be writing, by the C++ library.
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include "console/file_pieces.h"
#include "console/utf8_path.h"

namespace kesp::console {

std::optional<std::uint64_t> FileOnDisk::Size() {
  std::error_code error;
  const std::filesystem::path path = PathOf(path_);
  if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (error) return std::nullopt;
  return size;
}

std::string FileOnDisk::Read(std::uint64_t place, std::size_t most) {
  std::ifstream file(PathOf(path_), std::ios::binary);
  if (!file && !Size()) return "";
  if (!file) throw std::runtime_error(path_ + " cannot be read");
  file.seekg(static_cast<std::streamoff>(place));
  std::string bytes(most, '\0');
  file.read(bytes.data(), static_cast<std::streamsize>(most));
  if (file.bad()) throw std::runtime_error(path_ + " cannot be read");
  bytes.resize(static_cast<std::size_t>(file.gcount()));
  return bytes;
}

}  // namespace kesp::console
