// The simulated driver: its calls as the NI-488.2 driver's manual describes them, over a simulated bus.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "simulator/gpib/bus.h"
#include "simulator/gpib/waiting.h"

namespace kesp::simulator::gpib {

// May be called from any thread, which says who it is. A call returns the status word unless it says
// otherwise, writes its outcome to the cells of the thread, and adds a line to the record.
class Driver {
 public:
  // Begins with a bus without devices. The seam must outlive the driver.
  explicit Driver(Waiting& waiting);

  // Puts another bus in the place of the present one: all descriptors are closed, the record is empty, all
  // registrations are forgotten. Calls that wait end with "aborted", without a trace in the new record.
  void Load(const BusDescription& description);

  // Calls of that name wait until they are held no more, or until the time of their descriptor is up; then
  // they fail. Without a name none waits.
  void Hold(std::optional<CallName> call);

  // The record so far, one line for each call.
  std::string Record();
  // How many device descriptors are open.
  std::int32_t OpenDescriptors();

  // 0 when registered, 1 when the thread is registered with other cells, 3 for a null cell.
  std::int32_t Register(ThreadId thread, const Cells& cells);
  // 0 when the thread was registered, otherwise 1.
  std::int32_t Unregister(ThreadId thread);
  // To be called by a thread that ends.
  void ThreadEnds(ThreadId thread);

  struct DeviceArguments {
    std::int32_t board;
    Address address;
    std::int32_t time_out;
    std::int32_t sends_end;
    std::int32_t end_of_string;
  };
  // Returns the descriptor, or -1. That no device is at the address is no error.
  std::int32_t Ibdev(ThreadId thread, const DeviceArguments& arguments);
  std::int32_t Ibclr(ThreadId thread, std::int32_t descriptor);
  std::int32_t Ibeos(ThreadId thread, std::int32_t descriptor, std::int32_t value);
  std::int32_t Ibwrt(ThreadId thread, std::int32_t descriptor, const void* bytes, std::int32_t length);
  // Waits up to the time-out of the descriptor; what had come by then stays in the buffer.
  std::int32_t Ibrd(ThreadId thread, std::int32_t descriptor, void* buffer, std::int32_t length);
  std::int32_t Ibonl(ThreadId thread, std::int32_t descriptor, std::int32_t value);
  // Times out like a read when no device is at the address.
  std::int32_t Ibrsp(ThreadId thread, std::int32_t descriptor, char* status_byte);

 private:
  using Work = std::function<Report(Bus& bus)>;
  // Does the work, unless the call is to fail, and reports what came of it.
  std::int32_t Perform(ThreadId thread, const Call& call, const Work& work);

  // Waits while such calls are held; what this one reports when its time was up before that.
  std::optional<Report> AwaitRelease(Bus& bus, const Call& call);
  static Report OpenDevice(Bus& bus, const DeviceArguments& arguments);
  // The device at an address as it is now; null when none is there, or when it has left.
  SimulatedDevice* Present(Bus& bus, const Address& address);
  // Whether the device of a descriptor asks for a serial poll.
  bool RequestsService(Bus& bus, std::int32_t descriptor);
  Outcome Clear(Bus& bus, std::int32_t descriptor);
  static Outcome SetEndOfString(Bus& bus, std::int32_t descriptor, std::int32_t value);
  Outcome Write(Bus& bus, std::int32_t descriptor, const char* bytes, std::int32_t length);
  Outcome Read(Bus& bus, std::int32_t descriptor, char* buffer, std::int32_t length);
  Outcome ReadFrom(Bus& bus, std::int32_t descriptor, std::span<char> buffer);
  Outcome Poll(Bus& bus, std::int32_t descriptor, char* status_byte);
  Outcome GoOnline(Bus& bus, std::int32_t descriptor, std::int32_t value);
  // Whether a call that had to wait finds its bus and its descriptor as before.
  bool IsStillOpen(Bus& bus, std::int32_t descriptor, std::int64_t opening) const;

  Waiting& waiting_;
  std::optional<CallName> held_;
  // Calls that wait hold on to the bus that they began with.
  std::shared_ptr<Bus> bus_;
};

}  // namespace kesp::simulator::gpib
