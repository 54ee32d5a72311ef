// The simulated driver: the frame of its calls, and what is not a call of the bus.
#include "simulator/gpib/driver.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <utility>

#include "simulator/gpib/time_out.h"

namespace kesp::simulator::gpib {
namespace {

std::size_t BytesReceived(CallName call, const Outcome& outcome) {
  if (call == CallName::kSerialPoll) return (outcome.status & kError) == 0 ? 1 : 0;
  return call == CallName::kRead ? static_cast<std::size_t>(outcome.count) : 0;
}

}  // namespace

Driver::Driver(Waiting& waiting) : waiting_(waiting), bus_(std::make_shared<Bus>(BusDescription{})) {}

void Driver::Load(const BusDescription& description) {
  auto bus = std::make_shared<Bus>(description);
  const Locked locked(waiting_);
  // Calls that still wait on it have nowhere to report to.
  bus_->threads.ForgetRegistrations();
  bus_.swap(bus);
  waiting_.WakeAll();
}

void Driver::Hold(std::optional<CallName> call) {
  const Locked locked(waiting_);
  held_ = call;
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
  std::optional<Report> failure = bus->failures.Next(call.name);
  if (!failure) failure = AwaitRelease(*bus, call);
  Report report = failure ? *failure : work(*bus);
  if (!failure && call.name != CallName::kDevice && RequestsService(*bus, call.arguments.front())) {
    report.outcome.status |= kServiceRequested;
    report.result = report.outcome.status;
  }
  bus->threads.Report(thread, report.outcome);
  // A failure that was asked for may report bytes that never came.
  bus->record.Add(std::move(line), report,
                  call.bytes.substr(0, failure ? 0 : BytesReceived(call.name, report.outcome)));
  return report.result;
}

std::optional<Report> Driver::AwaitRelease(Bus& bus, const Call& call) {
  const bool has_time_out = call.name != CallName::kDevice && call.name != CallName::kOnline;
  const Descriptor* open = has_time_out ? bus.Open(call.arguments.front()) : nullptr;
  const std::int64_t time_out = open == nullptr ? kNever : open->time_out;
  const std::int64_t deadline = time_out == kNever ? kNever : waiting_.Microseconds() + time_out;
  while (held_ == call.name) {
    const Outcome timed_out{kError | kTimedOut | kComplete, kAborted, 0};
    if (waiting_.Microseconds() >= deadline) return Report{timed_out, ResultOf(call.name, timed_out)};
    waiting_.WaitUntil(deadline);
  }
  return std::nullopt;
}

SimulatedDevice* Driver::Present(Bus& bus, const Address& address) {
  SimulatedDevice* const device = bus.At(address);
  if (device == nullptr) return nullptr;
  device->PassTime(waiting_.Microseconds());
  return device->HasLeft() ? nullptr : device;
}

bool Driver::RequestsService(Bus& bus, std::int32_t descriptor) {
  const Descriptor* open = bus.Open(descriptor);
  const SimulatedDevice* device = open == nullptr ? nullptr : Present(bus, open->address);
  return device != nullptr && device->RequestsService();
}

}  // namespace kesp::simulator::gpib
