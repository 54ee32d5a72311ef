// Failures of the port by their descriptions, since the status of an operation tells only at which step it
// failed.
#include "console/port_hint.h"

#include <string_view>

#include "console/more_at.h"

namespace kesp::console {
namespace {

struct Hint {
  std::string_view source;  // with what it begins; empty: any
  std::string_view description;
  const char* text;
  const char* place;
};

constexpr Hint kHints[] = {
    {"CKespCOMPort3 - OpenPort()", "The device is not open",
     "The port cannot be opened: \"kesp ports\" tells whose it is; plug its adapter in again",
     "no-answer.md#the-port-is-not-there-or-gone"},
    {"", "Error reading comm device",
     "The port gives nothing any more: plug the adapter in again, and send the command again",
     "no-answer.md#the-port-is-not-there-or-gone"},
    {"", "The device is not open",
     "The port takes nothing any more: plug the adapter in again, and send the command again",
     "no-answer.md#the-port-is-not-there-or-gone"},
    {"", "Invalid port number",
     "There is no such port now: plug the adapter in again; \"kesp ports\" lists those that there are",
     "no-answer.md#the-port-is-not-there-or-gone"},
    {"", "Port already open", "Another program holds the port: close it there", "no-answer.md#access-denied"},
};

}  // namespace

std::string PortHint(const LibraryError& error) {
  for (const Hint& hint : kHints) {
    if (hint.description == error.what() && error.source().starts_with(hint.source))
      return hint.text + MoreAt(hint.place) + ".";
  }
  return "";
}

}  // namespace kesp::console
