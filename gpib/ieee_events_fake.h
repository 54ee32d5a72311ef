// A listener of the IEEE-488 transport's events that writes down what it hears, and can answer back.
#pragma once

#include <cstdint>
#include <string>

#include "gpib/ieee_events.h"
#include "support/event_record_fake.h"

namespace kesp {

class CKespIEEEEventsFake final : public CKespIEEEEvents, public EventRecordFake {
 public:
  CKespIEEEEventsFake();
  ~CKespIEEEEventsFake() override;

  // The update (1 is the first) at which Abort is set; 0 for never.
  int abort_at_update = 0;

  void AutoDetectUpdate(const std::wstring& cmd, std::int16_t Address, bool& Abort) override;
  void AutoDetectBegin() override;
  void AutoDetectEnd() override;

 private:
  int updates_ = 0;
};

}  // namespace kesp
