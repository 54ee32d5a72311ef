// The mistakes of a description, collected so that all are told at once.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace kesp::simulator {

class Problems {
 public:
  // place: the member as a path within the file, "/commands/MEAS?/0"; "" is the whole file.
  void Add(const std::string& file, std::size_t line, const std::string& place, const std::string& what);

  // Throws DescriptionError with what was added, in the order of files and lines; nothing when there is none.
  void ThrowIfAny() const;

 private:
  struct Problem {
    std::string file;
    std::size_t line;
    std::string text;
  };
  std::vector<Problem> problems_;
};

}  // namespace kesp::simulator
