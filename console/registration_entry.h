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

struct FileFacts {
  int bits = 0;         // 64 or 32; 0: no program file of either
  std::string version;  // empty: it has none
  std::string content;  // a number that other files with the same bytes have, too
};

// The classes that clients can create.
const std::vector<std::string>& PublicClasses();

}  // namespace kesp::console
