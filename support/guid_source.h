// The source of new GUIDs, as a seam.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace kesp {

// A GUID by its fields.
struct GuidFields {
  std::uint32_t data1 = 0;
  std::uint16_t data2 = 0;
  std::uint16_t data3 = 0;
  std::array<std::uint8_t, 8> data4{};
};

class GuidSource {
 public:
  virtual ~GuidSource() = default;

  // A GUID that was never handed out before; empty when the system could not make one.
  virtual std::optional<GuidFields> NewGuid() = 0;
};

}  // namespace kesp
