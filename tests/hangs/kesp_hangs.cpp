// Tries to make the library hang.
//
//   kesp-hangs tcp|discovery|serial|gpib... [--rows REGEX] [--lines FILE] [--list]
//
// Plays the cells of those transports whose names match, one after the other, prints a line for each, and the
// figures. tools/try-to-hang starts it where the peers can be. Ends with 1 when a promise was broken.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <regex>

#include "tests/hangs/report.h"

namespace kesp::hangs {
namespace {

Cells CellsOf(const std::string& transport) {
  if (transport == "tcp") return TcpCells();
  if (transport == "discovery") return DiscoveryCells();
  if (transport == "serial") return SerialCells();
  return GpibCells();
}

int PlayAll(const Cells& cells, const std::string& file) {
  Report report(file);
  const clients::Apartment apartment;
  for (const Cell& cell : cells) {
    Trial trial(cell);
    Play(trial, cell);
    report.Add(cell, trial, false);
    if (!trial.was_timed() || trial.excess() <= kTolerance) continue;
    // Load or fault? By itself it shows.
    Sleep(1000);
    Trial repeated(cell);
    Play(repeated, cell);
    report.Add(cell, repeated, true);
  }
  report.PrintFigures();
  // What the stages expect counts, too.
  return report.IsBroken() || testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed() ? 1 : 0;
}

int Main(int count, char** arguments) {
  testing::InitGoogleTest(&count, arguments);
  Cells cells;
  std::regex rows(".*");
  std::string file;
  bool lists = false;
  for (int i = 1; i < count; ++i) {
    const std::string argument = arguments[i];
    if (argument == "--rows" && i + 1 < count) {
      rows = std::regex(arguments[++i]);
    } else if (argument == "--lines" && i + 1 < count) {
      file = arguments[++i];
    } else if (argument == "--list") {
      lists = true;
    } else {
      Cells more = CellsOf(argument);
      cells.insert(cells.end(), more.begin(), more.end());
    }
  }
  std::erase_if(cells, [&](const Cell& cell) { return !std::regex_search(cell.Name(), rows); });
  if (!lists) return PlayAll(cells, file);
  for (const Cell& cell : cells) std::printf("%s\n", cell.Name().c_str());
  return 0;
}

}  // namespace
}  // namespace kesp::hangs

int main(int count, char** arguments) {
  return kesp::hangs::Main(count, arguments);
}
