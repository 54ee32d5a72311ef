// Aligned columns.
#include "console/table.h"

#include <algorithm>

#include "console/utf8_character.h"

namespace kesp::console {
namespace {

constexpr std::size_t kGap = 2;

std::vector<std::size_t> Widths(const std::vector<TableRow>& rows) {
  std::vector<std::size_t> widths;
  for (const TableRow& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], CharactersIn(row[i]));
  }
  return widths;
}

}  // namespace

std::string TableOf(const std::vector<TableRow>& rows) {
  const std::vector<std::size_t> widths = Widths(rows);
  std::string table;
  for (const TableRow& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i)
      line += row[i] + std::string(widths[i] - CharactersIn(row[i]) + kGap, ' ');
    line.erase(line.find_last_not_of(' ') + 1);
    table += line + "\n";
  }
  return table;
}

}  // namespace kesp::console
