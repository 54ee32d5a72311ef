// Choosing among the registrations as COM does.
#include "console/served_library.h"

#include <algorithm>

#include "console/width_text.h"

namespace kesp::console {
namespace {

const ClassEntry* Find(const Registrations& registrations, const std::string& name, Hive hive) {
  const auto found =
      std::find_if(registrations.classes.begin(), registrations.classes.end(),
                   [&](const ClassEntry& each) { return each.class_name == name && each.hive == hive; });
  return found == registrations.classes.end() ? nullptr : &*found;
}

void AddOnce(std::vector<std::string>& libraries, const std::string& library) {
  const bool known = std::any_of(libraries.begin(), libraries.end(),
                                 [&](const std::string& each) { return IsSamePath(each, library); });
  if (!known) libraries.push_back(library);
}

}  // namespace

ServedLibrary LibraryFor(Client client, const Registrations& registrations) {
  ServedLibrary served;
  for (const std::string& name : PublicClasses()) {
    const ClassEntry* entry = Find(registrations, name, Hive::kThisUser);
    if (entry == nullptr || client == Client::kElevated) entry = Find(registrations, name, Hive::kAllUsers);
    if (entry == nullptr) {
      served.missing.push_back(name);
      continue;
    }
    if (served.IsNone()) served.hive = entry->hive;
    AddOnce(served.libraries, entry->library);
  }
  return served;
}

}  // namespace kesp::console
