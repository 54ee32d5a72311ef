// The matrix as it is printed: a line for each cell, and the figures.
#pragma once

#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "tests/hangs/trial.h"

namespace kesp::hangs {

class Report {
 public:
  // Into that file, or to the standard output. The lines appear as they are printed.
  explicit Report(const std::string& file);

  // A cell was played; `again` says that it was its second time, because the first one exceeded the limit.
  void Add(const Cell& cell, const Trial& trial, bool again);

  void PrintFigures() const;

  // Whether a promise was broken: an excess that shows again when the cell is repeated, a stale reply, an
  // object that did not work again, a result that is not specified.
  bool IsBroken() const { return broken_ > 0; }

 private:
  struct Worst {
    Milliseconds excess = Milliseconds::min();
    std::string cell;
  };

  void Print(const std::string& line) const;
  void NoteWorst(const Cell& cell, const Trial& trial);

  std::FILE* out_;
  std::map<std::string, Worst> worst_;
  // Those that exceeded the limit the first time and kept it the second.
  std::vector<std::string> spared_;
  std::vector<std::string> failures_;
  int cells_ = 0;
  int stale_ = 0;
  int announced_ = 0;
  int dead_ = 0;
  int without_limit_ = 0;
  int broken_ = 0;
};

// More than this, and the promise is broken.
inline constexpr Milliseconds kTolerance{100};

}  // namespace kesp::hangs
