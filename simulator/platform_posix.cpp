// What the program needs of the system, on Linux.
#include <cerrno>
#include <csignal>

#include "simulator/platform.h"
#include "simulator/serial_carrier.h"

namespace kesp::simulator {

std::vector<std::string> BeginProgram(int argc, char** argv) {
  std::signal(SIGPIPE, SIG_IGN);
  return std::vector<std::string>(argv + 1, argv + argc);
}

void AddEndingSignals(asio::signal_set& signals) {
  signals.add(SIGINT);
  signals.add(SIGTERM);
  // The terminal that is closed; nohup has it ignored, which stays so.
  struct sigaction before {};
  sigaction(SIGHUP, nullptr, &before);
  if (before.sa_handler != SIG_IGN) signals.add(SIGHUP);
}

const int kAddressNotAvailable = EADDRNOTAVAIL;

std::tm LocalTime(std::time_t seconds) {
  std::tm local{};
  localtime_r(&seconds, &local);
  return local;
}

void PrepareToListen(asio::ip::tcp::acceptor& acceptor, asio::error_code& error) {
  // Connections of an earlier run that still linger must not keep the port.
  acceptor.set_option(asio::socket_base::reuse_address(true), error);
}

std::unique_ptr<Carrier> OpenSerialLine(asio::io_context& io, const std::string& name,
                                        const std::optional<LineRule>& /*line*/) {
  return std::make_unique<SerialCarrier>(io.get_executor(), name);
}

}  // namespace kesp::simulator
