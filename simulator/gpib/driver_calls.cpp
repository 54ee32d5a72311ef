// The simulated driver: what each call does on the bus.
#include <algorithm>
#include <cstddef>

#include "simulator/gpib/driver.h"
#include "simulator/gpib/time_out.h"

namespace kesp::simulator::gpib {
namespace {

// Of a buffer that cannot be used, none.
std::string_view BytesAt(const void* bytes, std::int32_t length) {
  if (bytes == nullptr || length <= 0) return {};
  return {static_cast<const char*>(bytes), static_cast<std::size_t>(length)};
}

bool IsUsable(const char* bytes, std::int32_t length) {
  return length == 0 || (bytes != nullptr && length > 0);
}

Report Reporting(CallName call, const Outcome& outcome) {
  return {outcome, ResultOf(call, outcome)};
}

// Why a descriptor that is not open cannot be used: the board's own knows none of the calls for devices.
Outcome NotADevice(std::int32_t descriptor) {
  return FailedWith(descriptor == 0 ? kBadArgument : kSystemError);
}

}  // namespace

std::int32_t Driver::Ibdev(ThreadId thread, const DeviceArguments& arguments) {
  const Call call{CallName::kDevice,
                  {arguments.board, arguments.address.primary, arguments.address.secondary,
                   arguments.time_out, arguments.sends_end, arguments.end_of_string},
                  {}};
  return Perform(thread, call, [&](Bus& bus) { return OpenDevice(bus, arguments); });
}

std::int32_t Driver::Ibclr(ThreadId thread, std::int32_t descriptor) {
  const Call call{CallName::kClear, {descriptor}, {}};
  return Perform(thread, call, [&](Bus& bus) { return Reporting(call.name, Clear(bus, descriptor)); });
}

std::int32_t Driver::Ibeos(ThreadId thread, std::int32_t descriptor, std::int32_t value) {
  const Call call{CallName::kEndOfString, {descriptor, value}, {}};
  return Perform(thread, call,
                 [&](Bus& bus) { return Reporting(call.name, SetEndOfString(bus, descriptor, value)); });
}

std::int32_t Driver::Ibwrt(ThreadId thread, std::int32_t descriptor, const void* bytes, std::int32_t length) {
  const Call call{CallName::kWrite, {descriptor, length}, BytesAt(bytes, length)};
  const auto* first = static_cast<const char*>(bytes);
  return Perform(thread, call,
                 [&](Bus& bus) { return Reporting(call.name, Write(bus, descriptor, first, length)); });
}

std::int32_t Driver::Ibrd(ThreadId thread, std::int32_t descriptor, void* buffer, std::int32_t length) {
  const Call call{CallName::kRead, {descriptor, length}, BytesAt(buffer, length)};
  auto* first = static_cast<char*>(buffer);
  return Perform(thread, call,
                 [&](Bus& bus) { return Reporting(call.name, Read(bus, descriptor, first, length)); });
}

std::int32_t Driver::Ibonl(ThreadId thread, std::int32_t descriptor, std::int32_t value) {
  const Call call{CallName::kOnline, {descriptor, value}, {}};
  return Perform(thread, call,
                 [&](Bus& bus) { return Reporting(call.name, GoOnline(bus, descriptor, value)); });
}

std::int32_t Driver::Ibrsp(ThreadId thread, std::int32_t descriptor, char* status_byte) {
  const Call call{CallName::kSerialPoll, {descriptor}, BytesAt(status_byte, 1)};
  return Perform(thread, call,
                 [&](Bus& bus) { return Reporting(call.name, Poll(bus, descriptor, status_byte)); });
}

Report Driver::OpenDevice(Bus& bus, const DeviceArguments& arguments) {
  if (arguments.board != 0) return Reporting(CallName::kDevice, FailedWith(kNoBoard));
  const bool is_valid = arguments.address.IsValid() &&
                        !(bus.secondary_offset_required && arguments.address.IsWithoutOffset()) &&
                        arguments.time_out >= 0 && arguments.time_out < kTimeOutCodes &&
                        (arguments.sends_end == 0 || arguments.sends_end == 1) &&
                        EndOfString::IsValid(arguments.end_of_string);
  if (!is_valid) return Reporting(CallName::kDevice, FailedWith(kBadArgument));
  const std::int32_t descriptor = bus.FreeDescriptor();
  bus.descriptors[descriptor] = {arguments.address, TimeOutMicroseconds(arguments.time_out),
                                 arguments.sends_end == 1, EndOfString(arguments.end_of_string),
                                 ++bus.openings};
  return {Outcome{}, descriptor};
}

Outcome Driver::Clear(Bus& bus, std::int32_t descriptor) {
  const Descriptor* open = bus.Open(descriptor);
  if (open == nullptr) return NotADevice(descriptor);
  const bool anyone = std::any_of(bus.devices.begin(), bus.devices.end(), [&](const SimulatedDevice& device) {
    return Present(bus, device.address()) != nullptr;
  });
  if (!anyone) return FailedWith(kNoListener);
  if (SimulatedDevice* device = Present(bus, open->address)) device->Clear();
  return {};
}

Outcome Driver::SetEndOfString(Bus& bus, std::int32_t descriptor, std::int32_t value) {
  Descriptor* open = bus.Open(descriptor);
  if (open == nullptr) return NotADevice(descriptor);
  if (!EndOfString::IsValid(value)) return FailedWith(kBadArgument);
  open->end_of_string = EndOfString(value);
  return {};
}

Outcome Driver::Write(Bus& bus, std::int32_t descriptor, const char* bytes, std::int32_t length) {
  const Descriptor* open = bus.Open(descriptor);
  if (open == nullptr) return NotADevice(descriptor);
  if (!IsUsable(bytes, length)) return FailedWith(kBadArgument);
  SimulatedDevice* device = Present(bus, open->address);
  if (device == nullptr) return FailedWith(kNoListener);
  const std::int64_t now = waiting_.Microseconds();
  for (std::int32_t i = 0; i < length; ++i) {
    const bool is_last = i + 1 == length;
    const bool has_end = (is_last && open->sends_end) || open->end_of_string.EndsWriteAt(bytes[i]);
    device->Take(bytes[i], has_end, now);
  }
  waiting_.WakeAll();
  return {kComplete, 0, length};
}

Outcome Driver::Read(Bus& bus, std::int32_t descriptor, char* buffer, std::int32_t length) {
  if (bus.Open(descriptor) == nullptr) return NotADevice(descriptor);
  if (!IsUsable(buffer, length)) return FailedWith(kBadArgument);
  return ReadFrom(bus, descriptor, {buffer, static_cast<std::size_t>(length)});
}

Outcome Driver::ReadFrom(Bus& bus, std::int32_t descriptor, std::span<char> buffer) {
  // A copy, because another thread may close the descriptor during a wait.
  const Descriptor open = *bus.Open(descriptor);
  SimulatedDevice* const device = Present(bus, open.address);
  const std::int64_t begin = waiting_.Microseconds();
  const std::int64_t deadline = open.time_out == kNever ? kNever : begin + open.time_out;
  std::size_t count = 0;
  const auto outcome = [&count](std::int32_t status, std::int32_t error = 0) {
    return Outcome{status, error, static_cast<std::int32_t>(count)};
  };
  for (;;) {
    const std::int64_t now = waiting_.Microseconds();
    while (device != nullptr && count < buffer.size()) {
      const auto sent = device->Send(now);
      if (!sent) break;
      buffer[count++] = sent->byte;
      if (sent->has_end || open.end_of_string.EndsReadAt(sent->byte)) return outcome(kComplete | kEnd);
    }
    if (count == buffer.size()) return outcome(kComplete);
    if (now >= deadline) return outcome(kError | kTimedOut | kComplete, kAborted);
    waiting_.WaitUntil(std::min(deadline, device == nullptr ? kNever : device->ReplyBegins()));
    if (!IsStillOpen(bus, descriptor, open.opening)) return outcome(kError | kComplete, kAborted);
  }
}

bool Driver::IsStillOpen(Bus& bus, std::int32_t descriptor, std::int64_t opening) const {
  if (&bus != bus_.get()) return false;
  const Descriptor* open = bus.Open(descriptor);
  return open != nullptr && open->opening == opening;
}

Outcome Driver::Poll(Bus& bus, std::int32_t descriptor, char* status_byte) {
  const Descriptor* open = bus.Open(descriptor);
  if (open == nullptr) return NotADevice(descriptor);
  if (status_byte == nullptr) return FailedWith(kBadArgument);
  SimulatedDevice* const device = Present(bus, open->address);
  if (device == nullptr) return ReadFrom(bus, descriptor, {status_byte, 1});
  *status_byte = device->Poll();
  return {};
}

Outcome Driver::GoOnline(Bus& bus, std::int32_t descriptor, std::int32_t value) {
  if (descriptor == 0) return {};
  if (bus.Open(descriptor) == nullptr) return FailedWith(kSystemError);
  if (value == 0) {
    bus.descriptors.erase(descriptor);
    waiting_.WakeAll();
  }
  return {};
}

}  // namespace kesp::simulator::gpib
