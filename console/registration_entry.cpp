// The classes that clients can create.
#include "console/registration_entry.h"

namespace kesp::console {

const std::vector<std::string>& PublicClasses() {
  static const std::vector<std::string> names = {"CKespCommObj", "CKespCOMPort3", "CKespTCP",
                                                 "CKespIEEE",    "CInstrument",   "CInstruments"};
  return names;
}

}  // namespace kesp::console
