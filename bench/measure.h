// Timing of repeated work, and medians.
#pragma once

#include <windows.h>

#include <algorithm>
#include <vector>

namespace kesp::bench {

// Microseconds that `work` takes.
template <class Work>
double Microseconds(Work&& work) {
  static const double ticks_per_microsecond = [] {
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(frequency.QuadPart) / 1e6;
  }();
  LARGE_INTEGER start;
  LARGE_INTEGER end;
  QueryPerformanceCounter(&start);
  work();
  QueryPerformanceCounter(&end);
  return static_cast<double>(end.QuadPart - start.QuadPart) / ticks_per_microsecond;
}

inline double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

// Medians of two kinds of work that are done in turn, so that both see the same machine. Each sample is the
// mean of `batch` repetitions.
struct Pair {
  double library;
  double bare;
};

template <class Library, class Bare>
Pair MeasureInTurn(int samples, int batch, Library&& library, Bare&& bare) {
  library();
  bare();
  std::vector<double> of_library;
  std::vector<double> of_bare;
  for (int i = 0; i < samples; ++i) {
    of_library.push_back(Microseconds([&] {
                           for (int k = 0; k < batch; ++k) library();
                         }) /
                         batch);
    of_bare.push_back(Microseconds([&] {
                        for (int k = 0; k < batch; ++k) bare();
                      }) /
                      batch);
  }
  return {.library = Median(of_library), .bare = Median(of_bare)};
}

}  // namespace kesp::bench
