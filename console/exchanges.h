// Gathers the lines of a trace into exchanges.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "console/exchange.h"
#include "console/trace_line.h"

namespace kesp::console {

// Holds one exchange at a time, whatever the length of the trace. Where several programs write into one trace
// at once, their lines cannot be told apart; an exchange that another one interrupts counts as failed.
class Exchanges {
 public:
  using OnExchange = std::function<void(const Exchange&)>;
  explicit Exchanges(OnExchange on_exchange) : on_exchange_(std::move(on_exchange)) {}

  void Add(const TraceLine& line);
  // No line comes for a while: hands out what can be taken as complete.
  void Pause();
  // No line comes any more.
  void End();

 private:
  using Kind = Exchange::Kind;

  // Each adds the line when it is one of theirs.
  bool AddOfObject(std::string_view message);
  bool AddStep(std::string_view transport, std::string_view step);
  void AddWriting(std::string_view transport, std::string_view arguments);
  void AddErrorInfo(std::string_view step);
  bool AddOfNetwork(std::string_view message);
  bool AddConnecting(std::string_view message);
  bool AddOfDiscovery(std::string_view message);
  bool AddOfSerial(std::string_view message);
  bool AddOfModem(std::string_view message);
  bool AddOfIeee(std::string_view message);
  void AddArrival(std::string_view text);
  void AddReceived(std::string_view text);
  void AddSending(std::string_view text);
  bool AddSendProgress(std::string_view text);

  void Start(Kind kind, std::optional<std::string> command = {});
  void Finish();
  void Fail(std::string_view source, std::string_view description);
  void SetCommand(std::string_view command);
  // complete: its end has come; known: these are all of its bytes.
  void SetReceived(std::string bytes, bool complete, bool known);
  std::string WireBytes(std::string_view text) const;
  bool IsBare() const { return open_ && !of_object_; }

  OnExchange on_exchange_;
  std::optional<Exchange> open_;
  bool of_object_ = false;   // the communication object's; otherwise a transport's own
  bool has_ending_ = false;  // a line of its own ends it
  bool has_ended_ = false;   // that line, or the one that closes the transport, has come
  bool is_utf8_ = false;     // the trace, as far as that is known
  bool known_ = false;       // all bytes of the reply are known
  std::int32_t now_ = 0;     // the counter of the line at hand
  std::string when_;
  bool cut_ = false;  // of the line at hand the end is missing
  std::int32_t sent_at_ = 0;
  std::int32_t arrived_at_ = 0;
  std::string serial_place_;
  std::string serial_settings_;
};

}  // namespace kesp::console
