// A listener of the IEEE-488 transport's events that writes down what it hears, and can answer back.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "gpib/ieee_events.h"

namespace kesp {

class CKespIEEEEventsFake final : public CKespIEEEEvents {
 public:
  CKespIEEEEventsFake();
  ~CKespIEEEEventsFake() override;

  // Told each event as its name and arguments, for example "AutoDetectUpdate(*IDN?,5,False)".
  std::function<void(std::wstring)> record = [](const std::wstring&) {};
  // Handlers by the event's name, run after it was recorded.
  std::map<std::wstring, std::function<void()>> handlers;
  // The update (1 is the first) at which Abort is set; 0 for never.
  int abort_at_update = 0;

  void AutoDetectUpdate(const std::wstring& cmd, std::int16_t Address, bool& Abort) override;
  void AutoDetectBegin() override;
  void AutoDetectEnd() override;

 private:
  void Heard(const std::wstring& name, const std::wstring& arguments = {});

  int updates_ = 0;
};

}  // namespace kesp
