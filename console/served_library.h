// Which library a client gets for the public classes.
#pragma once

#include <string>
#include <vector>

#include "console/registration_entry.h"

namespace kesp::console {

enum class Client { kOrdinary, kElevated };

struct ServedLibrary {
  std::vector<std::string> libraries;  // each file that a class is loaded from; more than one is a fault
  std::vector<std::string> missing;    // the classes without one
  Hive hive = Hive::kAllUsers;         // where the first one is registered

  bool IsNone() const { return libraries.empty(); }
};

// A user's own classes go before those of all users. To a program that runs as administrator they do not
// exist.
ServedLibrary LibraryFor(Client client, const Registrations& registrations);

}  // namespace kesp::console
