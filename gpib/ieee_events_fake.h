// A listener of the IEEE-488 transport's events that writes down what it hears, and can answer back.
#pragma once

#include <functional>
#include <map>
#include <string>

#include "gpib/ieee_events.h"

namespace kesp {

class CKespIEEEEventsFake final : public CKespIEEEEvents {
 public:
  // Told each event as its name and arguments, for example "AutoDetectUpdate(*IDN?,5,False)".
  std::function<void(std::wstring)> record = [](const std::wstring&) {};
  // Handlers by the event's name, run after it was recorded.
  std::map<std::wstring, std::function<void()>> handlers;
  // The update (1 is the first) at which Abort is set; 0 for never.
  int abort_at_update = 0;

  void AutoDetectUpdate(const std::wstring& cmd, std::int16_t Address, bool& Abort) override {
    Heard(L"AutoDetectUpdate", cmd + L"," + std::to_wstring(Address) + L"," + (Abort ? L"True" : L"False"));
    if (++updates_ == abort_at_update) Abort = true;
  }
  void AutoDetectBegin() override { Heard(L"AutoDetectBegin"); }
  void AutoDetectEnd() override { Heard(L"AutoDetectEnd"); }

 private:
  void Heard(const std::wstring& name, const std::wstring& arguments = {}) {
    record(name + L"(" + arguments + L")");
    const auto found = handlers.find(name);
    if (found == handlers.end()) return;
    const std::function<void()> handler = found->second;  // it may take itself out of the map
    handler();
  }

  int updates_ = 0;
};

}  // namespace kesp
