// What the program does between its ready line and its end: serve clients over TCP, or one serial line.
#include "simulator/serving.h"

#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>
#include <exception>
#include <functional>
#include <iostream>
#include <memory>
#include <system_error>

#include "simulator/discovery_responder.h"
#include "simulator/making.h"
#include "simulator/platform.h"
#include "simulator/talk.h"
#include "simulator/tcp_server.h"
#include "simulator/udp_port.h"

namespace kesp::simulator {
namespace {

void OnEndingSignal(asio::signal_set& signals, const std::function<void()>& end) {
  AddEndingSignals(signals);
  signals.async_wait([end](const asio::error_code& /*error*/, int /*signal*/) { end(); });
}

// The UDP side of an instrument that answers discovery.
class Discovery {
 public:
  Discovery(asio::io_context& io, const Options& options, Instrument& instrument, EventLog& log)
      : port_(io, options.discovery_port), responder_(port_, instrument, log, MannerOf(options)) {
    asio::co_spawn(io, responder_.Run(), asio::detached);
  }

  asio::ip::udp::endpoint endpoint() const { return port_.endpoint(); }

 private:
  static AnswerManner MannerOf(const Options& options) {
    AnswerManner manner{options.discovery_from, options.discovery_rate};
    const asio::ip::address_v4 bind = asio::ip::make_address_v4(options.bind);
    if (!manner.from && !bind.is_unspecified()) manner.from = AddressRange{bind, bind};
    return manner;
  }

  UdpPort port_;
  DiscoveryResponder responder_;
};

std::unique_ptr<Discovery> MakeDiscovery(asio::io_context& io, const Options& options, Instrument& instrument,
                                         EventLog& log) {
  if (!options.discovery) return nullptr;
  return Making("listen for discovery on port " + std::to_string(options.discovery_port),
                [&] { return std::make_unique<Discovery>(io, options, instrument, log); });
}

}  // namespace

void ServeTcp(const Options& options, const std::shared_ptr<Instrument>& instrument, EventLog& log) {
  asio::io_context io(1);
  TcpServer server(Making("listen on " + options.bind + " port " + std::to_string(options.port),
                          [&] { return Listen(io, options.bind, options.port); }),
                   instrument, log);
  const std::unique_ptr<Discovery> discovery = MakeDiscovery(io, options, *instrument, log);
  asio::signal_set signals(io);
  OnEndingSignal(signals, [&] {
    server.AbandonClients();
    io.stop();
  });
  asio::co_spawn(io, server.Run(options.once ? Clients::kOne : Clients::kMany),
                 [&io](const std::exception_ptr& /*failure*/) { io.stop(); });
  std::cout << "listening on " << server.endpoint() << std::endl;
  if (discovery != nullptr) std::cout << "discovery on " << discovery->endpoint() << std::endl;
  io.run();
}

void ServeSerial(const std::string& name, Device& device, EventLog& log) {
  asio::io_context io(1);
  // Before there is a link that a signal could leave behind.
  asio::signal_set signals(io);
  OnEndingSignal(signals, [&io] { io.stop(); });
  const std::unique_ptr<Carrier> carrier =
      Making("serve " + name, [&] { return OpenSerialLine(io, name, device.Line()); });
  Talk talk(*carrier, device, log, 1);
  asio::co_spawn(io, talk.Run(), asio::detached);
  std::cout << "serving " << name << std::endl;
  io.run();
  talk.Finish();
}

}  // namespace kesp::simulator
