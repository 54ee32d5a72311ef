// Calls every member of every class with random arguments, and compares what comes of it with the second
// opinion.
//
//   random_arguments HOST PORT [--seed S] [--from CASE] [--calls N] [--dialogs] [--only CASE] [--list FILE]
//
// At HOST and PORT a device sends each line back. Cases are numbered; --only lives one of them and tells it,
// --list those of a file before the others, one "SEED CASE" a line. Ends with 0 when nothing was found.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "KespCommObj.h"
#include "tests/variants/block_count.h"
#include "tests/variants/box_closer.h"
#include "tests/variants/case_watch.h"
#include "tests/variants/random_case.h"

namespace kesp::variants {
namespace {

// Findings are shown up to this number.
constexpr unsigned kShownFindings = 40;
// How often a case that leaves something behind is run again.
constexpr int kRuns = 5;
constexpr int kRounds = 3;
// From this many calls on the heap is judged.
constexpr unsigned long kCallsForTheHeap = 20000;

struct Request {
  Device device;
  std::uint64_t seed = 1;
  std::uint64_t from = 1;
  unsigned long calls = 2000;
  std::uint64_t only = 0;
  std::string list;
  bool with_dialogs = false;
};

std::string Narrow(const std::wstring& text) {
  std::string bytes(
      static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                                   nullptr, 0, nullptr, nullptr)),
      '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), bytes.data(),
                      static_cast<int>(bytes.size()), nullptr, nullptr);
  for (char& byte : bytes) {
    if (byte == '\0') byte = '~';
  }
  return bytes;
}

void WorkOffMessages() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) DispatchMessageW(&message);
}

// The simulated driver of the GPIB, where there is one, keeps a record of all calls; a new bus begins a new
// one.
void RenewBus() {
  using Load = int __stdcall(const char* json, char* message, long size);
  const HMODULE driver = LoadLibraryExW(L"Gpib-32.dll", nullptr, LOAD_LIBRARY_SEARCH_APPLICATION_DIR);
  const FARPROC load = driver != nullptr ? GetProcAddress(driver, "KespSimulationLoad") : nullptr;
  char message[200];
  // Replies of one byte: both worlds talk to this device, and neither may leave the other half of a reply.
  constexpr char kBus[] =
      R"({"devices": [{"gpib": {"primary": 5}, "reply_terminator": "", "commands": {}, "default": "R"}]})";
  if (load == nullptr) return;
  reinterpret_cast<Load*>(reinterpret_cast<void*>(load))(kBus, message, sizeof message);
  // It has forgotten this thread, too, and says so to the first call.
  ComPtr<_CKespIEEE> transport;
  VARIANT_BOOL answer = VARIANT_FALSE;
  CoCreateInstance(__uuidof(CKespIEEE), nullptr, CLSCTX_INPROC_SERVER,
                   IID_PPV_ARGS(transport.GetAddressOf()));
  if (transport == nullptr) return;
  transport->put_PrimaryAddress(5);
  for (int i = 0; i < 2; ++i) transport->Initialize(&answer);
  transport->Uninitialize(&answer);
}

class Trial {
 public:
  explicit Trial(const Request& request) : request_(request) {
    surroundings_.classes = ReadPublicClasses();
    surroundings_.device = request.device;
    surroundings_.seed = request.seed;
    surroundings_.with_dialogs = request.with_dialogs;
    RenewBus();
  }

  bool Run() {
    if (!request_.list.empty()) RunList();
    if (request_.only != 0) {
      surroundings_.tells_calls = true;
      LiveAndJudge(request_.only);
    } else {
      RunMany();
    }
    return differences_ == 0 && leaks_ == 0 && !heap_has_grown_;
  }

 private:
  void RunList() {
    std::ifstream list(request_.list);
    if (!list) throw std::runtime_error("the list of cases cannot be read");
    for (std::string line; std::getline(list, line);) {
      std::uint64_t number = 0;
      if (std::istringstream(line) >> surroundings_.seed >> number) LiveAndJudge(number);
    }
    std::printf("%lu calls of the cases of the list\n", surroundings_.calls);
    if (surroundings_.calls == 0) throw std::runtime_error("the list has no case");
    surroundings_.seed = request_.seed;
  }

  void RunMany() {
    constexpr int kParts = 10;
    long first_blocks = 0;
    std::uint64_t number = request_.from;
    for (int part = 1; part <= kParts; ++part) {
      for (; surroundings_.calls < request_.calls / kParts * static_cast<unsigned long>(part); ++number)
        LiveAndJudge(number);
      RenewBus();
      const long blocks = static_cast<long>(HeapBlocks()) - explained_blocks_;
      std::printf("%lu calls, heap blocks %ld, and %ld of the automation library's own leaks\n",
                  surroundings_.calls, blocks, explained_blocks_);
      // The first fifth fills what is kept for ever.
      if (part == 2) first_blocks = blocks;
      // A handful comes and goes, and what is made once is not all there after a few calls.
      heap_has_grown_ = surroundings_.calls >= kCallsForTheHeap &&
                        blocks > first_blocks + 100 + static_cast<long>(surroundings_.calls / 1000);
    }
    std::printf("next case %llu\n", static_cast<unsigned long long>(number));
    Report();
  }

