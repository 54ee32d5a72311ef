// Public classes and their identifiers.
#include "console/public_classes_win.h"

#include <objbase.h>

#include <array>

#include "KespCommObj.h"
#include "console/wide_text_win.h"

namespace kesp::console {

const std::vector<PublicClass>& PublicClassesWithIds() {
  static const std::vector<PublicClass> classes = {
      {"CKespCommObj", __uuidof(::CKespCommObj)}, {"CKespCOMPort3", __uuidof(::CKespCOMPort3)},
      {"CKespTCP", __uuidof(::CKespTCP)},         {"CKespIEEE", __uuidof(::CKespIEEE)},
      {"CInstrument", __uuidof(::CInstrument)},   {"CInstruments", __uuidof(::CInstruments)},
  };
  return classes;
}

std::string GuidText(REFGUID guid) {
  std::array<wchar_t, 40> text{};
  StringFromGUID2(guid, text.data(), static_cast<int>(text.size()));
  return ToUtf8(text.data());
}

}  // namespace kesp::console
