// Which call of which imported function fails next, and how.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace kesp::faults {

// What a failing call looks like to its caller: what it returns, and the thread's last error.
struct Way {
  std::intptr_t result = 0;
  DWORD error = 0;
};

// What the system gives out and takes back, counted between the library and the system.
enum class Resource {
  kNone,
  kHandle,
  kSocket,
  kSockets,
  kKey,
  kModule,
  kLocal,
  kDc,
  kWindowDc,
  kSavedDc,
  kGdiObject,
  kImageList,
  kIcon,
  kTheme,
  kContext,
  kActiveContext,
  kWindowClass,
  kCount
};

const char* NameOf(Resource resource);

// What a hook knows of the function that it stands in for.
struct HookState {
  void* original = nullptr;
  std::size_t number = 0;
  Resource made = Resource::kNone;
  Resource taken_back = Resource::kNone;
  // Functions that answer 0 when they succeed.
  bool zero_is_success = false;
  // A failing call does its work all the same.
  bool works_anyway = false;
};

// A function that the library imports and that can fail.
class Import {
 public:
  Import(const char* name, void* hook, HookState& state, std::vector<Way> ways)
      : name_(name), hook_(hook), state_(&state), ways_(std::move(ways)) {}

  // What a successful call makes, or takes back.
  Import Makes(Resource resource) &&;
  Import TakesBack(Resource resource) &&;
  // A failing call does its work all the same. So it is with all that take back: were what they are given to
  // stay for ever, it would be the system's fault, and nobody could do anything about it.
  Import WorksAnyway() &&;
  // It answers 0 when it succeeds.
  Import ZeroIsSuccess() &&;

  const char* name() const { return name_; }
  void* hook() const { return hook_; }
  HookState& state() const { return *state_; }
  const std::vector<Way>& ways() const { return ways_; }

 private:
  const char* name_;
  void* hook_;
  HookState* state_;
  std::vector<Way> ways_;
};

// One fault: the nth call of that function fails in that way.
struct Fault {
  std::size_t function = 0;
  unsigned nth = 0;
  std::size_t way = 0;
};

// The one injector of the process. The hooks ask it, on whichever thread the library calls.
class Injector {
 public:
  static constexpr std::size_t kMostFunctions = 256;

  // The functions in the order of their numbers, for good.
  void Begin(std::vector<Import> functions);
  const std::vector<Import>& functions() const { return functions_; }

  // Counts from now on; with a fault, lets it happen.
  void Arm(const Fault* fault);
  void Disarm() { armed_ = false; }
  void Resume() { armed_ = true; }
  bool WasInjected() const { return injected_; }
  unsigned Calls(std::size_t function) const { return calls_[function]; }
  // Who made the call that failed, innermost first; where stacks are kept only.
  const std::vector<void*>& stack() const { return stack_; }
  bool keeps_stacks = false;
  // Prints who made the call that fails.
  bool tells_stacks = false;

  // For the hooks: the way in which this call fails; null lets it through.
  const Way* Ask(std::size_t function);
  void Count(Resource resource, long change) { resources_[static_cast<std::size_t>(resource)] += change; }
  long Outstanding(Resource resource) const { return resources_[static_cast<std::size_t>(resource)]; }

 private:
  std::vector<Import> functions_;
  std::atomic<unsigned> calls_[kMostFunctions] = {};
  std::atomic<long> resources_[static_cast<std::size_t>(Resource::kCount)] = {};
  Fault fault_;
  const Way* way_ = nullptr;
  std::atomic<bool> armed_ = false;
  std::atomic<bool> injected_ = false;
  std::vector<void*> stack_;
};

Injector& TheInjector();

// The return addresses of the calling thread, innermost first.
std::vector<void*> StackHere();

// An address as a module and a place in it, for addr2line.
std::string PlaceOf(const void* address);

}  // namespace kesp::faults
