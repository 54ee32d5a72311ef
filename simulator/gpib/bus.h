// One simulated bus from the moment it is loaded until another takes its place.
#pragma once

#include <cstdint>
#include <deque>
#include <map>

#include "simulator/gpib/bus_description.h"
#include "simulator/gpib/call_record.h"
#include "simulator/gpib/end_of_string.h"
#include "simulator/gpib/failure_plan.h"
#include "simulator/gpib/simulated_device.h"
#include "simulator/gpib/thread_table.h"

namespace kesp::simulator::gpib {

// What ibdev was told.
struct Descriptor {
  Address address;
  std::int64_t time_out = 0;  // microseconds
  bool sends_end = false;
  EndOfString end_of_string;
  // Which opening of the bus it was, because another one may get its number.
  std::int64_t opening = 0;
};

// Everything that a new description replaces. Belongs to the driver, and lies behind its lock.
struct Bus {
  explicit Bus(const BusDescription& description);

  // The device at an address; null when none is there.
  SimulatedDevice* At(const Address& address);
  // What a descriptor stands for; null when it is not open.
  Descriptor* Open(std::int32_t descriptor);
  // The lowest number above 0, the board's own, that no open descriptor has.
  std::int32_t FreeDescriptor() const;

  std::deque<SimulatedDevice> devices;  // which stay where they are
  const bool secondary_offset_required;
  FailurePlan failures;
  ThreadTable threads;
  CallRecord record;
  std::map<std::int32_t, Descriptor> descriptors;
  std::int64_t openings = 0;
};

}  // namespace kesp::simulator::gpib
