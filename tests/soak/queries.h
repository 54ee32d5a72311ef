// A communication object that is asked for one reply after the other.
#pragma once

#include <string>

#include "bench/calls.h"

namespace kesp::soak {

class QueryClient {
 public:
  // What a reply has behind the command that it repeats.
  explicit QueryClient(std::string reply_end);

  ::_CKespCommObj* comm() const { return comm_.Get(); }

  // Sends a command that nobody else sends and compares the reply: odd numbers by name, even ones through the
  // vtable. Throws std::runtime_error with what the object says, or with the reply when it is another one.
  void Ask(long number) const;

 private:
  std::string QueryEarly(BSTR command) const;
  std::string QueryLate(BSTR command) const;
  [[noreturn]] void ThrowFailure() const;

  std::string reply_end_;
  Microsoft::WRL::ComPtr<::_CKespCommObj> comm_;
  DISPID query_id_;
};

// Characters of ASCII.
std::string Narrow(BSTR text);

}  // namespace kesp::soak
