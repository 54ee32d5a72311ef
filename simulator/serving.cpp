// What the program does between its ready line and its end: serve clients over TCP, or one serial line.
#include "simulator/serving.h"

#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>
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

// Answers leave from the addresses that were asked for, or from that of the instrument.
Answerer AnswererAt(const Station& station, const Options& options) {
  AnswerManner manner{options.discovery_from, options.discovery_rate};
  const asio::ip::address_v4 host = asio::ip::make_address_v4(station.address.host);
  if (!manner.from && !host.is_unspecified()) manner.from = AddressRange{host, host};
  return {*station.instrument, manner};
}

// The UDP side of instruments that answer discovery.
class Discovery {
 public:
  Discovery(asio::io_context& io, const Options& options, const std::vector<Station>& stations, EventLog& log)
      : port_(io, options.discovery_port), responder_(port_, AnswerersAt(stations, options), log) {
    asio::co_spawn(io, responder_.Run(), asio::detached);
  }

  asio::ip::udp::endpoint endpoint() const { return port_.endpoint(); }

 private:
  static std::vector<Answerer> AnswerersAt(const std::vector<Station>& stations, const Options& options) {
    std::vector<Answerer> answerers;
    for (const Station& station : stations) answerers.push_back(AnswererAt(station, options));
    return answerers;
  }

  UdpPort port_;
  DiscoveryResponder responder_;
};

std::unique_ptr<Discovery> MakeDiscovery(asio::io_context& io, const Options& options,
                                         const std::vector<Station>& stations, EventLog& log) {
  if (!options.discovery) return nullptr;
  return Making("listen for discovery on port " + std::to_string(options.discovery_port),
                [&] { return std::make_unique<Discovery>(io, options, stations, log); });
}

std::vector<Door> OpenDoors(asio::io_context& io, const std::vector<Station>& stations) {
  std::vector<Door> doors;
  for (const auto& [address, instrument] : stations) {
    const std::string& host = address.host;
    const std::uint16_t port = address.port;
    doors.push_back({Making("listen on " + host + " port " + std::to_string(port),
                            [&io, &host, port] { return Listen(io, host, port); }),
                     instrument});
  }
  return doors;
}

}  // namespace

void ServeTcp(const Options& options, const std::vector<Station>& stations, EventLog& log) {
  asio::io_context io(1);
  TcpServer server(OpenDoors(io, stations), log);
  const std::unique_ptr<Discovery> discovery = MakeDiscovery(io, options, stations, log);
  asio::signal_set signals(io);
  OnEndingSignal(signals, [&] {
    server.AbandonClients();
    io.stop();
  });
  server.Start(options.once ? Clients::kOne : Clients::kMany, [&io] { io.stop(); });
  std::cout << "listening on " << server.Endpoints() << std::endl;
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
