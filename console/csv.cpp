// Lines of comma-separated values.
#include "console/csv.h"

namespace kesp::console {
namespace {

std::string Field(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) quoted += c == '"' ? "\"\"" : std::string(1, c);
  return quoted + '"';
}

}  // namespace

std::string CsvOf(const std::vector<std::string>& fields) {
  std::string line;
  for (const std::string& field : fields) line += (&field == &fields.front() ? "" : ",") + Field(field);
  return line + "\r\n";
}

}  // namespace kesp::console
