// kesp-instrument: plays a laboratory instrument over TCP.
#include <asio/co_spawn.hpp>
#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>
#include <csignal>
#include <exception>
#include <fstream>
#include <iostream>
#include <string>
#include <system_error>
#include <vector>

#include "tests/instrument/event_log.h"
#include "tests/instrument/instrument.h"
#include "tests/instrument/options.h"
#include "tests/instrument/personality_reader.h"
#include "tests/instrument/tcp_server.h"

namespace kesp::simulator {
namespace {

void Serve(const Options& options, Instrument& instrument, EventLog& log) {
  asio::io_context io(1);
  TcpServer server(Listen(io, options.bind, options.port), instrument, log);
  asio::signal_set signals(io, SIGINT, SIGTERM);
  signals.async_wait([&io](const asio::error_code& /*error*/, int /*signal*/) { io.stop(); });
  asio::co_spawn(io, server.Run(options.once ? Clients::kOne : Clients::kMany),
                 [&io](const std::exception_ptr& /*failure*/) { io.stop(); });
  std::cout << "listening on " << server.endpoint() << std::endl;
  io.run();
}

int Run(const Options& options) {
  std::vector<std::ostream*> sinks;
  if (!options.quiet) sinks.push_back(&std::cerr);
  std::ofstream log_file;
  if (!options.log.empty()) {
    log_file.open(options.log, std::ios::app);
    if (!log_file) {
      std::cerr << "kesp-instrument: " << options.log << ": cannot be written\n";
      return kExitBadInput;
    }
    sinks.push_back(&log_file);
  }
  EventLog log(sinks, TimeOfDay);
  try {
    Instrument instrument(options.personality.empty() ? BuiltInPersonality()
                                                      : LoadPersonality(options.personality));
    Serve(options, instrument, log);
  } catch (const PersonalityError& error) {
    std::cerr << "kesp-instrument: " << error.what() << "\n";
    return kExitBadInput;
  } catch (const std::system_error& error) {
    std::cerr << "kesp-instrument: cannot listen on " << options.bind << " port " << options.port << ": "
              << error.code().message() << "\n";
    return kExitCannotListen;
  }
  return kExitDone;
}

}  // namespace
}  // namespace kesp::simulator

int main(int argc, char** argv) {
  // A reader of the log that goes away must not take the instrument along.
  std::signal(SIGPIPE, SIG_IGN);
  const kesp::simulator::ParsedOptions parsed =
      kesp::simulator::ParseOptions(std::vector<std::string>(argv + 1, argv + argc));
  std::cout << parsed.output << std::flush;
  std::cerr << parsed.error << std::flush;
  return parsed.options ? kesp::simulator::Run(*parsed.options) : parsed.exit_code;
}
