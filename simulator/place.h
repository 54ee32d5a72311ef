// Where a device is.
#pragma once

namespace kesp::simulator {

// At a line of its own, on a bus, or at the line of another device. What has no meaning there is a mistake of
// its description.
enum class Place { kOwnLine, kBus, kBehindAnother };

}  // namespace kesp::simulator
