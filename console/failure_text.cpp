// Description, status and source of a failure.
#include "console/failure_text.h"

namespace kesp::console {

std::string FailureText(const LibraryError& error) {
  std::string details = error.status();
  if (!error.source().empty()) details += (details.empty() ? "" : ", ") + error.source();
  return error.what() + (details.empty() ? "" : " (" + details + ")");
}

}  // namespace kesp::console
