// Takes a text apart by fixed words.
#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace kesp::console {

// What stands behind the prefix; nothing where the text does not begin so.
inline std::optional<std::string_view> Behind(std::string_view text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return std::nullopt;
  return text.substr(prefix.size());
}

// What stands between prefix and suffix; nothing where one is missing.
inline std::optional<std::string_view> Within(std::string_view text, std::string_view prefix,
                                              std::string_view suffix) {
  if (text.size() < prefix.size() + suffix.size()) return std::nullopt;
  if (!text.starts_with(prefix) || !text.ends_with(suffix)) return std::nullopt;
  return text.substr(prefix.size(), text.size() - prefix.size() - suffix.size());
}

// The whole number with which the text begins.
inline std::optional<long long> LeadingNumber(std::string_view text) {
  long long number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc()) return std::nullopt;
  return number;
}

}  // namespace kesp::console
