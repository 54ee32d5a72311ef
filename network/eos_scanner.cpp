// The incremental search for the end-of-string text.
#include "network/eos_scanner.h"

#include <utility>

#include "support/text.h"

namespace kesp {

namespace {

std::vector<std::size_t> Borders(const std::string& pattern) {
  std::vector<std::size_t> borders(pattern.size(), 0);
  std::size_t length = 0;
  for (std::size_t i = 1; i < pattern.size(); ++i) {
    while (length > 0 && pattern[i] != pattern[length]) length = borders[length - 1];
    if (pattern[i] == pattern[length]) ++length;
    borders[i] = length;
  }
  return borders;
}

}  // namespace

void EosScanner::LookFor(const std::wstring& text) {
  std::string pattern = SystemCodePage().ToExactBytes(text).value_or(std::string());
  if (pattern == pattern_) return;
  borders_ = Borders(pattern);
  pattern_ = std::move(pattern);
  Restart();
}

bool EosScanner::FoundIn(std::string_view received) {
  if (received.size() < searched_) Restart();
  if (found_ || pattern_.empty()) return found_;
  searched_ = Advance(received);
  found_ = matched_ == pattern_.size();
  return found_;
}

// Looks on until the pattern is complete or the bytes end; returns how many bytes have been looked at.
std::size_t EosScanner::Advance(std::string_view received) {
  std::size_t at = searched_;
  while (at < received.size() && matched_ < pattern_.size()) {
    if (matched_ == 0) {
      // The library's search for one byte is many times faster than the steps below.
      at = received.find(pattern_[0], at);
      if (at == std::string_view::npos) return received.size();
    }
    while (matched_ > 0 && received[at] != pattern_[matched_]) matched_ = borders_[matched_ - 1];
    if (received[at] == pattern_[matched_]) ++matched_;
    ++at;
  }
  return at;
}

void EosScanner::Restart() {
  searched_ = 0;
  matched_ = 0;
  found_ = false;
}

}  // namespace kesp
