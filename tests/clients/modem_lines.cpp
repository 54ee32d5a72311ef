// Reads the record of the modem lines, a file of the system below Wine.
#include "tests/clients/modem_lines.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace kesp::clients {

namespace {

// Wine's drive Z: is the root of that system.
std::string LogFile() {
  const char* path = std::getenv("KESP_MODEM_LINES_LOG");
  if (path == nullptr)
    throw std::runtime_error("KESP_MODEM_LINES_LOG is not set: run this with tools/with-serial-line");
  std::string name = std::string("Z:") + path;
  std::replace(name.begin(), name.end(), '/', '\\');
  return name;
}

// From "<nanoseconds> <terminal> DTR=x RTS=y".
LineChange ChangeFrom(const std::string& line) {
  std::istringstream words(line);
  long long nanoseconds = 0;
  std::string terminal;
  std::string dtr;
  std::string rts;
  if (!(words >> nanoseconds >> terminal >> dtr >> rts))
    throw std::runtime_error("not a change of lines: " + line);
  return {std::chrono::nanoseconds(nanoseconds), dtr == "DTR=1", rts == "RTS=1"};
}

std::string Symbol(const LineChange& change) {
  if (!change.dtr && !change.rts) return "-";
  return std::string(change.dtr ? "D" : "") + (change.rts ? "R" : "");
}

}  // namespace

std::vector<LineChange> LineChanges() {
  std::ifstream log(LogFile());
  if (!log) throw std::runtime_error("the record of the modem lines cannot be read");
  std::vector<LineChange> changes;
  for (std::string line; std::getline(log, line);) changes.push_back(ChangeFrom(line));
  return changes;
}

std::string LineHistory() {
  std::string history;
  for (const LineChange& change : LineChanges()) history += (history.empty() ? "" : " ") + Symbol(change);
  return history;
}

}  // namespace kesp::clients
