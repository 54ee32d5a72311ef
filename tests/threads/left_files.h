// What a client's process leaves in its files: whole lines of logs, and a whole settings file.
#pragma once

#include <string>
#include <vector>

namespace kesp::threads {

// The content of a file; empty when there is none.
std::string ContentOf(const std::wstring& path);

// A log, cut into its lines.
struct LogLines {
  std::vector<std::string> messages;  // of the whole lines, in their order
  std::vector<std::string> torn;      // lines without date or tick count, or without their end
};
LogLines LinesOf(const std::string& content);

// What is wrong with a settings file that must have the section of each port from 1 to `ports`, once, with
// one of these addresses and nothing else; empty when nothing is.
std::string FaultOfSettings(const std::string& content, int ports, const std::vector<std::string>& addresses);

}  // namespace kesp::threads
