// kesp-wire: lets a TCP client play the instrument at a serial line.
#include <CLI/CLI.hpp>
#include <asio/co_spawn.hpp>
#include <asio/signal_set.hpp>
#include <csignal>
#include <exception>
#include <iostream>
#include <system_error>

#include "tests/instrument/options.h"
#include "tests/instrument/wire.h"

namespace kesp::simulator {
namespace {

constexpr char kAbout[] =
    "Lets a TCP client play the instrument at a serial line. Prints \"listening on ADDRESS:PORT\" when "
    "ready.\n"
    "When a client connects, it makes a serial line, linked under the given path, and sends the client the\n"
    "line \"ready\"; then it carries bytes both ways. The line is gone when the client has left.\n";

// Takes a failure of the service to the caller, from within the run of the io_context.
void Serve(const std::string& link, const std::string& bind, std::uint16_t port) {
  asio::io_context io(1);
  asio::signal_set signals(io, SIGINT, SIGTERM);
  signals.async_wait([&io](const asio::error_code& /*error*/, int /*signal*/) { io.stop(); });
  Wire wire(io, link, bind, port);
  asio::co_spawn(io, wire.Run(), [](const std::exception_ptr& failure) {
    if (failure) std::rethrow_exception(failure);
  });
  std::cout << "listening on " << wire.endpoint() << std::endl;
  io.run();
}

int Run(int argc, char** argv) {
  CLI::App app(kAbout, "kesp-wire");
  std::string link;
  std::string bind = "127.0.0.1";
  std::uint16_t port = 0;
  app.add_option("--serial", link, "Where the serial line is linked")->type_name("PATH")->required();
  app.add_option("--port", port, "Port to listen on; 0 (default) picks a free one from 20000 to 32000")
      ->type_name("N");
  app.add_option("--bind", bind, "IP address to listen on; 127.0.0.1 (default) is this machine only")
      ->type_name("ADDRESS")
      ->check(CLI::ValidIPV4);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& stop) {
    return app.exit(stop) == 0 ? kExitDone : kExitBadInput;
  }
  try {
    Serve(link, bind, port);
  } catch (const std::system_error& error) {
    std::cerr << "kesp-wire: " << error.what() << "\n";
    return kExitCannotListen;
  }
  return kExitDone;
}

}  // namespace
}  // namespace kesp::simulator

int main(int argc, char** argv) {
  // A client that goes away while it is written to must not take the program along.
  std::signal(SIGPIPE, SIG_IGN);
  return kesp::simulator::Run(argc, argv);
}
