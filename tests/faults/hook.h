// A stand-in for an imported function of the system that lets calls through, counts them, and fails one.
#pragma once

#include <windows.h>

#include <type_traits>

#include "tests/faults/injector.h"

namespace kesp::faults {

template <class Result>
Result As(std::intptr_t value) {
  if constexpr (std::is_pointer_v<Result>) {
    return reinterpret_cast<Result>(value);
  } else {
    return static_cast<Result>(value);
  }
}

// The answer of a call that fails so.
template <class Result>
Result Fail(const Way& way) {
  SetLastError(way.error);
  return As<Result>(way.result);
}

template <auto kFunction>
struct Hook;

// One class for each function, so that each has its own state; the signature is that of the function itself.
template <class Result, class... Arguments, Result(WINAPI* kFunction)(Arguments...)>
struct Hook<kFunction> {
  static inline HookState state;

  static Result WINAPI Call(Arguments... arguments) {
    const Way* way = TheInjector().Ask(state.number);
    if constexpr (std::is_void_v<Result>) {
      Original()(arguments...);
      Count();
    } else {
      if (way != nullptr && !state.works_anyway) return Fail<Result>(*way);
      const Result result = Original()(arguments...);
      if (Succeeded(result)) Count();
      return way == nullptr ? result : Fail<Result>(*way);
    }
  }

 private:
  static auto Original() { return reinterpret_cast<Result(WINAPI*)(Arguments...)>(state.original); }

  static void Count() {
    if (state.made != Resource::kNone) TheInjector().Count(state.made, 1);
    if (state.taken_back != Resource::kNone) TheInjector().Count(state.taken_back, -1);
  }

  template <class Value>
  static bool Succeeded(Value result) {
    if (state.zero_is_success) return result == As<Value>(0);
    return result != As<Value>(0) && result != As<Value>(-1);
  }
};

// A row of the tables. Without a way to fail it is there to be counted.
template <auto kFunction>
Import Fails(const char* name, std::vector<Way> ways) {
  return Import(name, reinterpret_cast<void*>(&Hook<kFunction>::Call), Hook<kFunction>::state,
                std::move(ways));
}

}  // namespace kesp::faults
