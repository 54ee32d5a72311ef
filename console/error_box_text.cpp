// From the text of a box to a failure.
#include "console/error_box_text.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "console/text_pieces.h"

namespace kesp::console {
namespace {

constexpr std::string_view kBeginning = "Error: ";
constexpr std::string_view kLineEnds = "\r\n";

std::string_view FirstLine(std::string_view text) {
  return text.substr(0, text.find_first_of(kLineEnds));
}

// Of the line in parentheses behind the description; empty where there is none.
std::string_view SourceIn(std::string_view text) {
  if (text.starts_with('\r')) text.remove_prefix(1);
  const std::string_view line = FirstLine(Behind(text, "\n(").value_or(""));
  const std::size_t end = line.rfind(')');
  return end == std::string_view::npos ? "" : line.substr(0, end);
}

// The length of the whole number with which the text begins; 0 where there is none.
std::size_t LengthOfNumber(std::string_view text) {
  const std::size_t sign = text.starts_with('-') ? 1 : 0;
  const std::size_t end = std::min(text.find_first_not_of("0123456789", sign), text.size());
  return end > sign ? end : 0;
}

}  // namespace

LibraryError ErrorOfBox(std::string_view text) {
  for (std::size_t place = 0; (place = text.find(kBeginning, place)) != std::string_view::npos;) {
    place += kBeginning.size();
    const std::string_view number = text.substr(place, LengthOfNumber(text.substr(place)));
    const auto told = Behind(text.substr(place + number.size()), " - ");
    if (number.empty() || !told) continue;
    const std::string_view description = FirstLine(*told);
    return {"error " + std::string(number), std::string(SourceIn(told->substr(description.size()))),
            std::string(description)};
  }
  return {"", "", std::string(text)};
}

}  // namespace kesp::console
