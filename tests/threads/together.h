// Threads that begin at the same moment, and how often they do it.
#pragma once

#include <barrier>
#include <cstdlib>
#include <functional>
#include <thread>
#include <vector>

namespace kesp::threads {

// How often a test repeats what it does: `few` times, or as many as KESP_THREADS_ROUNDS says.
inline int Rounds(int few) {
  const char* const more = std::getenv("KESP_THREADS_ROUNDS");
  return more == nullptr ? few : std::atoi(more);
}

// Runs the work on so many threads, none of which begins before all are there. Each gets its number.
inline void RunTogether(int count, const std::function<void(int)>& work) {
  std::barrier start(count);
  std::vector<std::thread> threads;
  for (int number = 0; number < count; ++number) {
    threads.emplace_back([&, number] {
      start.arrive_and_wait();
      work(number);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace kesp::threads
