// The cells of a GPIB driver that does not return, and of a device that leaves its bus.
#include "tests/hangs/box_moment.h"
#include "tests/hangs/gpib_stage.h"

namespace kesp::hangs {

namespace {

constexpr Milliseconds kEnd{700};
constexpr char kForEver[] =
    "with toNone, and in calls without a timeout, there is no limit (timeouts.md, On the GPIB)";

// A call of the driver that does not return before its time-out is over or, without one, before the trial
// lets it. Which it is, and what the member comes to in either case; no text where the call has no time-out.
struct HeldCall {
  std::string member;
  const char* call;
  bool opens;
  std::string timed_out;
  std::string released;
  Milliseconds limit;
  std::function<Outcome(GpibStage&)> play;
};

std::vector<HeldCall> HeldCalls() {
  const auto initialize = [](GpibStage& stage) { return stage.Initialize(); };
  const auto query = [](GpibStage& stage) { return stage.Query("T"); };
  const auto update = [](GpibStage& stage) { return stage.Update("T"); };
  const auto search = [](GpibStage& stage) { return stage.AutoDetect(soFindFirst); };
  const std::string not_opened = FalseWith(cfrInitializeFailed);
  return {
      {"CKespIEEE.Initialize", "ibdev", false, "", "True", kDriverWait, initialize},
      {"CKespIEEE.Initialize", "ibclr", false, Raised(ERR_IBCLR), "True", kDriverWait, initialize},
      {"CKespIEEE.Uninitialize", "ibonl", true, "", "True", kDriverWait,
       [](GpibStage& stage) { return stage.Uninitialize(); }},
      {"CKespIEEE.WriteLine", "ibwrt", true, Raised(ERR_IBWRT), "True", kDriverWait,
       [](GpibStage& stage) { return stage.WriteLine("T"); }},
      {"CKespIEEE.ReadLine", "ibrd", true, Raised(ERR_IBRD), "True", kDriverWait,
       [](GpibStage& stage) { return stage.ReadLine(); }},
      {"CKespCommObj.Query", "ibclr", false, not_opened, "True", kDriverWait, query},
      {"CKespCommObj.Query", "ibwrt", false, FalseWith(cfrWriteFailed), "True", kDriverWait, query},
      {"CKespCommObj.Query", "ibrd", false, FalseWith(cfrReadFailed), "True", kDriverWait, query},
      {"CKespCommObj.Update", "ibclr", false, not_opened, "True", kDriverWait, update},
      {"CKespCommObj.Update", "ibwrt", false, FalseWith(cfrWriteFailed), "True", kDriverWait, update},
      // It gives each call a second, and ends at a device that it cannot clear.
      {"CKespIEEE.AutoDetect", "ibclr", false, Raised(ERR_IBCLR), "", kDriverDetectionWait, search},
      {"CKespCommObj.DetectInstrument", "ibclr", false, "False", "", kDriverDetectionWait,
       [](GpibStage& stage) { return stage.DetectInstrument(); }},
  };
}

void PlayHeld(Trial& trial, const HeldCall& held, bool for_ever) {
  GpibStage stage;
  if (for_ever) stage.SetTimeOut(toNone);
  if (held.opens) trial.Require("Initialize", stage.Initialize().result == "True");
  if (held.opens) stage.WriteLine("T");
  std::optional<BoxMoment> box;
  if (held.member == "CKespCommObj.DetectInstrument") box.emplace(trial);
  TheDriver().Hold(held.call);
  std::thread end([&] {
    if (!for_ever) return;
    std::this_thread::sleep_for(kEnd);
    trial.CountFromNow();
    TheDriver().Hold(nullptr);
  });
  trial.Call([&] { return held.play(stage); });
  end.join();
  TheDriver().Hold(nullptr);
  JudgeAfterwards(trial, stage, held.member.starts_with("CKespCommObj"));
}

void AddHeldCells(Cells& cells) {
  for (const HeldCall& held : HeldCalls()) {
    const auto add = [&](const std::string& way, const std::string& result, bool for_ever) {
      if (result.empty()) return;
      cells.push_back({.transport = "GPIB",
                       .member = held.member,
                       .way = std::string("driver that does not return from ") + held.call + way,
                       .specified = {result},
                       .limit = for_ever ? Milliseconds(0) : held.limit,
                       .without_limit = for_ever ? kForEver : "",
                       .play = [=](Trial& trial) { PlayHeld(trial, held, for_ever); }});
    };
    add(" in time", held.timed_out, false);
    add(", without a limit", held.released, true);
  }
}

// The device leaves the bus, or its cable does.
void AddLostDeviceCells(Cells& cells) {
  // Each has a device of its own to lose.
  short address = kFirstToLose;
  const auto add = [&](const std::string& member, const std::string& result, bool before,
                       const std::function<Outcome(GpibStage&)>& call) {
    const bool operates = member.starts_with("CKespCommObj");
    cells.push_back({.transport = "GPIB",
                     .member = member,
                     .way = before ? "device lost before" : "device lost in the middle",
                     .specified = {result},
                     .limit = kDriverWait,
                     .play = [=, lost = address++](Trial& trial) {
                       GpibStage stage;
                       stage.PointAt(lost);
                       if (!operates || before) {
                         trial.Require("Initialize", stage.Initialize().result == "True");
                         stage.WriteLine("LEAVE");
                       }
                       if (before) std::this_thread::sleep_for(kDriverWait);
                       trial.Call([&] { return call(stage); });
                       JudgeAfterwards(trial, stage, operates);
                     }});
  };
  add("CKespIEEE.ReadLine", Raised(ERR_IBRD), false, [](GpibStage& stage) { return stage.ReadLine(); });
  add("CKespIEEE.WriteLine", Raised(ERR_IBWRT), true, [](GpibStage& stage) { return stage.WriteLine("T"); });
  add("CKespIEEE.Uninitialize", "True", true, [](GpibStage& stage) { return stage.Uninitialize(); });
  add("CKespCommObj.Query", FalseWith(cfrReadFailed), false,
      [](GpibStage& stage) { return stage.Query("LEAVE"); });
  add("CKespCommObj.CommStyle", "done", true, [](GpibStage& stage) { return stage.AssignStyle(); });
}

}  // namespace

void AddGpibDriverCells(Cells& cells) {
  AddHeldCells(cells);
  AddLostDeviceCells(cells);
}

}  // namespace kesp::hangs
