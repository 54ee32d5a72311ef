// Which region it is.
#include "tests/locales/region.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

namespace kesp::clients {

const Region& TheRegion() {
  const char* locale = std::getenv("LC_ALL");
  for (const Region& region : kRegions) {
    if (locale != nullptr && std::strcmp(locale, region.locale) == 0) return region;
  }
  ADD_FAILURE() << "not started in one of the regions: " << (locale ? locale : "none");
  return kRegions.front();
}

}  // namespace kesp::clients
