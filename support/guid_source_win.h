// New GUIDs from the system.
#pragma once

#include "support/guid_source.h"

namespace kesp {

class GuidSourceWin final : public GuidSource {
 public:
  // CoCreateGuid; needs no initialised apartment.
  std::optional<GuidFields> NewGuid() override;
};

}  // namespace kesp
