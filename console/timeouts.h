// What the transports take as a timeout.
#pragma once

namespace kesp::console {

// The timeout of the TCP transport is a 16-bit number. Returns it, or throws UsageError.
short TcpTimeout(int milliseconds);

// The code of the GPIB driver for the shortest of its timeouts that is not shorter: 1 for 10 us up to 17 for
// 1000 s. Throws UsageError for more than that.
int IeeeTimeoutCode(int milliseconds);

}  // namespace kesp::console
