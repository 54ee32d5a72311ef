// An instrument for tests that serves clients over TCP from a thread of the test program.
#pragma once

#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <asio/io_context.hpp>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <variant>

#include "simulator/description.h"
#include "simulator/tcp_server.h"

namespace kesp::simulator {

// The instrument, or the device, that a file describes.
inline Personality LoadInstrument(const std::filesystem::path& file) {
  return std::get<Personality>(LoadDescription(file));
}
inline std::unique_ptr<Device> LoadDevice(const std::filesystem::path& file) {
  return std::get<std::unique_ptr<Device>>(LoadDescription(file));
}

class ServedInstrument {
 public:
  explicit ServedInstrument(Personality personality, Clients clients = Clients::kMany)
      : instrument_(std::move(personality)),
        server_(Listen(io_, "127.0.0.1", 0), instrument_, log_),
        port_(server_.endpoint().port()) {
    asio::co_spawn(io_, server_.Run(clients), asio::detached);
    thread_ = std::thread([this] { io_.run(); });
  }

  ~ServedInstrument() { Stop(); }
  ServedInstrument(const ServedInstrument&) = delete;
  ServedInstrument& operator=(const ServedInstrument&) = delete;

  std::uint16_t port() const { return port_; }

  // Waits until there is nothing left to do, which only an instrument for one client comes to.
  void WaitForEnd() {
    if (thread_.joinable()) thread_.join();
  }

  // Ends the service and returns the lines logged so far.
  std::string Stop() {
    io_.stop();
    WaitForEnd();
    return lines_.str();
  }

 private:
  asio::io_context io_{1};
  std::ostringstream lines_;
  EventLog log_{{&lines_}, [] { return std::string("-"); }};
  Instrument instrument_;
  TcpServer server_;
  const std::uint16_t port_;
  std::thread thread_;
};

}  // namespace kesp::simulator
