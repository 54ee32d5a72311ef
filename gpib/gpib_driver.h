// The thin binding between the transport and the GPIB driver.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <string>

#include "gpib/gpib_binding.h"
#include "gpib/gpib_library.h"
#include "gpib/gpib_status.h"
#include "gpib/gpib_threads.h"

namespace kesp {

// Calls the driver. One for the process; every thread may use it, and no thread sees what another one's calls
// came to. Driver and library stay loaded from the first use on.
//
// Each call registers the calling thread's status cells with the driver when that has not been done, calls
// the driver, and returns the driver's status. A thread that cannot be registered gets the status of a
// failure with the error number 0, without a call of the driver; the next call tries again.
//
// A call may leave the cells untouched: because the host program has registered its own for the thread, or
// because the driver writes them after a failure only. The status is then the word that the driver's function
// returned, which is the same word, with the error number 0; of ibdev, it is the error bit or nothing, as the
// descriptor says. The next call registers the thread again.
class GpibDriver {
 public:
  GpibDriver(GpibLibrary& library, GpibThreads& threads) : library_(library), threads_(threads) {}
  GpibDriver(const GpibDriver&) = delete;
  GpibDriver& operator=(const GpibDriver&) = delete;

  // Binds the driver unless that is done. Needed before the first of the calls below. Throws as
  // BindGpibDriver does, with this source; the next Load tries again.
  void Load(const wchar_t* source);

  // ibdev's result besides the status: the descriptor, -1 after a failure.
  struct Device {
    std::int32_t descriptor = -1;
    GpibStatus status;
  };

  // Opens a device. END is sent with the last byte of everything written, and no byte ends a read.
  // time_out is the driver's code (0 for none, 11 for a second).
  Device ibdev(std::int16_t board, std::int16_t primary_address, std::int16_t secondary_address,
               std::int32_t time_out);

  // Clears the device alone (Selected Device Clear).
  GpibStatus ibclr(std::int16_t descriptor);

  // Sets how reading and writing end.
  GpibStatus ibeos(std::int16_t descriptor, std::int32_t mode);

  GpibStatus ibwrt(std::int16_t descriptor, const std::string& bytes);

  // Reads at most as many bytes as the buffer has; the status's count tells how many it were. A read whose
  // count the driver left out is a failure with the error number 0, whatever else it says.
  GpibStatus ibrd(std::int16_t descriptor, std::span<char> buffer);

  // Takes a device, or the board of that index, offline: ibonl with 0.
  GpibStatus ibonl(std::int32_t descriptor_or_board);

 private:
  // Runs `call`, which returns the status word, on the registered thread. Returns what it came to.
  template <typename Call>
  GpibStatus Run(const Call& call);
  // The status of a call that left the thread's cells untouched and returned this word.
  static GpibStatus WithoutCells(GpibThread& thread, int status_word);
  bool Register(GpibThread& thread) const;

  GpibLibrary& library_;
  GpibThreads& threads_;
  std::mutex loading_;
  std::optional<GpibEntryPoints> table_;                  // set under loading_, never changed afterwards
  std::atomic<const GpibEntryPoints*> loaded_ = nullptr;  // the table, once it is complete
};

}  // namespace kesp
