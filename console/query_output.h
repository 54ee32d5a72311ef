// How "kesp query" shows replies.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "console/console.h"
#include "console/library.h"
#include "console/options.h"

namespace kesp::console {

struct Reply {
  std::string time;  // when its round began
  std::string command;
  std::string text;                     // bytes as hexadecimal digits
  std::optional<LibraryError> failure;  // in place of the text
  double seconds = 0;
};

class QueryOutput {
 public:
  virtual ~QueryOutput() = default;
  // Each writes at once, but a table writes line by line.
  virtual void Add(const Reply& reply) = 0;
  virtual void EndRound() {}
};

// As the options say. Writes a table's head at once.
std::unique_ptr<QueryOutput> MakeQueryOutput(const QueryOptions& options, Console& console);

}  // namespace kesp::console
