// What the program does between its ready line and its end: serve clients over TCP, or one serial line.
#include "tests/instrument/serving.h"

#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>
#include <csignal>
#include <exception>
#include <iostream>

#include "tests/instrument/pseudo_terminal.h"
#include "tests/instrument/serial_carrier.h"
#include "tests/instrument/tcp_server.h"

namespace kesp::simulator {
namespace {

void StopOn(asio::signal_set& signals, asio::io_context& io) {
  signals.async_wait([&io](const asio::error_code& /*error*/, int /*signal*/) { io.stop(); });
}

}  // namespace

void ServeTcp(const Options& options, Instrument& instrument, EventLog& log) {
  asio::io_context io(1);
  TcpServer server(Listen(io, options.bind, options.port), instrument, log);
  asio::signal_set signals(io, SIGINT, SIGTERM);
  StopOn(signals, io);
  asio::co_spawn(io, server.Run(options.once ? Clients::kOne : Clients::kMany),
                 [&io](const std::exception_ptr& /*failure*/) { io.stop(); });
  std::cout << "listening on " << server.endpoint() << std::endl;
  io.run();
}

void ServeSerial(const std::string& path, const TalkMaker& make_talk) {
  asio::io_context io(1);
  // Before there is a link that a signal could leave behind.
  asio::signal_set signals(io, SIGINT, SIGTERM);
  StopOn(signals, io);
  PseudoTerminal terminal(path);
  SerialCarrier carrier(io.get_executor(), terminal);
  const std::unique_ptr<Talk> talk = make_talk(carrier);
  asio::co_spawn(io, talk->Run(), asio::detached);
  std::cout << "serving " << path << std::endl;
  io.run();
  talk->Finish();
}

}  // namespace kesp::simulator
