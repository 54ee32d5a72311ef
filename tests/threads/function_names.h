// The names of the functions of another process.
#pragma once

#include <windows.h>

#include <string>

namespace kesp::threads {

// Asks the system's library for debuggers. Of a module of which that knows nothing, the exports of this
// process's own copy are taken, if there is one. One at a time.
class FunctionNames {
 public:
  explicit FunctionNames(HANDLE process);
  ~FunctionNames();
  FunctionNames(const FunctionNames&) = delete;
  FunctionNames& operator=(const FunctionNames&) = delete;

  // The nearest function before that address as "module!function+offset"; without a name, the offset is that
  // in the module.
  std::string Of(DWORD64 address) const;

 private:
  HANDLE process_;
};

}  // namespace kesp::threads
