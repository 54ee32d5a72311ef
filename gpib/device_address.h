// Where a device is on the bus.
#pragma once

#include <cstdint>
#include <functional>

namespace kesp {

// Five bits address a device on the bus; 31 is the code of "unlisten" and "untalk" (IEEE 488.1).
inline constexpr std::int16_t kHighestDeviceAddress = 30;

struct DeviceAddress {
  std::int16_t board = 0;      // index of the interface board
  std::int16_t primary = 1;    // 1 to 30
  std::int16_t secondary = 0;  // 1 to 30 as the driver is to get it, 0 for none
};

// Throws ERR_INVALID_BOARD_INDEX for a negative board, ERR_INVALID_PRIMARY_ADDRESS below 1 and
// ERR_INVALID_SECONDARY_ADDRESS below 0, with the source of Initialize; tells `log` of each check before it
// is made.
void CheckDeviceAddress(const DeviceAddress& address, const std::function<void(const wchar_t*)>& log);

}  // namespace kesp