  void Report() const {
    std::size_t members = 0;
    for (const PublicClass& one : surroundings_.classes) {
      for (const Member& member : one.members) {
        ++members;
        const std::wstring name = NameOf(one, member);
        const auto use = surroundings_.uses.find(name);
        const bool is_used = use != surroundings_.uses.end();
        std::printf("member %s: %lu calls, %lu carried out\n", Narrow(name).c_str(),
                    is_used ? use->second.calls : 0, is_used ? use->second.carried_out : 0);
      }
    }
    std::printf("figure calls = %lu\nfigure members = %zu of %zu\n", surroundings_.calls,
                surroundings_.uses.size(), members);
    std::printf("figure differences to the second opinion that are not by rule = %u\n", differences_);
    std::printf("figure leaks = %u\nfigure leaks of the automation library itself = %u\n", leaks_,
                leaks_of_others_);
    std::printf("figure differences that were gone at a second try = %u\n", unsteady_);
    if (heap_has_grown_) std::printf("LEAK: the heap has grown\n");
  }

  struct Trace {
    std::vector<std::wstring> findings;
    long grown = 0;  // blocks of COM
    bool is_holding = false;

    bool IsLeaving() const { return grown > 0 || is_holding; }
  };

  Trace Live(std::uint64_t number) {
    NoteCase(number);
    const long before = blocks_.alive();
    Life life = LiveCase(surroundings_, number);
    WorkOffMessages();
    SetErrorInfo(0, nullptr);
    return {.findings = std::move(life.findings),
            .grown = blocks_.alive() - before,
            .is_holding = life.is_holding};
  }

  void LiveAndJudge(std::uint64_t number) {
    Trace first = Live(number);
    if (first.findings.empty() && !first.IsLeaving()) return;
    surroundings_.tells_calls = false;
    // What the network's timing does is gone at the next try; what fills a cache, too.
    const Trace second = Live(number);
    if (!first.findings.empty()) JudgeFindings(number, first, second);
    if (first.IsLeaving() && second.IsLeaving()) JudgeLeak(number);
  }

  void JudgeFindings(std::uint64_t number, const Trace& first, const Trace& second) {
    if (second.findings.empty()) {
      ++unsteady_;
      Tell("gone at a second try", number, first.findings);
    } else if (++differences_ <= kShownFindings) {
      Tell("DIFFERENCE", number, first.findings);
    }
  }

  struct Left {
    long blocks = 0;
    long references = 0;
  };

  // What a few more runs leave behind: one alone may be disturbed by what other threads do.
  Left LeftBehind(std::uint64_t number, bool by_second_opinion) {
    surroundings_.is_control = by_second_opinion;
    Left left;
    for (int i = 0; i < kRuns; ++i) {
      const Trace trace = Live(number);
      left.blocks += trace.grown;
      left.references += trace.is_holding ? 1 : 0;
    }
    surroundings_.is_control = false;
    return left;
  }

  // The automation library of Wine leaves things behind itself; then the second opinion does so in our place,
  // too.
  void JudgeLeak(std::uint64_t number) {
    Left ours;
    Left others;
    // A reply that comes too late now and then is no leak: one shows each time.
    for (int round = 0; round < kRounds; ++round) {
      const auto before = static_cast<long>(HeapBlocks());
      ours = LeftBehind(number, false);
      others = LeftBehind(number, true);
      const long in_all = static_cast<long>(HeapBlocks()) - before;
      explained_blocks_ += round == 0 ? in_all + in_all / kRuns : in_all;
      if (ours.blocks < others.blocks + kRuns && ours.references < others.references + kRuns) {
        ++leaks_of_others_;
        return;
      }
    }
    ++leaks_;
    std::printf(
        "LEAK: %ld blocks and %ld references, and by the second opinion %ld and %ld, case %llu of seed "
        "%llu\n",
        ours.blocks, ours.references, others.blocks, others.references,
        static_cast<unsigned long long>(number), static_cast<unsigned long long>(surroundings_.seed));
  }

  void Tell(const char* what, std::uint64_t number, const std::vector<std::wstring>& findings) const {
    std::printf("%s: case %llu of seed %llu\n", what, static_cast<unsigned long long>(number),
                static_cast<unsigned long long>(surroundings_.seed));
    for (const std::wstring& finding : findings) std::printf("  %s\n", Narrow(finding).c_str());
  }

  const Request request_;
  Surroundings surroundings_;
  BlockCount blocks_;
  BoxCloser closer_;
  unsigned differences_ = 0;
  unsigned leaks_ = 0;
  unsigned leaks_of_others_ = 0;
  long explained_blocks_ = 0;
  unsigned unsteady_ = 0;
  bool heap_has_grown_ = false;
};

Request ReadRequest(int count, char** words) {
  if (count < 3) throw std::runtime_error("random_arguments HOST PORT [options]");
  Request request;
  request.device = {.host = std::wstring(words[1], words[1] + std::strlen(words[1])),
                    .port = static_cast<short>(std::stoi(words[2]))};
  for (int i = 3; i < count; ++i) {
    const std::string option = words[i];
    if (option == "--dialogs") {
      request.with_dialogs = true;
      continue;
    }
    if (++i == count) throw std::runtime_error(option + " takes a value");
    if (option == "--list")
      request.list = words[i];
    else if (option == "--seed")
      request.seed = std::stoull(words[i]);
    else if (option == "--from")
      request.from = std::stoull(words[i]);
    else if (option == "--calls")
      request.calls = std::stoul(words[i]);
    else if (option == "--only")
      request.only = std::stoull(words[i]);
    else
      throw std::runtime_error("unknown option " + option);
  }
  return request;
}

}  // namespace
}  // namespace kesp::variants

int main(int count, char** words) {
  using namespace kesp::variants;
  try {
    const kesp::clients::Apartment apartment;
    WatchCases();
    return Trial(ReadRequest(count, words)).Run() ? 0 : 1;
  } catch (const std::exception& failure) {
    std::printf("FAILED (%s)\n", failure.what());
    return 2;
  }
}
