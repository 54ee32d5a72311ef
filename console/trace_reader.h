// Reads a trace, which may grow meanwhile, line by line.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "console/file_pieces.h"
#include "console/trace_line.h"

namespace kesp::console {

class TraceReader {
 public:
  explicit TraceReader(FilePieces& file) : file_(file) {}

  enum class Outcome {
    kMore,     // a piece was read
    kEnd,      // nothing more is there now
    kReplaced  // there is another file of that name, or it was cut: it is read from its beginning
  };
  using OnLine = std::function<void(const TraceLine&)>;

  // Reads the next piece. At the end all lines but the last one have been handed out.
  Outcome Read(const OnLine& on_line);
  // Hands out the last line, too: any, or one with its line end.
  void HandOutLast(TraceLines::Ending ending, const OnLine& on_line);

  bool HasLines() const { return has_lines_; }
  std::uint64_t Place() const { return place_; }

 private:
  bool IsReplaced();

  FilePieces& file_;
  TraceLines lines_;
  std::uint64_t place_ = 0;
  std::string beginning_;  // of the file, by which it is known again
  bool has_lines_ = false;
};

}  // namespace kesp::console
