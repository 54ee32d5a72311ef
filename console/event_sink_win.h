// Listening to the events of the library's transports.
#pragma once

#include <oleauto.h>
#include <wrl/client.h>

#include <exception>
#include <functional>
#include <string>

namespace kesp::console {

// The arguments of an event, from 0 in the order in which they are declared.
class EventArguments {
 public:
  explicit EventArguments(const DISPPARAMS& arguments) : arguments_(arguments) {}

  int Number(UINT place) const;
  std::string Text(UINT place) const;  // in UTF-8
  // Answers True in an argument that the handler may change.
  void SetTrue(UINT place);

 private:
  VARIANT& At(UINT place) const;

  const DISPPARAMS& arguments_;
};

// Hears the events of an object while it lives.
class EventConnection {
 public:
  // event: its number in the type library.
  using OnEvent = std::function<void(DISPID event, EventArguments arguments)>;

  EventConnection(IUnknown* source, const IID& events, OnEvent on_event);
  ~EventConnection();
  EventConnection(const EventConnection&) = delete;
  EventConnection& operator=(const EventConnection&) = delete;

  // Throws what a handler has thrown meanwhile: that cannot pass through the library.
  void Rethrow() const;

 private:
  class Sink;

  std::exception_ptr thrown_;
  Microsoft::WRL::ComPtr<IConnectionPoint> point_;
  DWORD cookie_ = 0;
};

}  // namespace kesp::console
