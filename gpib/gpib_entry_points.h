// The entry points of the GPIB driver that the transport uses, as a table of typed functions.
#pragma once

#include <cstdint>

#if defined(_WIN32)
#define KESP_GPIB_CALL __stdcall
#else
#define KESP_GPIB_CALL
#endif

namespace kesp {

// A "long" in the driver's interface on 32 bit. On 64 bit a driver may take the whole register, whose upper
// half a shorter argument would leave undefined.
using GpibLength = std::intptr_t;

// The public interface of the NI-488.2 driver. Every function leaves status, error and counts in the calling
// thread's cells; ibdev returns a descriptor (-1 after a failure), the other bus calls return the status.
struct GpibEntryPoints {
  int(KESP_GPIB_CALL* ibdev)(int board, int primary_address, int secondary_address, int time_out,
                             int end_of_transfer, int end_of_string);
  int(KESP_GPIB_CALL* ibclr)(int descriptor);
  int(KESP_GPIB_CALL* ibeos)(int descriptor, int mode);
  int(KESP_GPIB_CALL* ibwrt)(int descriptor, const void* bytes, GpibLength length);
  int(KESP_GPIB_CALL* ibrd)(int descriptor, void* buffer, GpibLength length);
  int(KESP_GPIB_CALL* ibonl)(int descriptor, int online);
  int(KESP_GPIB_CALL* RegisterGpibGlobalsForThread)(std::int32_t* status, std::int32_t* error,
                                                    std::int32_t* count, std::int32_t* long_count);
  int(KESP_GPIB_CALL* UnregisterGpibGlobalsForThread)();
};

}  // namespace kesp
