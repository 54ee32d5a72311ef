// Trying out the library through COM.
#pragma once

#include <string>

#include "console/library_report.h"

namespace kesp::console {

// The library in that file, which is loaded and asked for its classes directly. COM is initialised on this
// thread.
LibraryReport ExamineLibrary(const std::string& path);

// The registered one. path: the file that the registry names for it.
LibraryReport ExamineRegisteredLibrary(const std::string& path);

}  // namespace kesp::console
