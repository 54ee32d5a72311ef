// Detection by each transport's own AutoDetect. DetectInstrument of the communication object would show a
// message box where something fails, for which a program at the command line has no user.
#pragma once

#include <optional>
#include <string>

#include "KespCommObj.h"
#include "console/library.h"

namespace kesp::console {

// The answer, with the address that gave it in the transport's settings. Nothing when nobody answered or a
// step was answered with false. Throws LibraryError, also where the COM port cannot be opened, which
// AutoDetect keeps to itself.
std::optional<std::string> DetectAt(_CKespTCP* tcp, DetectLevel level, const OnDetectionStep& on_step);
std::optional<std::string> DetectAt(_CKespCOMPort3* port, const std::string& omega, DetectLevel level,
                                    const OnDetectionStep& on_step);
// only: nobody else is asked than the device with that primary address.
std::optional<std::string> DetectAt(_CKespIEEE* ieee, std::optional<int> only, DetectLevel level,
                                    const OnDetectionStep& on_step);

}  // namespace kesp::console
