// A socket listener that writes down what it is told.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "network/message_window_win.h"
#include "network/socket_control_win.h"

namespace kesp {

// Owns a control and listens to it; what is told is written down as "Name(arguments)". As a client's object
// does, it lives as long as somebody refers to it, a notification under way included.
class Recorder final : public SocketListener, public std::enable_shared_from_this<Recorder> {
 public:
  static std::shared_ptr<Recorder> Make() {
    auto recorder = std::make_shared<Recorder>();
    recorder->control = MakeSocketControl(*recorder);
    return recorder;
  }

  std::unique_ptr<SocketControl> control;
  std::vector<std::string> heard;
  // Run after the notification of that name was written down.
  std::map<std::string, std::function<void()>> handlers;

  bool Heard(const std::string& what) const {
    for (const std::string& entry : heard) {
      if (entry == what) return true;
    }
    return false;
  }

  void OnConnect() override { Note("Connect"); }
  void OnClose() override { Note("Close"); }
  void OnError(SocketError& error) override { Note("Error", std::to_string(error.number)); }
  void OnDataArrival(std::int32_t bytes_total) override { Note("DataArrival", std::to_string(bytes_total)); }
  void OnSendProgress(std::int32_t bytes_sent, std::int32_t bytes_remaining) override {
    sent += bytes_sent;
    Note("SendProgress", std::to_string(bytes_sent) + "," + std::to_string(bytes_remaining));
  }
  void OnSendComplete() override { Note("SendComplete"); }
  std::shared_ptr<void> KeepAlive() override { return shared_from_this(); }

  std::int64_t sent = 0;

 private:
  void Note(const std::string& name, const std::string& arguments = {}) {
    heard.push_back(name + "(" + arguments + ")");
    const auto found = handlers.find(name);
    if (found == handlers.end()) return;
    const std::function<void()> handler = found->second;
    handler();
  }
};

inline bool WindowClassExists() {
  WNDCLASSW window_class{};
  return GetClassInfoW(MessageWindow::Module(), MessageWindow::ClassName(), &window_class) != FALSE;
}

}  // namespace kesp
