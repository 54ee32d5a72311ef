// The cells of an instrument that holds the line up by XOFF: what sends few bytes, which any line that is
// merely full would take after its clearing.
#include "tests/hangs/box_moment.h"
#include "tests/hangs/serial_cells.h"
#include "tests/hangs/serial_stage.h"

namespace kesp::hangs {

namespace {

constexpr char kXon[] = "\x11";
constexpr char kXoff[] = "\x13";
// The time before "+++", and more.
constexpr Milliseconds kEnd{1700};

struct Sender {
  std::string name;
  bool opens;
  // What it comes to when the line is let go of but nothing answers, and the wait that it has then.
  std::string let_go;
  Milliseconds wait;
  std::vector<std::string> broken;
  std::function<Outcome(SerialStage&)> call;
};

std::vector<Sender> Senders() {
  const std::string refused = FalseWith(cfrOtherError);
  return {
      {"CKespCOMPort3.WriteLine",
       false,
       "True",
       Milliseconds(0),
       {RaisedControl(8012), RaisedControl(8020)},
       [](SerialStage& stage) { return stage.WriteLine("T"); }},
      {"CKespCOMPort3.RFReadModemSettings",
       true,
       "False",
       kModemTimeOut,
       {"False"},
       [](SerialStage& stage) { return stage.ReadModem(); }},
      {"CKespCOMPort3.RFWriteModemSettings",
       false,
       "True",
       kModemTimeOut,
       {"False"},
       [](SerialStage& stage) { return stage.WriteModem(); }},
      {"CKespCOMPort3.RFWriteModemInstrAddress",
       false,
       "False",
       kModemTimeOut,
       {"False"},
       [](SerialStage& stage) { return stage.PointModem(); }},
      {"CKespCOMPort3.AutoDetect",
       true,
       "False",
       kDetectionWait,
       {"False"},
       [](SerialStage& stage) { return stage.AutoDetect(); }},
      {"CKespCommObj.DetectInstrument",
       true,
       "False",
       kDetectionWait,
       {"False"},
       [](SerialStage& stage) { return stage.DetectInstrument(); }},
      {"CKespCommObj.Query, UseRFModem",
       true,
       refused,
       kModemTimeOut,
       {refused},
       ThroughModem(&Stage::Query)},
      {"CKespCommObj.Update, UseRFModem",
       true,
       refused,
       kModemTimeOut,
       {refused},
       ThroughModem(&Stage::Update)},
  };
}

// The peer holds the line up, and after a time lets go of it, or is pulled.
void HoldUp(SerialStage& stage, const std::function<void(LineTalk&)>& after) {
  stage.peer.Behave([after](LineTalk& talk) {
    if (talk.Send(kXoff) && talk.Pause(kEnd)) after(talk);
  });
  std::this_thread::sleep_for(Milliseconds(200));
}

void PlayHeldUp(Trial& trial, const Sender& sender, bool pulls) {
  SerialStage stage;
  stage.UseFlowControl(true);
  stage.SetTimeOut(kModemTimeOut);
  if (!sender.opens) trial.Require("OpenPort", stage.OpenPort().result == "True");
  HoldUp(stage, [&](LineTalk& talk) {
    trial.CountFromNow();
    if (pulls) {
      talk.Pull();
    } else {
      talk.Send(kXon);
    }
    trial.CountFromNow();
  });
  trial.Call([&] { return sender.call(stage); });
  stage.UseFlowControl(false);
  JudgeAfterwards(trial, stage);
}

// With an end that the library puts to it.
struct Bounded {
  std::string name;
  std::vector<std::string> specified;
  Milliseconds limit;
  bool opens;
  bool shows;
  std::function<Outcome(SerialStage&)> call;
};

void PlayBounded(Trial& trial, const Bounded& bounded) {
  SerialStage stage;
  stage.UseFlowControl(true);
  stage.UseSwitch(true);
  if (!bounded.opens) trial.Require("OpenPort", stage.OpenPort().result == "True");
  HoldUp(stage, [](LineTalk&) {});
  {
    std::optional<BoxMoment> box;
    if (bounded.shows) box.emplace(trial);
    trial.Call([&] { return bounded.call(stage); });
  }
  stage.peer.Behave([](LineTalk& talk) { talk.Send(kXon); });
  stage.UseFlowControl(false);
  JudgeAfterwards(trial, stage);
}

}  // namespace

void AddSerialHeldUpCells(Cells& cells) {
  for (const Sender& sender : Senders()) {
    for (const bool pulls : {false, true}) {
      cells.push_back({.transport = "serial",
                       .member = sender.name,
                       .way = std::string("line held up, until it is ") + (pulls ? "pulled" : "let go of"),
                       .specified = pulls ? sender.broken : std::vector{sender.let_go},
                       .limit = pulls ? Milliseconds(0) : sender.wait,
                       .without_limit = kNothingTaken,
                       .play = [=](Trial& trial) { PlayHeldUp(trial, sender, pulls); }});
    }
  }
  const std::vector<Bounded> bounded{
      {"CKespCOMPort3.OpenPort, with a switch",
       {RaisedControl(8012)},
       kHeldUp,
       true,
       false,
       [](SerialStage& stage) { return stage.OpenPort(); }},
      {"CKespCOMPort3.ClosePort, with a switch",
       {"done"},
       kHeldUp + kWritesBack,
       false,
       false,
       [](SerialStage& stage) { return stage.ClosePort(); }},
      {"CKespCOMPort3.TestSmartSwitch",
       {"done"},
       kHeldUp,
       true,
       true,
       [](SerialStage& stage) { return stage.TestSmartSwitch(); }},
  };
  for (const Bounded& member : bounded) {
    cells.push_back({.transport = "serial",
                     .member = member.name,
                     .way = "line held up",
                     .specified = member.specified,
                     .limit = member.limit,
                     .play = [=](Trial& trial) { PlayBounded(trial, member); }});
  }
}

}  // namespace kesp::hangs
