// The mistakes of a description, collected so that all are told at once.
#include "simulator/problems.h"

#include <algorithm>

#include "simulator/description_error.h"

namespace kesp::simulator {

void Problems::Add(const std::string& file, std::size_t line, const std::string& place,
                   const std::string& what) {
  problems_.push_back({file, line, (place.empty() ? "/" : place) + ": " + what});
}

void Problems::ThrowIfAny() const {
  if (problems_.empty()) return;
  std::vector<Problem> sorted = problems_;
  std::stable_sort(sorted.begin(), sorted.end(), [](const Problem& left, const Problem& right) {
    return left.file == right.file && left.line < right.line;
  });
  std::string text;
  for (const Problem& problem : sorted) {
    if (!text.empty()) text += '\n';
    text += problem.file + ":" + std::to_string(problem.line) + ": " + problem.text;
  }
  throw DescriptionError(text);
}

}  // namespace kesp::simulator
