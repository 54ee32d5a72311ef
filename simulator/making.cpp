// Errors of the system that say what could not be done.
#include "simulator/making.h"

#include <asio/error.hpp>

#include "simulator/platform.h"

namespace kesp::simulator {
namespace {

// The usual ones in the same words on every system, because some systems have no text for theirs.
std::string ReasonOf(const std::error_code& error) {
  if (error.value() == asio::error::address_in_use) return "the port is in use";
  if (error.value() == kAddressNotAvailable) return "this machine has no such address";
  // Asio has a category of its own, which knows no conditions.
  const std::error_code system(error.value(), std::system_category());
  const bool is_denied =
      system == std::errc::permission_denied || error.value() == asio::error::access_denied;
  if (is_denied) return "access is denied, or another program has it";
  if (system == std::errc::no_such_file_or_directory) return "there is no such port or path";
  if (system == std::errc::file_exists) return "something else has that name";
  return system.message();
}

}  // namespace

CannotError::CannotError(const std::string& what, const std::error_code& error)
    : std::runtime_error(what + ": " + ReasonOf(error)) {}

}  // namespace kesp::simulator
