// The modem lines of pseudo-terminals, which have none of their own: DTR and RTS of each line open in this
// process.
#pragma once

#include <pthread.h>

namespace kesp::serial_line {

// A table of the lines whose DTR or RTS this process has set; safe from every thread. Values are sets of
// TIOCM_ bits.
//
// Both lines are down until they are raised, and fall when the port is closed. Each change is appended to the
// file named by KESP_MODEM_LINES_LOG: "<monotonic ns> <pts name> DTR=x RTS=y". No input line is ever up.
class ModemLines {
 public:
  // The outputs of the line.
  int Get(int number);

  // Of the outputs named by `mask` those in `value` go up and the others down. A line beyond the table's
  // capacity stays down.
  void Change(int number, int mask, int value);

  // Both outputs fall, and the line is forgotten.
  void Drop(int number);

  bool IsEmpty() const { return __atomic_load_n(&count_, __ATOMIC_ACQUIRE) == 0; }

 private:
  struct Line {
    int number;
    int outputs;
  };
  static constexpr int kCapacity = 64;

  Line* Find(int number);
  Line* FindOrAdd(int number);

  // Of C, because this lives in programs that know nothing of the C++ library.
  pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
  Line lines_[kCapacity] = {};
  int count_ = 0;
};

}  // namespace kesp::serial_line
