// The cells of what writes at a COM port that takes nothing, or that is pulled, and of a release in the
// middle.
#include "tests/hangs/serial_cells.h"
#include "tests/hangs/serial_stage.h"
#include "tests/hangs/trial.h"

namespace kesp::hangs {

namespace {

constexpr Milliseconds kEnd{700};

// How the trial ends a WriteLine on a full line, and what that comes to.
struct Ending {
  std::string name;
  std::vector<std::string> specified;
  Milliseconds limit;
  std::function<void(SerialStage&)> act;
};

std::vector<Ending> Endings() {
  return {
      {"ClearBuffers in a handler",
       {"True"},
       Milliseconds(0),
       [](SerialStage& stage) { stage.ClearBuffers(); }},
      {"ClosePort in a handler",
       {RaisedControl(8018)},
       kWritesBack,
       [](SerialStage& stage) { stage.ClosePort(); }},
  };
}

void AddHandlerCells(Cells& cells) {
  for (const bool cr_before : {false, true}) {
    for (const Ending& ending : Endings()) {
      cells.push_back({.transport = "serial",
                       .member = std::string("CKespCOMPort3.WriteLine") + (cr_before ? ", CRBeforeCmd" : ""),
                       .way = "line that takes nothing, ended by " + ending.name,
                       .specified = ending.specified,
                       .limit = ending.limit,
                       .without_limit = kNothingTaken,
                       .play = [=](Trial& trial) {
                         SerialStage stage;
                         trial.Require("OpenPort", stage.OpenPort().result == "True");
                         stage.OnFullLine([&] {
                           trial.CountFromNow();
                           ending.act(stage);
                         });
                         trial.Call(
                             [&] { return stage.WriteLine(std::string(kMoreThanLine, 'x'), cr_before); });
                         JudgeAfterwards(trial, stage);
                       }});
    }
  }
}

struct Writer {
  std::string name;
  std::string done;
  std::vector<std::string> broken;
  bool opens;
  std::function<Outcome(SerialStage&, const std::string& cmd)> call;
};

std::vector<Writer> Writers() {
  return {
      {"CKespCOMPort3.WriteLine",
       "True",
       {RaisedControl(8012), RaisedControl(8020)},
       false,
       [](SerialStage& stage, const std::string& cmd) { return stage.WriteLine(cmd); }},
      {"CKespCommObj.Update",
       "True",
       {FalseWith(cfrWriteFailed)},
       true,
       [](SerialStage& stage, const std::string& cmd) { return stage.Update(cmd); }},
      {"CKespCommObj.Query",
       FalseWith(cfrTimeout),
       {FalseWith(cfrWriteFailed)},
       true,
       [](SerialStage& stage, const std::string& cmd) { return stage.Query(cmd); }},
      {"CKespCommObj.QueryBinary",
       FalseWith(cfrTimeout),
       {FalseWith(cfrWriteFailed)},
       true,
       [](SerialStage& stage, const std::string& cmd) { return stage.QueryBinary(cmd); }},
  };
}

void PlayWriting(Trial& trial, const Writer& writer, bool pulls) {
  SerialStage stage;
  if (!writer.opens) trial.Require("OpenPort", stage.OpenPort().result == "True");
  stage.peer.StopTaking();
  stage.peer.Behave([&](LineTalk& talk) {
    if (!talk.Pause(kEnd)) return;
    trial.CountFromNow();
    if (!pulls) stage.peer.TakeAgain();
    if (!pulls) return;
    talk.Pull();
    // Now it is gone for certain.
    trial.CountFromNow();
  });
  trial.Call([&] { return writer.call(stage, std::string(kMoreThanLine, 'x')); });
  const std::string token = trial.NewToken();
  if (!writer.opens) {
    JudgeAfterwards(trial, stage);
    return;
  }
  stage.peer.Recover();
  trial.JudgeQuery(stage.Query(token), "=" + token);
}

void AddEndedByPeerCells(Cells& cells) {
  for (const Writer& writer : Writers()) {
    // The bytes need their time on the line; a query then waits for its reply.
    const bool reads = writer.done != "True";
    cells.push_back({.transport = "serial",
                     .member = writer.name,
                     .way = "line that takes nothing, until it takes again",
                     .specified = {writer.done},
                     .limit = kItsTime + (reads ? kSerialTimeOut : Milliseconds(0)),
                     .without_limit = kNothingTaken,
                     .play = [writer](Trial& trial) { PlayWriting(trial, writer, false); }});
    cells.push_back({.transport = "serial",
                     .member = writer.name,
                     .way = "line that takes nothing, until it is pulled",
                     .specified = writer.broken,
                     .without_limit = kNothingTaken,
                     .play = [writer](Trial& trial) { PlayWriting(trial, writer, true); }});
  }
}

void PlayRelease(Trial& trial) {
  SerialStage stage;
  trial.Require("OpenPort", stage.OpenPort().result == "True");
  stage.peer.Behave([](LineTalk& talk) {
    if (talk.Command()) talk.Send("=12.");
  });
  stage.WriteLine(trial.NewToken());
  stage.events->handlers[L"ReadUpdate"] = [&](DISPPARAMS&) { stage.ReleaseAll(); };
  trial.Call([&] { return stage.ReadLine(); });
  stage.events->handlers.clear();
}

// The client lets go of the object in a handler, in the middle of its read.
void AddReleaseCell(Cells& cells) {
  cells.push_back({.transport = "serial",
                   .member = "CKespCOMPort3.ReadLine",
                   .way = "released in the middle of a reply",
                   .specified = {Raised(ERR_READ_TIMEOUT)},
                   .limit = kSerialTimeOut,
                   .play = [](Trial& trial) {
                     PlayRelease(trial);
                     SerialStage another;
                     const std::string token = trial.NewToken();
                     trial.JudgeQuery(another.Query(token), "=" + token);
                   }});
}

}  // namespace

void AddSerialWritingCells(Cells& cells) {
  AddHandlerCells(cells);
  AddEndedByPeerCells(cells);
  AddReleaseCell(cells);
}

}  // namespace kesp::hangs
