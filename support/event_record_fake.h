// What the fake listeners of all transports do with an event: write it down, then answer back.
#pragma once

#include <functional>
#include <initializer_list>
#include <map>
#include <string>

namespace kesp {

// The base of a fake listener.
class EventRecordFake {
 public:
  // Told each event as its name and arguments, for example "SendProgressBegin(3,0)".
  std::function<void(std::wstring)> record = [](const std::wstring&) {};
  // Handlers by the event's name, run after it was recorded.
  std::map<std::wstring, std::function<void()>> handlers;

 protected:
  EventRecordFake();
  ~EventRecordFake();

  void Heard(const std::wstring& name, std::initializer_list<std::wstring> arguments = {});

  // As a log shows it.
  static std::wstring Text(bool value) { return value ? L"True" : L"False"; }
};

}  // namespace kesp
