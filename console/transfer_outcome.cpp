// Aborted, failed or complete.
#include "console/transfer_outcome.h"

#include <utility>

namespace kesp::console {

Transfer TransferOf(std::string bytes, bool aborted, const std::optional<LibraryError>& told,
                    bool is_complete) {
  // A port that was closed to end the transfer has failed, too, which is no news.
  if (aborted) return {std::move(bytes), true, std::nullopt};
  std::optional<LibraryError> failure = told;
  if (!failure && !is_complete)
    failure = LibraryError("", "CKespCOMPort3 - Download()", "The transfer did not reach its end");
  if (failure && bytes.empty()) throw LibraryError(*failure);
  return {std::move(bytes), false, failure};
}

}  // namespace kesp::console
