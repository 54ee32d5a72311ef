// The cells at a COM port that do not read: what opens, closes, looks and writes.
#include "tests/hangs/serial_cells.h"

#include "tests/hangs/serial_stage.h"
#include "tests/hangs/trial.h"

namespace kesp::hangs {

namespace {

// What a driver may take to give back writes, and to release a port that was just closed.
constexpr Milliseconds kWritesBack{200};
constexpr Milliseconds kJustClosed{500};
// Of the library's own clock steps and of opening and closing under Wine, neither of which is a wait.
constexpr Milliseconds kNone{0};

struct LineMember {
  std::string name;
  std::string done;
  // Its limit when nothing is taken, and otherwise.
  Milliseconds when_full, otherwise;
  std::function<Outcome(SerialStage&)> call;
};

Outcome Asked(SerialStage& stage,
              HRESULT (STDMETHODCALLTYPE _CKespCOMPort3::*question)(short, VARIANT_BOOL*)) {
  return Answering([&](VARIANT_BOOL* answer) {
    return (stage.port.Get()->*question)(static_cast<short>(clients::SerialWire::PortNumber()), answer);
  });
}

std::vector<LineMember> LineMembers() {
  return {
      {"CKespCOMPort3.ClosePort", "done", kWritesBack, kNone,
       [](SerialStage& stage) { return stage.ClosePort(); }},
      {"CKespCOMPort3.OpenPort, again", "True", kWritesBack + kJustClosed, kJustClosed,
       [](SerialStage& stage) { return stage.OpenPort(); }},
      {"CKespCOMPort3.ClearBuffers", "done", kNone, kNone,
       [](SerialStage& stage) { return stage.ClearBuffers(); }},
      {"CKespCOMPort3.PortExists", "True", kJustClosed, kJustClosed,
       [](SerialStage& stage) { return Asked(stage, &_CKespCOMPort3::PortExists); }},
      {"CKespCOMPort3.IsPortAvailable", "False", kJustClosed, kJustClosed,
       [](SerialStage& stage) { return Asked(stage, &_CKespCOMPort3::IsPortAvailable); }},
      {"CKespCommObj.CommStyle", "done", kNone, kNone,
       [](SerialStage& stage) { return stage.AssignStyle(); }},
      // In the middle of a call the object lives on until that has ended.
      {"release of the CKespCommObj", "done", kNone, kNone,
       [](SerialStage& stage) { return stage.ReleaseAll(); }},
  };
}

struct LineWay {
  std::string name;
  bool full;
  bool pulled;
  std::function<void(SerialStage&)> begin;
};

void SendWithoutEnd(SerialStage& stage) {
  stage.peer.Behave([](LineTalk& talk) {
    while (talk.Send("7777777777") && talk.Pause(Milliseconds(5))) {
    }
  });
  std::this_thread::sleep_for(Milliseconds(200));
}

void PullTheLine(SerialStage& stage) {
  stage.peer.Behave([](LineTalk& talk) { talk.Pull(); });
  std::this_thread::sleep_for(Milliseconds(300));
}

std::vector<LineWay> LineWays() {
  return {
      {"silent peer", false, false, [](SerialStage& stage) { stage.WriteLine("begin"); }},
      {"line that takes nothing", true, false, [](SerialStage&) {}},
      {"endless data", false, false, SendWithoutEnd},
      {"port pulled", false, true, PullTheLine},
  };
}

// In the middle of a WriteLine that is stuck, which ends with the port.
void CallOnFullLine(SerialStage& stage, const std::function<void()>& call) {
  const clients::ComPtr<_CKespCOMPort3> port = stage.port;
  stage.OnFullLine([&] {
    call();
    port->ClosePort();
  });
  const clients::Text text(std::wstring(kMoreThanLine, L'x'));
  VARIANT_BOOL answer = VARIANT_FALSE;
  port->WriteLine(text.get(), nullptr, nullptr, VARIANT_FALSE, &answer);
}

// What a member comes to when its port is pulled.
std::string DoneWithoutPort(const LineMember& member) {
  if (member.name == "CKespCOMPort3.OpenPort, again") return RaisedControl(8002);
  if (member.name == "CKespCOMPort3.PortExists") return "False";
  return member.done;
}

void AddOpenPortCells(Cells& cells) {
  for (const LineMember& member : LineMembers()) {
    for (const LineWay& way : LineWays()) {
      Cell cell{.transport = "serial", .member = member.name, .way = way.name};
      cell.specified = {way.pulled ? DoneWithoutPort(member) : member.done};
      // Whether a driver refuses to clear what is gone is its own matter; Wine's does not.
      if (way.pulled && member.name == "CKespCOMPort3.ClearBuffers") {
        cell.specified.insert(cell.specified.end(), {RaisedControl(8012), RaisedControl(8020)});
      }
      cell.limit = way.full ? member.when_full : member.otherwise;
      cell.play = [member, way](Trial& trial) {
        SerialStage stage;
        trial.Require("OpenPort", stage.OpenPort().result == "True");
        way.begin(stage);
        const auto call = [&] { trial.Call([&] { return member.call(stage); }); };
        if (way.full) {
          CallOnFullLine(stage, call);
        } else {
          call();
        }
        JudgeAfterwards(trial, stage);
      };
      cells.push_back(std::move(cell));
    }
  }
}

// Closing waits for the time of the bytes on the line, or for ten seconds.
void AddTransmissionCells(Cells& cells) {
  for (const int bytes : {15, 300}) {
    const Milliseconds time{std::min(bytes * 10 * 1000 / 150 + 2, 10000)};
    cells.push_back({.transport = "serial",
                     .member = "CKespCOMPort3.ClosePort",
                     .way = std::to_string(bytes) + " bytes at 150 bit/s on the line",
                     .specified = {"done"},
                     .limit = time,
                     .play = [bytes](Trial& trial) {
                       SerialStage stage;
                       stage.SetRate(br150);
                       trial.Require("OpenPort", stage.OpenPort().result == "True");
                       stage.WriteLine(std::string(static_cast<std::size_t>(bytes) - 1, 'x'));
                       trial.Call([&] { return stage.ClosePort(); });
                       stage.SetRate(br921600);
                       JudgeAfterwards(trial, stage);
                     }});
  }
}

// A port that was just closed, by this object, may be looked at at once.
void AddJustClosedCells(Cells& cells) {
  const std::vector<LineMember> members{
      {"CKespCOMPort3.OpenPort", "True", kNone, kJustClosed,
       [](SerialStage& stage) { return stage.OpenPort(); }},
      {"CKespCOMPort3.PortExists", "True", kNone, kJustClosed,
       [](SerialStage& stage) { return Asked(stage, &_CKespCOMPort3::PortExists); }},
      {"CKespCOMPort3.IsPortAvailable", "True", kNone, kJustClosed,
       [](SerialStage& stage) { return Asked(stage, &_CKespCOMPort3::IsPortAvailable); }},
  };
  for (const LineMember& member : members) {
    cells.push_back({.transport = "serial",
                     .member = member.name,
                     .way = "port just closed",
                     .specified = {member.done},
                     .limit = kJustClosed,
                     .play = [member](Trial& trial) {
                       SerialStage stage;
                       trial.Require("OpenPort", stage.OpenPort().result == "True");
                       stage.ClosePort();
                       trial.Call([&] { return member.call(stage); });
                       JudgeAfterwards(trial, stage);
                     }});
  }
}

void AddSilentSwitchCell(Cells& cells) {
  cells.push_back({.transport = "serial",
                   .member = "CKespCOMPort3.TestSmartSwitch",
                   .way = "silent peer",
                   .specified = {"done"},
                   // Six ports of 200 ms.
                   .limit = Milliseconds(6 * 200) + kJustClosed,
                   .play = [](Trial& trial) {
                     SerialStage stage;
                     stage.peer.Behave([](LineTalk&) {});
                     stage.UseSwitch(true);
                     trial.Call([&] { return Doing([&] { return stage.port->TestSmartSwitch(); }); });
                     JudgeAfterwards(trial, stage);
                   }});
}

}  // namespace

void AddSerialLineCells(Cells& cells) {
  AddOpenPortCells(cells);
  AddTransmissionCells(cells);
  AddJustClosedCells(cells);
  AddSilentSwitchCell(cells);
}

Cells SerialCells() {
  Cells cells;
  AddSerialReadingCells(cells);
  AddSerialLineCells(cells);
  AddSerialWritingCells(cells);
  AddSerialModemCells(cells);
  return cells;
}

}  // namespace kesp::hangs
