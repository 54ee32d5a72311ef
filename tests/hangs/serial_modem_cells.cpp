// The cells of a radio modem.
#include "tests/hangs/serial_cells.h"
#include "tests/hangs/serial_stage.h"
#include "tests/hangs/trial.h"

namespace kesp::hangs {

namespace {

constexpr Milliseconds kGuard{1000};

struct ModemMember {
  std::string name;
  // How many times TimeOut it takes when the modem confirms "+++" and nothing else, and what it comes to
  // then.
  int waits;
  std::string half_deaf;
  // What it comes to when the modem does not answer at all, and when its port fails.
  std::string deaf, broken;
  std::function<Outcome(SerialStage&)> call;
  Milliseconds time_out = kModemTimeOut;
};

std::vector<ModemMember> ModemMembers() {
  const std::string refused = FalseWith(cfrOtherError);
  return {
      {"CKespCOMPort3.RFReadModemSettings", 9, "False", "False", "False",
       [](SerialStage& stage) { return stage.ReadModem(); }},
      {"CKespCOMPort3.RFWriteModemSettings", 7, "True", "True", "False",
       [](SerialStage& stage) { return stage.WriteModem(); }},
      {"CKespCOMPort3.RFWriteModemInstrAddress", 5, "True", "False", "False",
       [](SerialStage& stage) { return stage.PointModem(); }},
      // The modem's five, and one for the reply.
      {"CKespCommObj.Query, UseRFModem", 6, FalseWith(cfrTimeout), refused, refused,
       ThroughModem(&Stage::Query)},
      {"CKespCommObj.Update, UseRFModem", 5, "True", refused, refused, ThroughModem(&Stage::Update)},
      {"CKespCOMPort3.AutoDetect, UseRFModem", 6, "False", "False", "False",
       [](SerialStage& stage) {
         stage.UseModem(true);
         return stage.AutoDetect();
       },
       kDetectionWait},
  };
}

struct ModemWay {
  std::string name;
  bool confirms;
  bool pulled;
  std::function<void(LineTalk&, Trial&)> behave;
};

void SendWithoutEnd(LineTalk& talk, Trial&) {
  std::string before;
  if (!talk.Until("+++", before)) return;
  while (talk.Send("7777777777") && talk.Pause(Milliseconds(5))) {
  }
}

void ConfirmOnce(LineTalk& talk, Trial&) {
  std::string before;
  if (talk.Until("+++", before)) talk.Send("OK\r");
}

void Trickle(LineTalk& talk, Trial&) {
  std::string before;
  if (!talk.Until("+++", before)) return;
  while (talk.Send("O") && talk.Pause(Milliseconds(1000))) {
  }
}

void PullIt(LineTalk& talk, Trial& trial) {
  std::string before;
  if (!talk.Until("+++", before)) return;
  talk.Pull();
  trial.CountFromNow();
}

std::vector<ModemWay> ModemWays() {
  return {
      {"silent modem", false, false, [](LineTalk&, Trial&) {}},
      {"modem that confirms once, then silence", true, false, ConfirmOnce},
      {"one byte a second", false, false, Trickle},
      {"endless data without an end", false, false, SendWithoutEnd},
      {"port pulled", false, true, PullIt},
  };
}

}  // namespace

void AddSerialModemCells(Cells& cells) {
  for (const ModemMember& member : ModemMembers()) {
    for (const ModemWay& way : ModemWays()) {
      Cell cell{.transport = "serial", .member = member.name, .way = way.name};
      cell.specified = {way.pulled ? member.broken : way.confirms ? member.half_deaf : member.deaf};
      cell.limit = kGuard + (way.confirms ? member.waits : 1) * member.time_out;
      if (way.pulled) cell.limit = Milliseconds(0);
      cell.counts_from_event = way.pulled;
      cell.play = [member, way](Trial& trial) {
        SerialStage stage;
        stage.SetTimeOut(kModemTimeOut);
        trial.Require("OpenPort", stage.OpenPort().result == "True");
        stage.peer.Behave([&](LineTalk& talk) { way.behave(talk, trial); });
        trial.Call([&] { return member.call(stage); });
        stage.SetTimeOut(kSerialTimeOut);
        JudgeAfterwards(trial, stage);
      };
      cells.push_back(std::move(cell));
    }
  }
}

}  // namespace kesp::hangs
