// The bytes that each kind of controller expects for a command.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "support/enumerations.h"

namespace kesp {

// The frame for a command, already rid of leading and trailing blanks:
//   CS_KESP       cmd CR (so blanks between the command and the CR stay)
//   CS_OMEGA      a read request, EOT address cmd ENQ CR; with a value a write request, EOT address STX cmd
//                 value ETX BCC CR. The address is its first digit, both digits, its second digit (12 gives
//                 1122); BCC, the block check, is the exclusive-or of cmd, value and ETX.
//   CS_MAXSTREAM  cmd
//   any other     nothing, on purpose: the command never reaches the port
// Texts are bytes of the wire. Nothing for CS_OMEGA without an address.
std::optional<std::string> CommandFrame(EKespControllerStyle3 style, std::string_view cmd,
                                        std::string_view omega_address, std::string_view omega_value);

}  // namespace kesp
