// Reading the entries of both hives, in the view of either width.
#include "console/registrations_win.h"

#include "KespCommObj.h"
#include "console/program_folders_win.h"
#include "console/public_classes_win.h"
#include "console/registry_win.h"

namespace kesp::console {
namespace {

constexpr const char* kClasses = "Software\\Classes\\";

struct Root {
  Hive hive;
  HKEY key;
};
// A user's own entries go first.
const Root kRoots[] = {{Hive::kThisUser, HKEY_CURRENT_USER}, {Hive::kAllUsers, HKEY_LOCAL_MACHINE}};

std::string TypeLibrary(int bits, REGSAM view) {
  const std::string key =
      kClasses + ("TypeLib\\" + GuidText(LIBID_KespCommObj)) + "\\1.0\\0\\win" + std::to_string(bits);
  for (const Root& root : kRoots) {
    const std::string path = RegistryKeyWin(root.key, key, view).Text();
    if (!path.empty()) return path;
  }
  return "";
}

// A path may stand in quotation marks.
std::string WithoutMarks(const std::string& path) {
  return path.size() > 2 && path.front() == '"' ? path.substr(1, path.size() - 2) : path;
}

}  // namespace

Registrations ReadRegistrations(int bits) {
  Registrations found;
  if (bits != kProgramBits && !RunsBothWidths()) return found;
  const REGSAM view = ViewOf(bits);
  for (const Root& root : kRoots) {
    for (const PublicClass& each : PublicClassesWithIds()) {
      const std::string key = kClasses + ("CLSID\\" + GuidText(each.clsid)) + "\\InprocServer32";
      const std::string library = RegistryKeyWin(root.key, key, view).Text();
      if (!library.empty()) found.classes.push_back({root.hive, each.name, WithoutMarks(library)});
    }
  }
  found.type_library = TypeLibrary(bits, view);
  return found;
}

}  // namespace kesp::console
