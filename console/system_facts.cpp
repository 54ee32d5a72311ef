// The names of Windows.
#include "console/system_facts.h"

namespace kesp::console {

std::string WindowsName(std::string product, const std::string& release, int build) {
  constexpr int kFirstBuildOf11 = 22000;
  const std::string ten = "Windows 10";
  if (build >= kFirstBuildOf11 && product.starts_with(ten)) product.replace(0, ten.size(), "Windows 11");
  return product + (release.empty() ? "" : " " + release) + ", build " + std::to_string(build);
}

}  // namespace kesp::console
