// The cells of the IEEE-488 transport and of a communication object that uses it: what devices do.
#include "tests/hangs/gpib_stage.h"

namespace kesp::hangs {

namespace {

constexpr Milliseconds kEnd{700};

// What a device does in place of a reply.
struct GpibWay {
  std::string name;
  short address;
  std::string cmd;
  bool replies;
};

std::vector<GpibWay> ReadingWays() {
  return {
      {"silent peer", 5, "SILENT?", false},
      {"one byte a second", 5, "BYTES?", false},
      {"endless data without an end", 6, "ENDLESS?", true},
      {"half a reply, then silence", 6, "HALF?", false},
      {"late reply", 5, "LATE?", false},
      {"late reply, of a device that keeps it", 7, "LATE?", false},
      {"garbage in place of a reply", 5, "GARBAGE?", true},
  };
}

void AddReadLineCells(Cells& cells) {
  for (const GpibWay& way : ReadingWays()) {
    cells.push_back({.transport = "GPIB",
                     .member = "CKespIEEE.ReadLine",
                     .way = way.name,
                     .specified = {way.replies ? "True" : Raised(ERR_IBRD)},
                     .limit = kDriverWait,
                     .play = [way](Trial& trial) {
                       GpibStage stage;
                       stage.PointAt(way.address);
                       trial.Require("Initialize", stage.Initialize().result == "True");
                       stage.WriteLine(way.cmd);
                       trial.JudgeReply(trial.Call([&] { return stage.ReadLine(); }), "");
                       if (way.cmd == "LATE?") std::this_thread::sleep_for(kEnd);
                       if (way.address == 7) trial.NoteAnnouncedReply(stage.Exchange(trial.NewToken()));
                       if (way.address == 5) {
                         const std::string token = trial.NewToken();
                         trial.JudgeQuery(stage.Exchange(token), token);
                       }
                       JudgeAfterwards(trial, stage, false);
                     }});
  }
}

void AddQueryCells(Cells& cells) {
  for (const GpibWay& way : ReadingWays()) {
    cells.push_back({.transport = "GPIB",
                     .member = "CKespCommObj.Query",
                     .way = way.name,
                     .specified = {way.replies ? "True" : FalseWith(cfrReadFailed)},
                     .limit = kDriverWait,
                     .play = [way](Trial& trial) {
                       GpibStage stage;
                       stage.PointAt(way.address);
                       trial.JudgeReply(trial.Call([&] { return stage.Query(way.cmd); }), "");
                       if (way.cmd == "LATE?") std::this_thread::sleep_for(kEnd);
                       if (way.address != 6) {
                         // The clear at its opening drops what the device has kept.
                         const std::string token = trial.NewToken();
                         trial.JudgeQuery(stage.Query(token), token);
                       }
                       JudgeAfterwards(trial, stage, true);
                     }});
  }
}

// The unread rest of an earlier reply: it is gone when the device drops it at the next command, or is
// cleared.
void AddStaleCells(Cells& cells) {
  for (const short address : {short{5}, short{7}}) {
    const std::string keeps = address == 7 ? " that the device keeps" : "";
    cells.push_back({.transport = "GPIB",
                     .member = "CKespIEEE.ReadLine",
                     .way = "unread rest of an earlier reply" + keeps,
                     .specified = {"True"},
                     .limit = kDriverWait,
                     .play = [address](Trial& trial) {
                       GpibStage stage;
                       stage.PointAt(address);
                       trial.Require("Initialize", stage.Initialize().result == "True");
                       stage.WriteLine("LONG?");
                       stage.ReadLine();
                       if (address == 7) trial.NoteAnnouncedReply(stage.Exchange(trial.NewToken()));
                       if (address == 7) trial.Require("Initialize", stage.Initialize().result == "True");
                       const std::string token = trial.NewToken();
                       stage.WriteLine(token);
                       trial.JudgeReply(trial.Call([&] { return stage.ReadLine(); }), token);
                       JudgeAfterwards(trial, stage, false);
                     }});
  }
}

// Nobody at the address: no wait.
void AddMissingDeviceCells(Cells& cells) {
  const auto add = [&](const std::string& member, const std::string& result, bool opens,
                       const std::function<Outcome(GpibStage&)>& call) {
    cells.push_back({.transport = "GPIB",
                     .member = member,
                     .way = "no device at the address",
                     .specified = {result},
                     .limit = kDriverWait,
                     .play = [=](Trial& trial) {
                       GpibStage stage;
                       stage.PointAt(kMissingAddress);
                       if (opens) trial.Require("Initialize", stage.Initialize().result == "True");
                       trial.Call([&] { return call(stage); });
                       JudgeAfterwards(trial, stage, member.starts_with("CKespCommObj"));
                     }});
  };
  add("CKespIEEE.Initialize", "True", false, [](GpibStage& stage) { return stage.Initialize(); });
  add("CKespIEEE.Uninitialize", "True", true, [](GpibStage& stage) { return stage.Uninitialize(); });
  add("CKespIEEE.WriteLine", Raised(ERR_IBWRT), true, [](GpibStage& stage) { return stage.WriteLine("T"); });
  add("CKespIEEE.ReadLine", Raised(ERR_IBRD), true, [](GpibStage& stage) { return stage.ReadLine(); });
  add("CKespCommObj.Query", FalseWith(cfrWriteFailed), false,
      [](GpibStage& stage) { return stage.Query("T"); });
  add("CKespCommObj.Update", FalseWith(cfrWriteFailed), false,
      [](GpibStage& stage) { return stage.Update("T"); });
}

void AddDetectionCells(Cells& cells) {
  const auto add = [&](const std::string& member, const std::string& way, const std::string& result,
                       int waits, const std::function<Outcome(GpibStage&)>& call) {
    cells.push_back({.transport = "GPIB",
                     .member = member,
                     .way = way,
                     .specified = {result},
                     .limit = waits * kDriverDetectionWait,
                     .play = [=](Trial& trial) {
                       GpibStage stage;
                       trial.JudgeReply(trial.Call([&] { return call(stage); }), "*IDN?");
                       JudgeAfterwards(trial, stage, member.starts_with("CKespCommObj"));
                     }});
  };
  add("CKespIEEE.AutoDetect", "two silent devices before the one that answers", "True", 2,
      [](GpibStage& stage) { return stage.AutoDetect(soFindFirst); });
  add("CKespIEEE.AutoDetect", "silent, one byte a second, half a reply", "False", 3, [](GpibStage& stage) {
    stage.PointAt(20);
    return stage.AutoDetect(soFindNext);
  });
  add("CKespCommObj.DetectInstrument", "two silent devices before the one that answers", "True", 2,
      [](GpibStage& stage) { return stage.DetectInstrument(); });
}

void AddReleaseCell(Cells& cells) {
  cells.push_back({.transport = "GPIB",
                   .member = "release of the CKespCommObj",
                   .way = "silent peer",
                   .specified = {"done"},
                   .limit = kDriverWait,
                   .play = [](Trial& trial) {
                     {
                       GpibStage stage;
                       trial.Require("Initialize", stage.Initialize().result == "True");
                       stage.WriteLine("SILENT?");
                       trial.Call([&] { return stage.ReleaseAll(); });
                     }
                     GpibStage another;
                     JudgeAfterwards(trial, another, true);
                   }});
}

}  // namespace

Cells GpibCells() {
  Cells cells;
  AddReadLineCells(cells);
  AddStaleCells(cells);
  AddMissingDeviceCells(cells);
  AddGpibDriverCells(cells);
  AddDetectionCells(cells);
  AddReleaseCell(cells);
  AddQueryCells(cells);
  return cells;
}

}  // namespace kesp::hangs
