// The mistakes of a description, collected so that all are told at once.
#include "simulator/problems.h"

#include <algorithm>
#include <utility>

#include "simulator/description_error.h"

namespace kesp::simulator {

void Problems::Add(const std::string& file, std::size_t line, const std::string& place,
                   const std::string& what) {
  problems_.push_back({file, line, (place.empty() ? "/" : place) + ": " + what});
}

void Problems::ThrowIfAny() const {
  if (problems_.empty()) return;
  std::vector<Problem> sorted = problems_;
  // By files in the order of their first mistakes.
  const auto rank = [this](const Problem& problem) {
    const auto first = std::find_if(problems_.begin(), problems_.end(),
                                    [&problem](const Problem& other) { return other.file == problem.file; });
    return std::pair(first - problems_.begin(), problem.line);
  };
  std::stable_sort(sorted.begin(), sorted.end(),
                   [&rank](const Problem& left, const Problem& right) { return rank(left) < rank(right); });
  std::string text;
  for (const Problem& problem : sorted) {
    if (!text.empty()) text += '\n';
    text += problem.file + ":" + std::to_string(problem.line) + ": " + problem.text;
  }
  throw DescriptionError(text);
}

}  // namespace kesp::simulator
