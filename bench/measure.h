// Timing of repeated work, and medians.
#pragma once

#include <windows.h>

#include <algorithm>
#include <vector>

namespace kesp::bench {

// Microseconds since a moment that is the same for the whole run.
inline double MicrosecondsNow() {
  static const double ticks_per_microsecond = [] {
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(frequency.QuadPart) / 1e6;
  }();
  static const LARGE_INTEGER origin = [] {
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    return now;
  }();
  LARGE_INTEGER now;
  QueryPerformanceCounter(&now);
  return static_cast<double>(now.QuadPart - origin.QuadPart) / ticks_per_microsecond;
}

// Microseconds that `work` takes.
template <class Work>
double Microseconds(Work&& work) {
  const double start = MicrosecondsNow();
  work();
  return MicrosecondsNow() - start;
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

//
// Each sample of a side stands between its begin and its end, which are not timed.
template <class LibraryBegin, class Library, class LibraryEnd, class BareBegin, class Bare, class BareEnd>
Pair MeasureInTurn(int samples, int batch, LibraryBegin&& begin_library, Library&& library,
                   LibraryEnd&& end_library, BareBegin&& begin_bare, Bare&& bare, BareEnd&& end_bare) {
  const auto sample = [batch](auto& begin, auto& work, auto& end) {
    begin();
    work();  // what happens once only is not to count
    const double time = Microseconds([&] {
      for (int k = 0; k < batch; ++k) work();
    });
    end();
    return time / batch;
  };
  std::vector<double> of_library;
  std::vector<double> of_bare;
  for (int i = 0; i < samples; ++i) {
    of_library.push_back(sample(begin_library, library, end_library));
    of_bare.push_back(sample(begin_bare, bare, end_bare));
  }
  return {.library = Median(of_library), .bare = Median(of_bare)};
}

template <class Library, class Bare>
Pair MeasureInTurn(int samples, int batch, Library&& library, Bare&& bare) {
  const auto nothing = [] {};
  return MeasureInTurn(samples, batch, nothing, library, nothing, nothing, bare, nothing);
}

inline double InMilliseconds(double microseconds) {
  return microseconds / 1000;
}

inline Pair InMilliseconds(const Pair& pair) {
  return {.library = InMilliseconds(pair.library), .bare = InMilliseconds(pair.bare)};
}

}  // namespace kesp::bench
