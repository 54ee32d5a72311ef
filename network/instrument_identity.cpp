// Taking an identity apart.
#include "network/instrument_identity.h"

namespace kesp {

std::optional<InstrumentIdentity> IdentityIn(const std::wstring& answer) {
  const std::size_t first = answer.find(L',');
  if (first == std::wstring::npos) return std::nullopt;
  const std::size_t second = answer.find(L',', first + 1);
  if (second == std::wstring::npos) return std::nullopt;
  const std::size_t third = answer.find(L',', second + 1);
  return InstrumentIdentity{.model = answer.substr(first + 1, second - first - 1),
                            .serial = answer.substr(second + 1, third - second - 1)};
}

}  // namespace kesp
