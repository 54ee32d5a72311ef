// Calls every member of every class with random arguments, and compares what comes of it with the second
// opinion. Ends with 0 when nothing was found.
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "tests/faults/held_blocks.h"
#include "tests/variants/box_closer.h"
#include "tests/variants/case_watch.h"
#include "tests/variants/library_blocks.h"
#include "tests/variants/random_case.h"
#include "tests/variants/request.h"

namespace kesp::variants {
namespace {

// Findings are shown up to this number.
constexpr unsigned kShownFindings = 40;
// How often a case that leaves something behind is run again.
constexpr int kRuns = 5;
constexpr int kRounds = 3;
// From this many calls on the heap is judged. A handful of blocks comes and goes, and what is made once is
// not all there after a few calls.
constexpr unsigned long kCallsForTheHeap = 20000;
constexpr long kSpareBlocks = 100;
constexpr long kCallsOfASpareBlock = 1000;
// Of the library's own blocks next to none.
constexpr long kSpareLibraryBlocks = 20;

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

class Trial {
 public:
  explicit Trial(const Request& request) : request_(request) {
    faults::CountComBlocks();
    surroundings_.classes = ReadPublicClasses();
    surroundings_.device = request.device;
    surroundings_.seed = request.seed;
    surroundings_.with_dialogs = request.with_dialogs;
    if (request.com != kNoPort) {
      surroundings_.our_port = request.com;
      surroundings_.their_port = static_cast<short>(request.com + 1);
    }
    CountLibraryBlocks();
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
    std::printf("%lu calls of the cases of the list\n", surroundings_.all.calls());
    if (surroundings_.all.calls() == 0) throw std::runtime_error("the list has no case");
    surroundings_.seed = request_.seed;
  }

  void RunMany() {
    constexpr int kParts = 10;
    Held first;
    std::uint64_t number = request_.from;
    for (int part = 1; part <= kParts; ++part) {
      for (; surroundings_.all.calls() < request_.calls / kParts * static_cast<unsigned long>(part); ++number)
        LiveAndJudge(number);
      const Held now = Held::Now() - explained_;
      const auto calls = static_cast<long>(surroundings_.all.calls());
      std::printf("%ld calls, heap blocks %ld, of them %ld of the library; %ld of other leaks\n", calls,
                  now.blocks, now.library_blocks, explained_.blocks);
      // The first fifth fills what is kept for ever.
      if (part == 2) first = now;
      const Held more = now - first;
      kept_blocks_ = std::max(0L, more.library_blocks);
      heap_has_grown_ =
          surroundings_.all.calls() >= kCallsForTheHeap &&
          (more.blocks > kSpareBlocks + calls / kCallsOfASpareBlock || kept_blocks_ > kSpareLibraryBlocks);
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
        const auto found = surroundings_.uses.find(name);
        const Surroundings::Use use = found != surroundings_.uses.end() ? found->second : Surroundings::Use{};
        std::printf("member %s: %lu succeeded, %lu raised, %lu refused\n", Narrow(name).c_str(),
                    use.succeeded, use.raised, use.refused);
      }
    }
    for (const auto& [member, cases] : excused_)
      std::printf("excused %s: %u cases\n", Narrow(member).c_str(), cases);
    const Surroundings::Use& all = surroundings_.all;
    std::printf("figure calls = %lu\nfigure members = %zu of %zu\n", all.calls(), surroundings_.uses.size(),
                members);
    std::printf("figure calls that succeeded = %lu\nfigure calls that raised an exception = %lu\n",
                all.succeeded, all.raised);
    std::printf("figure calls that were refused = %lu\nfigure look-ups of names = %lu\n", all.refused,
                surroundings_.look_ups);
    std::printf("figure differences to the second opinion that are not by rule = %u\n", differences_);
    std::printf("figure leaks = %u\nfigure leaks of the automation library itself = %u\n", leaks_,
                leaks_of_others_);
    std::printf("figure blocks of the library that stayed = %ld\n", kept_blocks_);
    std::printf("figure differences that were gone at another try = %u\n", unsteady_);
    if (heap_has_grown_) std::printf("LEAK: the heap has grown\n");
  }

  struct Trace {
    std::vector<std::wstring> findings;
    std::wstring last_call;
    long grown = 0;          // blocks of COM
    long library_grown = 0;  // blocks of the library
    bool is_holding = false;

    bool IsLeaving() const { return grown > 0 || library_grown > 0 || is_holding; }
  };

  Trace Live(std::uint64_t number, unsigned most_calls = kCallsOfACase) {
    NoteCase(number);
    const auto before = faults::ComBlocks().Count();
    const long library_before = LibraryBlocks();
    Life life = LiveCase(surroundings_, number, most_calls);
    WorkOffMessages();
    SetErrorInfo(0, nullptr);
    return {.findings = std::move(life.findings),
            .last_call = std::move(life.last_call),
            .grown = faults::ComBlocks().Count() - before,
            .library_grown = LibraryBlocks() - library_before,
            .is_holding = life.is_holding};
  }

