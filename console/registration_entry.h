// What the registry holds about the library.
#pragma once

#include <string>
#include <vector>

namespace kesp::console {

enum class Hive { kAllUsers, kThisUser };

// A class, with the file that is loaded for it.
struct ClassEntry {
  Hive hive;
  std::string class_name;  // "CKespTCP"
  std::string library;     // InprocServer32
};

struct Registrations {
  std::vector<ClassEntry> classes;
  // The type library's file for this width; empty: not registered.
  std::string type_library;
};

// The classes that clients can create.
const std::vector<std::string>& PublicClasses();

}  // namespace kesp::console
