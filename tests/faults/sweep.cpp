// Running cases and looking at what they leave.
#include "tests/faults/sweep.h"

#include <oleauto.h>

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <tuple>

#include "tests/faults/excuses.h"
#include "tests/faults/held_blocks.h"
#include "tests/faults/replay.h"

namespace kesp::faults {

namespace {

// A leak is what stays each time; once may be something that is kept for later.
constexpr int kRepetitions = 3;
// In how many of a function's first calls each of its errors is tried.
constexpr unsigned kCallsWithEveryWay = 3;

void PumpWhatWaits() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

Levels SettledLevels() {
  PumpWhatWaits();
  SetErrorInfo(0, nullptr);
  return LevelsNow();
}

const Import& FunctionOf(const Fault& fault) {
  return TheInjector().functions()[fault.function];
}

bool IsAllocation(const std::string& name) {
  return name == "malloc" || name == "calloc" || name == "realloc" || name == "_strdup" ||
         name == "SysAllocStringLen" || name == "SafeArrayCreateVector";
}

void TellStack(const std::vector<void*>& stack) {
  // Of the library's own part: what is around it is this program and Windows.
  for (const void* address : stack) {
    const std::string place = PlaceOf(address);
    if (place.starts_with("KespCommObj.dll")) std::printf("    at %s\n", place.c_str());
  }
}

void TellNew(const char* kind, const HeldBlocks::Map& before, const HeldBlocks::Map& after) {
  for (const auto& [block, stack] : after) {
    if (before.contains(block)) continue;
    std::printf("  %s, asked for\n", kind);
    TellStack(stack);
  }
}

}  // namespace

std::vector<unsigned> CallsToTry(unsigned calls, unsigned most) {
  constexpr unsigned kAll = 50;
  std::vector<unsigned> tried;
  for (unsigned call = 1; call <= calls; call = call < kAll ? call + 1 : call + 1 + call / 8)
    tried.push_back(call);
  if (calls > 0 && tried.back() != calls) tried.push_back(calls);
  if (tried.size() > most) tried.resize(most);
  return tried;
}

bool Sweep::Run() {
  if (!WarmUp()) return false;
  const Injector& injector = TheInjector();
  std::vector<unsigned> calls;
  for (std::size_t i = 0; i < injector.functions().size(); ++i) calls.push_back(injector.Calls(i));
  before_ = SettledLevels();
  CountCalls(calls);
  for (std::size_t i = 0; i < calls.size(); ++i) {
    for (const Fault& fault : CasesOf(i, calls[i])) RunCase(fault);
  }
  return true;
}

bool Sweep::RunCold() {
  const bool counts = options_.after_index < 0;
  const std::optional<Fault> fault = counts ? std::nullopt : NextCase();
  if (!counts && !fault) {
    progress_.is_done = 1;
    return true;
  }
  if (fault) Announce(*fault);
  const Result result = Once(fault ? &*fault : nullptr);
  if (!counts) {
    CountFault(*fault, result);
    Judge(*fault, result);
    return true;
  }
  std::vector<unsigned> calls;
  for (std::size_t i = 0; i < TheInjector().functions().size(); ++i) {
    calls.push_back(TheInjector().Calls(i));
    progress_.calls[i] = static_cast<LONG>(calls.back());
  }
  CountCalls(calls);
  InterlockedIncrement(&progress_.beat);
  return result.verdict.complaints().empty();
}

void Sweep::CountCalls(const std::vector<unsigned>& calls) {
  progress_.calls_seen = 0;
  for (std::size_t i = 0; i < calls.size(); ++i) {
    if (!TheInjector().functions()[i].ways().empty()) progress_.calls_seen += static_cast<LONG>(calls[i]);
  }
}

std::vector<unsigned> Sweep::CallsOf(unsigned calls) const {
  if (!options_.replays && !options_.nth) return CallsToTry(calls, std::min(options_.most, scenario_.most));
  std::vector<unsigned> all(calls);
  std::iota(all.begin(), all.end(), 1u);
  return all;
}

std::optional<Fault> Sweep::NextCase() const {
  for (std::size_t i = 0; i < TheInjector().functions().size(); ++i) {
    const std::vector<Fault> cases = CasesOf(i, static_cast<unsigned>(progress_.calls[i]));
    if (!cases.empty()) return cases.front();
  }
  return std::nullopt;
}

bool Sweep::WarmUp() {
  for (int i = 0; i < kRepetitions; ++i) {
    const Result result = Once(nullptr);
    if (result.verdict.complaints().empty()) continue;
    std::printf("%s fails without a fault\n", scenario_.name);
    for (const std::string& complaint : result.verdict.complaints()) std::printf("  %s\n", complaint.c_str());
    return false;
  }
  return true;
}

std::vector<Fault> Sweep::CasesOf(std::size_t function, unsigned calls) const {
  const Import& import = TheInjector().functions()[function];
  std::vector<Fault> cases;
  if (import.ways().empty() || (options_.function && *options_.function != import.name())) return cases;
  const std::size_t ways = import.ways().size();
  for (const unsigned nth : CallsOf(calls)) {
    for (std::size_t way = 0; way < ways; ++way) {
      const bool is_its_turn = nth <= kCallsWithEveryWay || way == nth % ways || options_.way;
      const Fault fault{.function = function, .nth = nth, .way = way};
      if (is_its_turn && IsWanted(fault)) cases.push_back(fault);
    }
  }
  return cases;
}

bool Sweep::IsWanted(const Fault& fault) const {
  const auto place = std::tuple(static_cast<long>(fault.function), static_cast<long>(fault.nth),
                                static_cast<long>(fault.way));
  if (place <= std::tuple(options_.after_index, options_.after_nth, options_.after_way)) return false;
  if (options_.replays && ReplayedBits(scenario_.name, FunctionOf(fault).name(), fault.nth) == 0)
    return false;
  return (!options_.nth || *options_.nth == fault.nth) && (!options_.way || *options_.way == fault.way);
}

void Sweep::Announce(const Fault& fault) {
  std::snprintf(progress_.function, sizeof progress_.function, "%s", FunctionOf(fault).name());
  progress_.index = static_cast<LONG>(fault.function);
  progress_.nth = static_cast<LONG>(fault.nth);
  progress_.way = static_cast<LONG>(fault.way);
  InterlockedIncrement(&progress_.beat);
}

void Sweep::CountFault(const Fault& fault, const Result& result) {
  if (!result.was_injected) return;
  const char* name = FunctionOf(fault).name();
  progress_.CountFault(scenario_.name);
  if (IsAllocation(name)) ++progress_.allocations;
  if (static_cast<LONG>(result.duration_ms) <= progress_.slowest_ms) return;
  progress_.slowest_ms = static_cast<LONG>(result.duration_ms);
  std::snprintf(progress_.slowest, sizeof progress_.slowest, "%s %u way %u", name, fault.nth,
                static_cast<unsigned>(fault.way));
}

void Sweep::Judge(const Fault& fault, const Result& result) {
  for (const std::string& complaint : result.verdict.complaints()) {
    Tell(result.verdict.WorkedAgain() ? "wrong result" : "object does not work again", fault, complaint);
  }
  if (!result.verdict.WorkedAgain()) {
    ++progress_.idle_objects;
  } else if (!result.verdict.complaints().empty()) {
    ++progress_.wrong_results;
  }
}

void Sweep::RunCase(const Fault& fault) {
  Announce(fault);
  TheInjector().tells_stacks = options_.tells_stacks;
  const Result result = Once(&fault);
  TheInjector().tells_stacks = false;
  CountFault(fault, result);
  if (!result.was_injected) return;
  const std::string leak = LeakOf(fault);
  Judge(fault, result);
  if (leak.empty()) return;
  if (const char* excuse = ExcuseFor(scenario_.name, FunctionOf(fault).name(), leak)) {
    ++progress_.excused_leaks;
    Tell("leak", fault, leak + "; excused: " + excuse);
    return;
  }
  ++progress_.leaks;
  Tell("leak", fault, leak);
  TellBlocks(fault);
}

Sweep::Result Sweep::Once(const Fault* fault) const {
  Injector& injector = TheInjector();
  Result result;
  if (fault == nullptr) result.verdict.ExpectNoFault();
  const DWORD start = GetTickCount();
  injector.Arm(fault);
  {
    const std::unique_ptr<Scenario> scenario = scenario_.make();
    scenario->Run(result.verdict);
    injector.Disarm();
    result.duration_ms = GetTickCount() - start;
    result.verdict.BeginAgain();
    scenario->WorkAgain(result.verdict);
    injector.Resume();
  }
  injector.Disarm();
  result.was_injected = injector.WasInjected();
  return result;
}

std::string Sweep::LeakOf(const Fault& fault) {
  Levels after = SettledLevels();
  if (Growth(before_, after).empty()) {
    before_ = after;
    return {};
  }
  std::string leak;
  for (int i = 0; i < kRepetitions; ++i) {
    Once(nullptr);
    before_ = SettledLevels();
    Once(&fault);
    Once(nullptr);
    after = SettledLevels();
    leak = Growth(before_, after);
    before_ = after;
    if (leak.empty()) return {};
  }
  return leak;
}

void Sweep::TellBlocks(const Fault& fault) const {
  TheInjector().keeps_stacks = true;
  const HeldBlocks::Map blocks = LibraryBlocks().All();
  const HeldBlocks::Map com_blocks = ComBlocks().All();
  Once(&fault);
  std::printf("  the call that failed\n");
  TellStack(TheInjector().stack());
  SettledLevels();
  TellNew("a block", blocks, LibraryBlocks().All());
  TellNew("a block of COM", com_blocks, ComBlocks().All());
  TheInjector().keeps_stacks = false;
  std::fflush(stdout);
}

void Sweep::Tell(const char* kind, const Fault& fault, const std::string& what) const {
  std::printf("%s, %s %s %u way %u: %s\n", kind, scenario_.name, FunctionOf(fault).name(), fault.nth,
              static_cast<unsigned>(fault.way), what.c_str());
  std::fflush(stdout);
}

}  // namespace kesp::faults
