// The cells at a COM port that do not read: what opens, closes, looks and writes.
#include "tests/hangs/serial_cells.h"

#include "tests/hangs/box_moment.h"
#include "tests/hangs/serial_stage.h"
#include "tests/hangs/trial.h"

namespace kesp::hangs {

namespace {

// Of the infrared adapter, and of each port in the test of a switch.
constexpr Milliseconds kPulse{20};
constexpr Milliseconds kLamp{200};
// Of the library's own clock steps and of opening and closing under Wine, neither of which is a wait.
constexpr Milliseconds kNone{0};
constexpr char kEdit[] = "CKespCOMPort3.Edit";
constexpr char kTest[] = "CKespCOMPort3.TestSmartSwitch";
constexpr char kStyle[] = "CKespCommObj.CommStyle";

struct LineMember {
  std::string name;
  std::string done;
  // Its limit when nothing is taken, and otherwise.
  Milliseconds when_full, otherwise;
  std::function<Outcome(SerialStage&)> call;
};

std::vector<LineMember> LineMembers() {
  return {
      {"CKespCOMPort3.ClosePort", "done", kWritesBack, kNone,
       [](SerialStage& stage) { return stage.ClosePort(); }},
      {"CKespCOMPort3.OpenPort, again", "True", kWritesBack + kJustClosed, kJustClosed,
       [](SerialStage& stage) { return stage.OpenPort(); }},
      {"CKespCOMPort3.ClosePort, with a switch", "done", kWritesBack + kHeldUp, kNone,
       [](SerialStage& stage) {
         stage.UseSwitch(true);
         return stage.ClosePort();
       }},
      {"CKespCOMPort3.OpenPort, with a switch", "True", kWritesBack + kJustClosed + kHeldUp, kJustClosed,
       [](SerialStage& stage) {
         stage.UseSwitch(true);
         return stage.OpenPort();
       }},
      // One pulse, and at this rate three more.
      {"CKespCOMPort3.OpenPort, with an adapter", "True", kWritesBack + kJustClosed + 4 * kPulse,
       kJustClosed + 4 * kPulse,
       [](SerialStage& stage) {
         stage.SetRate(br115200);
         stage.UseAdapter(true);
         return stage.OpenPort();
       }},
      // Six ports of 200 ms.
      {kTest, "done", kWritesBack + kJustClosed + kHeldUp + 6 * kLamp, kJustClosed + 6 * kLamp,
       [](SerialStage& stage) {
         stage.UseSwitch(true);
         return stage.TestSmartSwitch();
       }},
      // In a handler of another one it clears the line before.
      {"CKespCOMPort3.WriteLine", "True", kNone, kNone,
       [](SerialStage& stage) { return stage.WriteLine("T"); }},
      {"CKespCOMPort3.ClearBuffers", "done", kNone, kNone,
       [](SerialStage& stage) { return stage.ClearBuffers(); }},
      {"CKespCOMPort3.PortExists", "True", kJustClosed, kJustClosed,
       [](SerialStage& stage) { return stage.PortExists(); }},
      {"CKespCOMPort3.IsPortAvailable", "False", kJustClosed, kJustClosed,
       [](SerialStage& stage) { return stage.IsPortAvailable(); }},
      // It closes the port that an operation has opened.
      {kStyle, "done", kWritesBack, kNone, [](SerialStage& stage) { return stage.AssignStyle(); }},
      // It closes the port and tries all there are, until its dialog can be seen.
      {kEdit, "False", kWritesBack + kJustClosed, kJustClosed,
       [](SerialStage& stage) { return stage.Edit(); }},
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
  if (member.name.starts_with("CKespCOMPort3.OpenPort")) return RaisedControl(8002);
  // There is something to send.
  if (member.name == "CKespCOMPort3.ClosePort, with a switch" || member.name == "CKespCOMPort3.WriteLine") {
    return RaisedControl(8012);
  }
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
        const Outcome opened = member.name == kStyle ? stage.OpenByOperation() : stage.OpenPort();
        trial.Require("OpenPort", opened.result == "True");
        way.begin(stage);
        const auto call = [&] {
          std::optional<BoxMoment> box;
          if (member.name == kEdit) box.emplace(trial, kEditTitle, IDCANCEL);
          if (member.name == kTest && way.pulled) box.emplace(trial);
          trial.Call([&] { return member.call(stage); });
        };
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

}  // namespace

void AddSerialLineCells(Cells& cells) {
  AddOpenPortCells(cells);
  AddTransmissionCells(cells);
}

Cells SerialCells() {
  Cells cells;
  AddSerialReadingCells(cells);
  AddSerialLineCells(cells);
  AddSerialWritingCells(cells);
  AddSerialModemCells(cells);
  AddSerialHeldUpCells(cells);
  AddSerialReleaseCells(cells);
  return cells;
}

}  // namespace kesp::hangs
