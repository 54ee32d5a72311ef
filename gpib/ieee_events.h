// The events of the IEEE-488 transport, as a listener.
#pragma once

#include <cstdint>
#include <string>

namespace kesp {

// Receives the events of one CKespIEEE, on its thread, from inside its calls. The names and arguments are
// those of the event interface __CKespIEEE; in/out arguments are references. The other events of that
// interface are never raised, so they are missing here.
class CKespIEEEEvents {
 public:
  virtual ~CKespIEEEEvents() = default;

  virtual void AutoDetectUpdate(const std::wstring& cmd, std::int16_t Address, bool& Abort) = 0;
  virtual void AutoDetectBegin() = 0;
  virtual void AutoDetectEnd() = 0;
};

}  // namespace kesp