  void LiveAndJudge(std::uint64_t number) {
    Trace first = Live(number);
    if (first.findings.empty() && !first.IsLeaving()) return;
    surroundings_.tells_calls = false;
    surroundings_.counts = false;
    // What the network's timing does is gone at the next try; what fills a cache, too.
    const Trace second = Live(number);
    if (!first.findings.empty()) JudgeFindings(number, first, second);
    if (first.IsLeaving() && second.IsLeaving()) JudgeLeak(number);
    surroundings_.counts = true;
  }

  void JudgeFindings(std::uint64_t number, const Trace& first, const Trace& second) {
    bool is_gone = second.findings.empty();
    for (int i = 0; i < kRounds && !is_gone; ++i) is_gone = Live(number).findings.empty();
    if (is_gone) {
      ++unsteady_;
      Tell("gone at another try", number, first.findings);
    } else if (++differences_ <= kShownFindings) {
      Tell("DIFFERENCE", number, first.findings);
    }
  }

  struct Left {
    long blocks = 0;
    long library_blocks = 0;
    long library_texts = 0;
    long references = 0;

    void Tell(const char* by) const {
      std::printf(
          "  %s: %ld blocks of COM, of them %ld texts of the library; %ld blocks of the library; %ld "
          "references\n",
          by, blocks, library_texts, library_blocks, references);
    }
    // An object that somebody still holds has blocks of the library.
    bool IsMoreThan(const Left& other) const {
      return blocks > other.blocks || references > other.references ||
             ((library_blocks > 0 || library_texts > 0) && references == 0);
    }
  };

  // What a few more runs leave behind: one alone may be disturbed by what other threads do.
  Left LeftBehind(std::uint64_t number, Surroundings::Callers callers) {
    surroundings_.callers = callers;
    Left left;
    const LibraryTexts texts;
    for (int i = 0; i < kRuns; ++i) {
      const Trace trace = Live(number);
      left.blocks += trace.grown;
      left.library_blocks += trace.library_grown;
      left.references += trace.is_holding ? 1 : 0;
    }
    left.library_texts = texts.Left();
    surroundings_.callers = Surroundings::Callers::kBoth;
    return left;
  }

  // The member with whose call the case begins to leave something behind.
  std::wstring MemberBehind(std::uint64_t number) {
    unsigned enough = kCallsOfACase;
    for (unsigned too_few = 0; too_few + 1 < enough;) {
      const unsigned middle = (too_few + enough) / 2;
      (Live(number, middle).IsLeaving() ? enough : too_few) = middle;
    }
    return Live(number, enough).last_call;
  }

  // The automation library of Wine leaves things behind itself; then the second opinion does so in our place,
  // too. It calls the same members, so the library's own blocks have no such excuse.
  void JudgeLeak(std::uint64_t number) {
    Left ours;
    Left others;
    const Held before = Held::Now();
    for (int i = 0; i < 2; ++i) Live(number);
    // As much as when the case was found.
    const Held twice = Held::Now() - before;
    // A reply that comes too late now and then is no leak: one shows each time.
    for (int round = 0; round < kRounds; ++round) {
      ours = LeftBehind(number, Surroundings::Callers::kLibrary);
      others = LeftBehind(number, Surroundings::Callers::kSecondOpinion);
      if (!ours.IsMoreThan(others)) {
        ++leaks_of_others_;
        ++excused_[MemberBehind(number)];
        const Held left = Held::Now() - before;
        explained_.blocks += twice.blocks + left.blocks;
        // An object of the library that is held is not its fault.
        if (ours.references + others.references > 0)
          explained_.library_blocks += twice.library_blocks + left.library_blocks;
        return;
      }
    }
    ++leaks_;
    std::printf("LEAK: %s, case %llu of seed %llu\n", Narrow(MemberBehind(number)).c_str(),
                static_cast<unsigned long long>(number), static_cast<unsigned long long>(surroundings_.seed));
    ours.Tell("by the library");
    others.Tell("by the second opinion");
  }

  void Tell(const char* what, std::uint64_t number, const std::vector<std::wstring>& findings) const {
    std::printf("%s: case %llu of seed %llu\n", what, static_cast<unsigned long long>(number),
                static_cast<unsigned long long>(surroundings_.seed));
    for (const std::wstring& finding : findings) std::printf("  %s\n", Narrow(finding).c_str());
  }

  const Request request_;
  Surroundings surroundings_;
  BoxCloser closer_;
  unsigned differences_ = 0;
  unsigned leaks_ = 0;
  unsigned leaks_of_others_ = 0;
  std::map<std::wstring, unsigned> excused_;  // cases by the member behind them
  Held explained_;
  long kept_blocks_ = 0;  // of the library
  unsigned unsteady_ = 0;
  bool heap_has_grown_ = false;
};

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
