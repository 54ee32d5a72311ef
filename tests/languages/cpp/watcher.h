// A handler of a detection's events that writes them down, and stops it where it is told to.
#pragma once

#include "event_sink.h"

class Watcher final : public EventSink {
 public:
  Watcher(IUnknown* tcp, bool stops) : EventSink(tcp, __uuidof(__CKespTCP)), stops_(stops) {}

  std::wstring heard;

  void Heard(DISPID event, const DISPPARAMS& arguments) override {
    constexpr DISPID kUpdate = 13, kBegin = 14, kEnd = 15;
    if (event == kBegin) heard += L"begin ";
    if (event == kEnd) heard += L"end";
    if (event != kUpdate) return;
    // cmd, IPAddress, Port, Abort: in reverse.
    const VARIANT* argument = arguments.rgvarg;
    heard += std::wstring(V_BSTR(&argument[3])) + L' ' + V_BSTR(&argument[2]) + L' ' +
             std::to_wstring(V_I2(&argument[1])) +
             (*V_BOOLREF(&argument[0]) != VARIANT_FALSE ? L" True " : L" False ");
    if (stops_) *V_BOOLREF(&argument[0]) = VARIANT_TRUE;
  }

 private:
  const bool stops_;
};
