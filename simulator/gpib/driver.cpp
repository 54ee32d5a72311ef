// The simulated driver: the frame of its calls, and what is not a call of the bus.
#include "simulator/gpib/driver.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <utility>

namespace kesp::simulator::gpib {

Driver::Driver(Waiting& waiting) : waiting_(waiting), bus_(std::make_shared<Bus>(BusDescription{})) {}

void Driver::Load(const BusDescription& description) {
  auto bus = std::make_shared<Bus>(description);
  const Locked locked(waiting_);
  // Calls that still wait on it have nowhere to report to.
  bus_->threads.ForgetRegistrations();
  bus_.swap(bus);
  waiting_.WakeAll();
}

std::string Driver::Record() {
  const Locked locked(waiting_);
  return bus_->record.Text();
}

std::int32_t Driver::OpenDescriptors() {
  const Locked locked(waiting_);
  return static_cast<std::int32_t>(bus_->descriptors.size());
}

std::int32_t Driver::Register(ThreadId thread, const Cells& cells) {
  const Locked locked(waiting_);
  std::set<const std::int32_t*> distinct(cells.begin(), cells.end());
  distinct.erase(nullptr);
  const std::int32_t result = bus_->threads.Register(thread, cells);
  bus_->record.Add(std::to_string(bus_->threads.OrdinalOf(thread)) + " RegisterGpibGlobalsForThread(" +
                   std::to_string(distinct.size()) + " cells) = " + std::to_string(result));
  return result;
}

std::int32_t Driver::Unregister(ThreadId thread) {
  const Locked locked(waiting_);
  const std::int32_t result = bus_->threads.Unregister(thread) ? 0 : 1;
  bus_->record.Add(std::to_string(bus_->threads.OrdinalOf(thread)) +
                   " UnregisterGpibGlobalsForThread() = " + std::to_string(result));
  return result;
}

void Driver::ThreadEnds(ThreadId thread) {
  const Locked locked(waiting_);
  const std::optional<unsigned> registered = bus_->threads.End(thread);
  if (registered) bus_->record.Add(std::to_string(*registered) + " thread ended, registered");
}

std::int32_t Driver::Perform(ThreadId thread, const Call& call, const Work& work) {
  const Locked locked(waiting_);
  const std::shared_ptr<Bus> bus = bus_;
  CallRecord::Line line = bus->record.Begin(bus->threads.OrdinalOf(thread), call);
  const std::optional<Report> failure = bus->failures.Next(call.name);
  const Report report = failure ? *failure : work(*bus);
  bus->threads.Report(thread, report.outcome);
  // A failure that was asked for may report bytes that never came.
  const bool has_read = call.name == CallName::kRead && !failure;
  bus->record.Add(std::move(line), report,
                  call.bytes.substr(0, has_read ? static_cast<std::size_t>(report.outcome.count) : 0));
  return report.result;
}

}  // namespace kesp::simulator::gpib
