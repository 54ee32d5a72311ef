// Description, status and source of a failure.
#include "console/failure_text.h"

namespace kesp::console {

std::string FailureText(const LibraryError& error) {
  std::string text = std::string(error.what()) + " (" + error.status();
  if (!error.source().empty()) text += ", " + error.source();
  return text + ")";
}

}  // namespace kesp::console
