// When the exchanges of a trace began, for "--since".
#pragma once

#include <optional>
#include <string>

#include "console/exchange.h"
#include "console/file_pieces.h"
#include "console/regional_time.h"

namespace kesp::console {

class SinceFilter {
 public:
  // since: as the user wrote it. Looks at the beginning and the end of the file for the order of day, month
  // and year. Throws UsageError where the text is no time, std::runtime_error where the trace's dates cannot
  // be read.
  SinceFilter(const std::string& since, FilePieces& file, LocalSeconds now);

  bool Includes(const Exchange& exchange);
  // What the user should know about the dates; empty where they were clear.
  const std::string& doubt() const { return doubt_; }

 private:
  DateOrder order_ = DateOrder::kMonthFirst;
  LocalSeconds since_ = 0;
  std::string doubt_;
  std::string last_when_;
  bool last_included_ = false;
};

}  // namespace kesp::console
