// Reads a file that another program may be writing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace kesp::console {

class FilePieces {
 public:
  virtual ~FilePieces() = default;
  // In bytes; nothing while there is no such file.
  virtual std::optional<std::uint64_t> Size() = 0;
  // Up to so many bytes from that place; fewer at the end of the file, none while there is no such
  // file. Throws std::runtime_error when the file cannot be read.
  virtual std::string Read(std::uint64_t place, std::size_t most) = 0;
};

// The file of this path in UTF-8. It is open during each call only: on Windows the library could not give an
// open file another name, as it does with its trace at midnight.
class FileOnDisk : public FilePieces {
 public:
  explicit FileOnDisk(std::string path) : path_(std::move(path)) {}
  std::optional<std::uint64_t> Size() override;
  std::string Read(std::uint64_t place, std::size_t most) override;

 private:
  std::string path_;
};

}  // namespace kesp::console
