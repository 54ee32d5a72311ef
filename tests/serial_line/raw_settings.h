// Data bits and parity in the settings that a program exchanges with the kernel itself, past tcgetattr and
// tcsetattr.
#pragma once

namespace kesp::serial_line {

using ControlFunction = int(int, unsigned long, ...);

// Whether an ioctl of that request reads or sets them.
bool IsAboutSettings(unsigned long request);

// Such an ioctl on the slave of a pseudo-terminal, which keeps the data bits and the parity it is given.
int ControlSettings(ControlFunction* next, int descriptor, unsigned long request, void* argument);

}  // namespace kesp::serial_line
