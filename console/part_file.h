// A file that is there when it is whole, and not before.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace kesp::console {

// Writes into NAME.part, which becomes NAME when it is whole. Throws std::runtime_error with the name and the
// reason.
class PartFile {
 public:
  // name: in UTF-8. That NAME.part can be written is tried at once, and leaves none behind. What an earlier
  // one kept stays until it is written to.
  explicit PartFile(const std::string& name);
  PartFile(const PartFile&) = delete;
  PartFile& operator=(const PartFile&) = delete;

  // The whole content; replaces a file of that name. When the disk is full, nothing is left behind.
  void Complete(std::string_view content);
  // Leaves a part in NAME.part, and returns that name.
  std::string Keep(std::string_view content);
  // The same, told to the user; "nothing had come" where there is nothing to keep.
  std::string KeepAndTell(std::string_view content);

 private:
  void Write(std::string_view content);

  std::string name_;
  std::filesystem::path whole_;
  std::filesystem::path part_;
};

}  // namespace kesp::console
