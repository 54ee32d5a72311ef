// A look now and then while the library handles the messages of this thread.
#pragma once

#include <windows.h>

#include <functional>

namespace kesp::console {

// Calls `look` while it lives. One at a time for each thread. `look` throws nothing.
class RegularLooks {
 public:
  explicit RegularLooks(std::function<void()> look);
  ~RegularLooks();
  RegularLooks(const RegularLooks&) = delete;
  RegularLooks& operator=(const RegularLooks&) = delete;

 private:
  UINT_PTR timer_;
};

}  // namespace kesp::console
