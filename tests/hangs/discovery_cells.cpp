// The cells of a search for instruments over the local network.
#include <array>

#include "tests/hangs/tcp_stage.h"
#include "tests/hangs/tcp_ways.h"
#include "tests/hangs/trial.h"
#include "tests/network_win/loopback_peer_win.h"

namespace kesp::hangs {

namespace {

// This program's host in the network of its own (tools/with-network-hosts); its broadcasts come back to it.
constexpr char kHost[] = "10.88.0.1";
constexpr int kInstrumentPort = 10001;
constexpr u_short kDiscoveryPort = 30718;

// How the broadcast is answered.
enum class Answers { kNone, kOne, kLate, kWithoutEnd, kForeignWithoutEnd };

// A thread that hears the broadcasts of discovery and answers them.
class Responder {
 public:
  explicit Responder(Answers answers) : answers_(answers), socket_(socket(AF_INET, SOCK_DGRAM, 0)) {
    sockaddr_in name{};
    name.sin_family = AF_INET;
    name.sin_port = htons(kDiscoveryPort);
    if (bind(socket_, reinterpret_cast<const sockaddr*>(&name), sizeof name) != 0) {
      throw std::runtime_error("no port for discovery");
    }
    thread_ = std::thread([this] { Run(); });
  }
  ~Responder() {
    ending_ = true;
    thread_.join();
    closesocket(socket_);
  }

 private:
  void Run() {
    std::array<char, 64> request{};
    sockaddr_in from{};
    while (!ending_) {
      if (!WaitReadable(socket_, 10)) continue;
      int size = sizeof from;
      if (recvfrom(socket_, request.data(), static_cast<int>(request.size()), 0,
                   reinterpret_cast<sockaddr*>(&from), &size) > 0) {
        Answer(from);
      }
    }
  }
  void Answer(const sockaddr_in& to) {
    const Clock::time_point end = Clock::now() + Milliseconds(4000);
    if (answers_ == Answers::kNone) return;
    if (answers_ == Answers::kLate) {
      while (!ending_ && Clock::now() < end - Milliseconds(1500))
        std::this_thread::sleep_for(Milliseconds(10));
    }
    const std::string datagram(30, answers_ == Answers::kForeignWithoutEnd ? 'x' : '\xF7');
    do {
      sendto(socket_, datagram.data(), static_cast<int>(datagram.size()), 0,
             reinterpret_cast<const sockaddr*>(&to), sizeof to);
    } while (!ending_ && answers_ >= Answers::kWithoutEnd && Clock::now() < end);
  }

  const Answers answers_;
  SOCKET socket_;
  std::atomic<bool> ending_ = false;
  std::thread thread_;
};

struct Found {
  std::string way;
  Answers answers;
  // Waits of 1 to 2 s for the instrument that was found. One that replies has two, to connect and to reply,
  // which take milliseconds on a machine that is not busy.
  int waits;
  std::function<void(HangingPeer&)> begin;
};

std::vector<Found> Ways() {
  const auto well = [](HangingPeer&) {};
  std::vector<Found> ways{
      {"nobody answers", Answers::kNone, 0, well},
      {"answer after the time", Answers::kLate, 0, well},
      {"endless answers", Answers::kWithoutEnd, 2, well},
      {"endless datagrams that are no answers", Answers::kForeignWithoutEnd, 0, well},
      {"instrument that replies", Answers::kOne, 2, well},
      {"refused connection", Answers::kOne, 1, [](HangingPeer& peer) { peer.Refuse(); }},
      {"dropped connection", Answers::kOne, 4, [](HangingPeer& peer) { peer.IgnoreConnections(); }},
  };
  for (const TcpWay& way : TcpReadingWays()) {
    ways.push_back({way.name, Answers::kOne, 1, [way](HangingPeer& peer) { peer.Behave(way.behaviour); }});
  }
  return ways;
}

Cell DiscoveryCell(const std::string& member, const Found& found,
                   const std::function<Outcome(TcpStage&)>& call) {
  Cell cell{.transport = "discovery", .member = member, .way = found.way};
  const bool answers = found.answers == Answers::kOne || found.answers == Answers::kWithoutEnd;
  cell.specified = {answers ? "True" : "False"};
  cell.limit = (1 + found.waits) * kTcpWait;
  cell.play = [=](Trial& trial) {
    WinsockLibrary library;
    TcpStage stage(kHost, kInstrumentPort);
    EXPECT_EQ(clients::Write(stage.tcp, &_CKespTCP::put_Protocol, sckUDPProtocol), S_OK);
    found.begin(stage.peer);
    {
      const Responder responder(found.answers);
      trial.AwaitFullSecond();
      trial.JudgeReply(trial.Call([&] { return call(stage); }), "");
    }
    stage.peer.Recover();
    EXPECT_EQ(clients::Write(stage.tcp, &_CKespTCP::put_Protocol, sckTCPProtocol), S_OK);
    const std::string token = trial.NewToken();
    trial.JudgeQuery(stage.Query(token), "=" + token);
  };
  return cell;
}

}  // namespace

Cells DiscoveryCells() {
  Cells cells;
  for (const Found& found : Ways()) {
    cells.push_back(
        DiscoveryCell("CKespTCP.AutoDetect", found, [](TcpStage& stage) { return stage.AutoDetect(); }));
  }
  for (const Found& found : Ways()) {
    // What one instrument does is the same for both.
    if (found.waits == 1 || found.waits == 4) continue;
    cells.push_back(DiscoveryCell("CKespCommObj.DetectInstrument", found,
                                  [](TcpStage& stage) { return stage.DetectInstrument(); }));
  }
  return cells;
}

}  // namespace kesp::hangs
