// A serial transport, by itself or in a communication object, and the instrument behind its port.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "tests/clients/event_recorder.h"
#include "tests/hangs/serial_peer.h"
#include "tests/hangs/stage.h"
#include "tests/hangs/trial.h"

namespace kesp::hangs {

// TimeOut of a serial transport on this stage.
inline constexpr Milliseconds kSerialTimeOut{1200};
// Where it waits for a modem.
inline constexpr Milliseconds kModemTimeOut{300};
// The silence that ends a raw reply, and one of ReadLineBinary; the latter is longer than a pull of the port
// takes.
inline constexpr Milliseconds kRawSilence{100};
inline constexpr Milliseconds kBinaryGap{400};
// What a detection waits for an answer.
inline constexpr Milliseconds kDetectionWait{2000};

// What the driver may take to give back writes, and to release a port that was just closed.
inline constexpr Milliseconds kWritesBack{200};
inline constexpr Milliseconds kJustClosed{500};
// What the library gives a line that is held up while it opens or closes.
inline constexpr Milliseconds kHeldUp{1000};

inline constexpr char kNothingTaken[] =
    "waits without limit until the port has taken every byte (failures.md, The port takes nothing)";

// More than a line holds that nobody takes from, and the time that it needs at the stage's rate.
inline constexpr std::size_t kMoreThanLine = std::size_t{1} << 20;
inline constexpr Milliseconds kItsTime{std::int64_t{kMoreThanLine} * 10 * 1000 / 921600 + 3};

inline constexpr wchar_t kEditTitle[] = L"RS-232 Communication Settings";

// What ends a text reply.
enum class ReplyMode { kToLf, kToSilence, kRaw };

class SerialStage final : public Stage {
 public:
  SerialStage();
  // Before the peer; the events stay connected otherwise.
  ~SerialStage() override { ReleaseAll(); }

  Outcome OpenPort();
  Outcome ClosePort();
  Outcome ClearBuffers();
  Outcome WriteLine(const std::string& cmd) override { return WriteLine(cmd, false); }
  Outcome WriteLine(const std::string& cmd, bool cr_before);
  Outcome ReadLine() override;
  Outcome ReadLineBinary();
  Outcome Download();
  // At one rate, with *IDN? only.
  Outcome AutoDetect();
  Outcome TestSmartSwitch();
  Outcome PortExists();
  Outcome IsPortAvailable();
  // The settings dialog, which somebody must close.
  Outcome Edit();
  // A radio modem's settings, and an address that it was not given before.
  Outcome ReadModem();
  Outcome WriteModem();
  Outcome PointModem();
  // Query and Update have such an address for a modem, too.
  void UseModem(bool use);

  void SetMode(ReplyMode mode);
  void SetTimeOut(Milliseconds time);
  void SetRate(EKespBaudRate3 rate);
  void UseSwitch(bool use);
  void UseAdapter(bool use);
  // The line heeds XOFF and XON, at its next opening.
  void UseFlowControl(bool use);
  // Opens the port as an operation of the communication object does, and leaves it open.
  Outcome OpenByOperation();
  // The peer takes nothing from now on; in a WriteLine that is stuck then, a handler of WriteUpdate does
  // this, once.
  void OnFullLine(const std::function<void()>& act);

  SerialPeer peer;
  clients::ComPtr<_CKespCOMPort3> port = Transport<_CKespCOMPort3>();
  clients::ComPtr<clients::EventRecorder> events;

 private:
  void ReleaseTransport() override;

  std::unique_ptr<clients::Connection> connection_;
};

// An operation of one command behind a radio modem.
inline std::function<Outcome(SerialStage&)> ThroughModem(Outcome (Stage::*operation)(const std::string&)) {
  return [operation](SerialStage& stage) {
    stage.UseModem(true);
    return (stage.*operation)("T");
  };
}

// The same object, at a port that it opens anew, asks the peer, which is well again.
void JudgeAfterwards(Trial& trial, SerialStage& stage);

}  // namespace kesp::hangs
