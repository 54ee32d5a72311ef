// One simulated bus from the moment it is loaded until another takes its place.
#include "simulator/gpib/bus.h"

#include <algorithm>

namespace kesp::simulator::gpib {

Bus::Bus(const BusDescription& description)
    : secondary_offset_required(description.secondary_offset_required),
      failures(description.failures),
      threads(description.registration),
      record(description.record) {
  for (const Personality& device : description.devices) devices.emplace_back(device);
}

SimulatedDevice* Bus::At(const Address& address) {
  const auto found = std::find_if(devices.begin(), devices.end(), [&address](const SimulatedDevice& device) {
    return device.address() == address;
  });
  return found == devices.end() ? nullptr : &*found;
}

Descriptor* Bus::Open(std::int32_t descriptor) {
  const auto found = descriptors.find(descriptor);
  return found == descriptors.end() ? nullptr : &found->second;
}

std::int32_t Bus::FreeDescriptor() const {
  std::int32_t free = 1;
  for (const auto& [descriptor, device] : descriptors) {
    if (descriptor != free) break;
    ++free;
  }
  return free;
}

}  // namespace kesp::simulator::gpib
