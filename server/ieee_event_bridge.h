// The IEEE-488 transport's events on their way to the client's handlers.
#pragma once

#include "gpib/ieee_events.h"
#include "server/connection_points.h"

namespace kesp {

// Raises each event of a CKespIEEE on the connection point of the COM object that owns it.
class IeeeEventBridge final : public CKespIEEEEvents {
 public:
  explicit IeeeEventBridge(EventSource& source) : source_(source) {}

  void AutoDetectUpdate(const std::wstring& cmd, std::int16_t Address, bool& Abort) override;
  void AutoDetectBegin() override;
  void AutoDetectEnd() override;

 private:
  EventSource& source_;
};

}  // namespace kesp
