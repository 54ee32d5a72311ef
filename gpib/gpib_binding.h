// From the driver's DLL to the table of its entry points.
#pragma once

#include "gpib/gpib_entry_points.h"
#include "gpib/gpib_library.h"

namespace kesp {

// Loads the first of the library's files that is there and looks up each entry point once. Throws, with this
// source and with the numbers that automation clients know for such failures; no DLL is loaded then:
//   53   none of the files is there
//   48   a file is there but cannot be loaded; the description says why
//   453  the DLL lacks an entry point; the description names it
GpibEntryPoints BindGpibDriver(GpibLibrary& library, const wchar_t* source);

}  // namespace kesp
