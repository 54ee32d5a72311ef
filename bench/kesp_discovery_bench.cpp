// Measures discovery beside bare Winsock, on the same network in the same run.
//
//   kesp-discovery-bench      (tools/bench makes the network and runs it)
//
// Prints a table of medians in microseconds and the ratio of each library row to its bare row; then how many
// senders each side heard at least. Ends with 1 when one of them missed any.
#include <objbase.h>
#include <winsock2.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "bench/bare_discovery.h"
#include "bench/discovery_client.h"
#include "bench/measure.h"
#include "bench/table.h"

namespace kesp::bench {

namespace {

constexpr int kRounds = 7;
// Long enough for all of the answers where there is a pause, and short enough for the library's time-out.
constexpr DWORD kPauseMs = 300;

// One after the other, each discovered by three parties, as discovery_personality.json has them in its cycle.
const Senders kAll[] = {{.count = 100, .pause_ms = kPauseMs},
                        {.count = 200, .pause_ms = kPauseMs},
                        {.count = 400, .pause_ms = kPauseMs},
                        {.count = 250},
                        {.count = 500},
                        {.count = 1000},
                        {.count = 2000},
                        {.count = 1000, .answers = 2}};

// One discovery after the other by the same party.
class Series {
 public:
  void Add(const DiscoveryFigures& figures) { figures_.push_back(figures); }

  double MedianOf(double DiscoveryFigures::*figure) const {
    std::vector<double> values;
    for (const DiscoveryFigures& figures : figures_) values.push_back(figures.*figure);
    return Median(values);
  }
  std::size_t LeastOf(std::size_t DiscoveryFigures::*figure) const {
    std::vector<std::size_t> values;
    for (const DiscoveryFigures& figures : figures_) values.push_back(figures.*figure);
    return *std::min_element(values.begin(), values.end());
  }

 private:
  std::vector<DiscoveryFigures> figures_;
};

struct Parties {
  Senders senders;
  Series library;
  Series waiting;
  Series messages;

  std::string Name() const {
    return std::to_string(senders.count) + " senders" + (senders.answers == 1 ? "" : ", twice");
  }
};

std::vector<Parties> DiscoverAll() {
  std::vector<Parties> all;
  for (const Senders& senders : kAll)
    all.push_back({.senders = senders, .library = {}, .waiting = {}, .messages = {}});
  for (int round = 0; round <= kRounds; ++round) {
    for (Parties& parties : all) {
      const DiscoveryFigures library = Discover(parties.senders);
      const DiscoveryFigures waiting = DiscoverBare(parties.senders, BareWait::kInReceive);
      const DiscoveryFigures messages = DiscoverBare(parties.senders, BareWait::kForMessages);
      if (round == 0) continue;  // what happens once only is not to count
      parties.library.Add(library);
      parties.waiting.Add(waiting);
      parties.messages.Add(messages);
    }
  }
  return all;
}

Pair PairOf(const Series& library, const Series& bare, double DiscoveryFigures::*figure) {
  return {.library = library.MedianOf(figure), .bare = bare.MedianOf(figure)};
}

void PrintTimes(const std::vector<Parties>& all) {
  PrintHeading();
  for (const Parties& parties : all) {
    if (parties.senders.pause_ms == 0) continue;
    Print("an answer that waits, " + parties.Name() + " / messages",
          PairOf(parties.library, parties.messages, &DiscoveryFigures::receiving));
    Print("an answer that waits, " + parties.Name() + " / recvfrom",
          PairOf(parties.library, parties.waiting, &DiscoveryFigures::receiving));
  }
  const auto each = [&](const auto& print) {
    for (const Parties& parties : all)
      if (parties.senders.pause_ms == 0) print(parties);
  };
  each([](const Parties& parties) {
    Print("handling an answer, " + parties.Name(), parties.library.MedianOf(&DiscoveryFigures::handling));
  });
  each([](const Parties& parties) {
    Print("asking an instrument, " + parties.Name() + " / the same",
          PairOf(parties.library, parties.waiting, &DiscoveryFigures::asking));
  });
  each([](const Parties& parties) {
    Print("AutoDetect, " + parties.Name() + " / until all are asked",
          PairOf(parties.library, parties.waiting, &DiscoveryFigures::whole));
  });
}

// Whether nobody missed anything.
bool PrintHeard(const std::vector<Parties>& all) {
  std::printf("\n%-40s %12s %12s %12s %12s\n", "at least", "library", "messages", "recvfrom", "identified");
  bool complete = true;
  for (const Parties& parties : all) {
    const std::size_t found[] = {parties.library.LeastOf(&DiscoveryFigures::heard),
                                 parties.messages.LeastOf(&DiscoveryFigures::heard),
                                 parties.waiting.LeastOf(&DiscoveryFigures::heard),
                                 parties.library.LeastOf(&DiscoveryFigures::identified)};
    std::printf("heard of %-31s %12zu %12zu %12zu %12zu\n", parties.Name().c_str(), found[0], found[1],
                found[2], found[3]);
    complete = complete && std::all_of(std::begin(found), std::end(found),
                                       [&](std::size_t count) { return count == parties.senders.count; });
  }
  return complete;
}

int Run() {
  const std::vector<Parties> all = DiscoverAll();
  PrintTimes(all);
  return PrintHeard(all) ? 0 : 1;
}

}  // namespace

}  // namespace kesp::bench

int main() {
  WSADATA data;
  WSAStartup(MAKEWORD(2, 2), &data);
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  int code = 1;
  try {
    code = kesp::bench::Run();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
  }
  CoUninitialize();
  WSACleanup();
  return code;
}
