// What an instrument answered to one command, as often as a trace tells.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "console/exchange.h"

namespace kesp::console {

struct HeardAnswer {
  std::optional<std::string> bytes;  // with their line end; nothing: no answer
  std::vector<std::uint32_t> delays_ms;
  bool is_whole = true;
  bool was_closed = false;  // the instrument closed the connection
  bool Matches(const HeardAnswer& other) const;
  // The one in the middle; 0 where none was measured.
  std::uint32_t MedianDelayMs() const;
};

class HeardAnswers {
 public:
  void Add(const Exchange& exchange);

  // In their order, as short as they are told: where they come round again, once, with all delays.
  std::vector<HeardAnswer> InTurn() const;
  // How many were not kept.
  std::size_t left_out() const { return left_out_; }

 private:
  std::vector<HeardAnswer> answers_;
  std::size_t left_out_ = 0;
};

}  // namespace kesp::console
