// What came of trying out a library.
#pragma once

#include <string>
#include <vector>

namespace kesp::console {

struct Trial {
  std::string what;   // "CKespTCP"
  std::string error;  // empty: it went well
};

struct LibraryReport {
  std::string error;           // why the library cannot be loaded at all; empty: the rest holds
  std::vector<Trial> classes;  // each public class created
  Trial type_library;          // loaded, and compared with that in the library's own file
  Trial event;                 // a receiver of events connected and disconnected
};

// The answer of the kesp.exe of the other width.
struct OtherProgram {
  std::string path;    // where it is, or should be; empty: there is no place for one
  bool found = false;  // the file is there
  std::string output;  // empty: it could not be started, or did not answer
};

}  // namespace kesp::console
