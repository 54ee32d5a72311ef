// The record of events, each as a line of text, and the handlers that run behind it.
#include "support/event_record_fake.h"

namespace kesp {

EventRecordFake::EventRecordFake() = default;

EventRecordFake::~EventRecordFake() = default;

void EventRecordFake::Heard(const std::wstring& name, std::initializer_list<std::wstring> arguments) {
  std::wstring list;
  for (const std::wstring& argument : arguments) {
    if (&argument != arguments.begin()) list += L",";
    list += argument;
  }
  record(name + L"(" + list + L")");
  const auto found = handlers.find(name);
  if (found == handlers.end()) return;
  const std::function<void()> handler = found->second;  // it may take itself out of the map
  handler();
}

}  // namespace kesp
