// Finds the function that one of ours stands in front of.
#pragma once

#include <dlfcn.h>

namespace kesp::serial_line {

// The next function of a name in the order of loading, as a rule the C library's. It is looked up at the
// first call, which may come before any constructor has run; two threads that do so at once find the same.
template <typename Function>
class NextFunction {
 public:
  explicit constexpr NextFunction(const char* name) : name_(name) {}

  Function* Get() {
    Function* found = __atomic_load_n(&found_, __ATOMIC_RELAXED);
    if (found != nullptr) return found;
    found = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name_));
    __atomic_store_n(&found_, found, __ATOMIC_RELAXED);
    return found;
  }

 private:
  const char* name_;
  Function* found_ = nullptr;
};

}  // namespace kesp::serial_line
