// The identifiers of the public classes.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace kesp::console {

struct PublicClass {
  std::string name;
  CLSID clsid;
};

// Those of PublicClasses(), in the same order.
const std::vector<PublicClass>& PublicClassesWithIds();

// "{9D26351A-7038-400C-AC56-5534C107E580}"
std::string GuidText(REFGUID guid);

}  // namespace kesp::console
