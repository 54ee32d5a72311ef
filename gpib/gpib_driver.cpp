// Thread registration, the calls of the driver, and the copies of its status cells.
#include "gpib/gpib_driver.h"

namespace kesp {

namespace {

// No count: what the driver's own header leaves there, 0xDEAD37F0.
constexpr std::int32_t kNoCount = -559073296;

// The status of a call that the driver did not take, or whose outcome cannot be known: the error bit and
// error number 0.
constexpr std::int16_t kError = -32768;
constexpr GpibStatus kNotTaken{.ibsta = kError, .iberr = 0, .ibcnt = 0, .ibcntl = kNoCount};

// In the status cell before a call. A driver reports 16 bits.
constexpr std::int32_t kUntouched = -1;

// Further results of RegisterGpibGlobalsForThread.
constexpr int kRegisteredWithOtherCells = 1;
constexpr int kRefusedFirst = 2;
constexpr int kRefusedLast = 3;

// END with the last byte written; no end-of-string handling.
constexpr int kEndOfTransfer = 1;
constexpr int kNoEndOfString = 0;
constexpr int kOffline = 0;

}  // namespace

void GpibDriver::Load(const wchar_t* source) {
  if (loaded_.load(std::memory_order_acquire) != nullptr) return;
  const std::lock_guard lock(loading_);
  if (table_) return;
  table_ = BindGpibDriver(library_, source);
  loaded_.store(&*table_, std::memory_order_release);
}

GpibDriver::Device GpibDriver::ibdev(std::int16_t board, std::int16_t primary_address,
                                     std::int16_t secondary_address, std::int32_t time_out) {
  Device device;
  device.status = Run([&](const GpibEntryPoints& driver) {
    device.descriptor =
        driver.ibdev(board, primary_address, secondary_address, time_out, kEndOfTransfer, kNoEndOfString);
    return device.descriptor < 0 ? kError : 0;
  });
  return device;
}

GpibStatus GpibDriver::ibclr(std::int16_t descriptor) {
  return Run([&](const GpibEntryPoints& driver) { return driver.ibclr(descriptor); });
}

GpibStatus GpibDriver::ibeos(std::int16_t descriptor, std::int32_t mode) {
  return Run([&](const GpibEntryPoints& driver) { return driver.ibeos(descriptor, mode); });
}

GpibStatus GpibDriver::ibwrt(std::int16_t descriptor, const std::string& bytes) {
  return Run([&](const GpibEntryPoints& driver) {
    return driver.ibwrt(descriptor, bytes.data(), static_cast<GpibLength>(bytes.size()));
  });
}

GpibStatus GpibDriver::ibrd(std::int16_t descriptor, std::span<char> buffer) {
  const GpibStatus status = Run([&](const GpibEntryPoints& driver) {
    return driver.ibrd(descriptor, buffer.data(), static_cast<GpibLength>(buffer.size()));
  });
  // How much of the buffer is the reply cannot be guessed.
  return !status.Failed() && status.ibcntl == kNoCount ? kNotTaken : status;
}

GpibStatus GpibDriver::ibonl(std::int32_t descriptor_or_board) {
  return Run([&](const GpibEntryPoints& driver) { return driver.ibonl(descriptor_or_board, kOffline); });
}

template <typename Call>
GpibStatus GpibDriver::Run(const Call& call) {
  GpibThread& thread = threads_.Current();
  if (!thread.registered && !Register(thread)) return kNotTaken;
  thread.status_cell = kUntouched;
  thread.count_cell = 0;
  thread.long_count_cell = 0;
  const int status_word = call(*thread.entry_points);
  if (thread.status_cell == kUntouched) return WithoutCells(thread, status_word);
  return {.ibsta = Low16(thread.status_cell),
          .iberr = Low16(thread.error_cell),
          .ibcnt = Low16(thread.count_cell),
          .ibcntl = thread.long_count_cell};
}

GpibStatus GpibDriver::WithoutCells(GpibThread& thread, int status_word) {
  // Perhaps the host program has registered cells of its own. The next call registers ours again, because a
  // read needs its count.
  thread.registered = false;
  thread.in_doubt = true;
  const bool has_count = thread.long_count_cell != 0;
  return {.ibsta = Low16(status_word),
          .iberr = 0,
          .ibcnt = Low16(thread.count_cell),
          .ibcntl = has_count ? thread.long_count_cell : kNoCount};
}

bool GpibDriver::Register(GpibThread& thread) const {
  thread.entry_points = loaded_.load(std::memory_order_acquire);
  switch (thread.Register()) {
    case GpibThread::kRegistered:
      thread.registered = true;
      break;
    case kRegisteredWithOtherCells:
      thread.entry_points->UnregisterGpibGlobalsForThread();
      thread.Register();
      thread.registered = true;
      break;
    case kRefusedFirst:
    case kRefusedLast:
      thread.entry_points->UnregisterGpibGlobalsForThread();
      break;
    default:
      break;
  }
  if (thread.registered) thread.in_doubt = false;
  return thread.registered;
}

}  // namespace kesp
