// Answers discovery datagrams as the personalities of the instruments say.
#include "simulator/discovery_responder.h"

#include <algorithm>
#include <asio/any_io_executor.hpp>
#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <asio/this_coro.hpp>
#include <chrono>
#include <span>
#include <utility>
#include <variant>

#include "simulator/bytes_text.h"
#include "simulator/discovery_log.h"

namespace kesp::simulator {
namespace {

using std::chrono::milliseconds;

// How many datagrams go out before other work has its turn, and for how long.
struct Batch {
  std::size_t datagrams;
  milliseconds pause;
};

Batch BatchFor(unsigned rate) {
  if (rate == 0) return Batch{64, milliseconds(0)};
  const std::size_t datagrams = std::max(1U, rate / 100);
  return Batch{datagrams, milliseconds((datagrams * 1000 + rate - 1) / rate)};
}

// The answer to one request, datagram by datagram.
class Reply {
 public:
  Reply(DatagramPort& port, EventLog& log, const AnswerManner& manner, const asio::ip::udp::endpoint& to)
      : port_(port), log_(log), manner_(manner), to_(to), batch_(BatchFor(manner.rate)) {}

  asio::awaitable<void> Do(const Datagram& datagram) {
    co_await SendMany(std::span(&datagram, 1), manner_.from ? manner_.from->size() : 1);
  }
  asio::awaitable<void> Do(const Storm& storm) { co_await SendMany(storm.datagrams, storm.count); }
  asio::awaitable<void> Do(const Wait& wait) { co_await port_.Pause(wait.length); }

 private:
  asio::awaitable<void> SendMany(std::span<const Datagram> datagrams, std::size_t count) {
    DiscoveryLog lines(log_, to_, manner_.from, count);
    for (std::size_t i = 0; i < count; ++i) {
      if (sent_ > 0 && sent_ % batch_.datagrams == 0) co_await port_.Pause(batch_.pause);
      ++sent_;
      const std::string_view bytes = datagrams[i % datagrams.size()].bytes;
      const std::optional<asio::ip::address_v4> from =
          manner_.from ? std::optional(manner_.from->At(i)) : std::nullopt;
      const std::error_code error = co_await port_.Send(bytes, to_, from);
      if (error) {
        lines.Failed(from, error);
      } else {
        lines.Sent(from, bytes.size());
      }
    }
    lines.Finish();
  }

  DatagramPort& port_;
  EventLog& log_;
  const AnswerManner& manner_;
  const asio::ip::udp::endpoint to_;
  const Batch batch_;
  std::size_t sent_ = 0;
};

}  // namespace

DiscoveryResponder::DiscoveryResponder(DatagramPort& port, std::vector<Answerer> answerers, EventLog& log)
    : port_(port), answerers_(std::move(answerers)), log_(log) {}

asio::awaitable<void> DiscoveryResponder::Run() {
  const asio::any_io_executor executor = co_await asio::this_coro::executor;
  for (;;) {
    const ReceivedDatagram received = co_await port_.Receive();
    if (received.error) {
      log_.Line(0, "cannot receive a discovery datagram: " + received.error.message());
      co_await port_.Pause(milliseconds(50));
    } else if (received.bytes == kDiscoveryRequest) {
      log_.Line(0, "discovery from " + TextOf(received.from));
      for (const Answerer& answerer : answerers_)
        asio::co_spawn(executor, Answer(answerer, received.from), asio::detached);
    } else {
      log_.Line(0, "no discovery from " + TextOf(received.from) + ": " + Quoted(received.bytes) + " (" +
                       Counted(received.bytes.size(), "byte") + ")");
    }
  }
}

asio::awaitable<void> DiscoveryResponder::Answer(const Answerer& answerer, Endpoint to) {
  Reply reply(port_, log_, answerer.manner, to);
  for (const DiscoveryAction& action : answerer.instrument.Discovered())
    co_await std::visit([&reply](const auto& kind) { return reply.Do(kind); }, action);
}

}  // namespace kesp::simulator
