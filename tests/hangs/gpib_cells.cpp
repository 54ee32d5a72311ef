// The cells of the IEEE-488 transport and of a communication object that uses it, on the simulated driver.
#include "tests/clients/simulated_driver.h"
#include "tests/hangs/stage.h"
#include "tests/hangs/trial.h"

namespace kesp::hangs {

namespace {

// to300ms, and the second that a detection gives each command.
constexpr Milliseconds kDriverWait{300};
constexpr Milliseconds kDetectionWait{1000};
constexpr Milliseconds kEnd{700};
constexpr char kForEver[] = "with toNone there is no limit (timeouts.md, On the GPIB)";

// The devices, by their manners: 5 is well, and misbehaves on some commands; 6 sends no END; 7 keeps replies
// that were not read. A search asks 3 and 4, which are silent, before 5, and behind 20 three that answer in
// vain.
constexpr char kBus[] = R"({"devices": [
  {"gpib": {"primary": 3}, "commands": {}},
  {"gpib": {"primary": 4}, "commands": {}},
  {"gpib": {"primary": 5}, "reply_terminator": "", "commands": {
    "T*": [{"echo": true}], "*IDN?": "*IDN? KESP,GP488,SIM1,1.0", "SILENT?": null, "LATE?": [{"wait_ms": 700}, {"send": "OLD"}],
    "GARBAGE?": [{"send_hex": "81 FE FF"}], "LONG?": [{"repeat": "OLD", "bytes": 300}],
    "BYTES?": [{"trickle": "7777777777", "gap_ms": 1000}]}},
  {"gpib": {"primary": 6}, "reply_terminator": "", "end": false, "commands": {
    "T*": [{"send": "T"}], "HALF?": "12.", "ENDLESS?": [{"repeat": "7", "bytes": 100000000}]}},
  {"gpib": {"primary": 7}, "reply_terminator": "", "keeps_replies": true, "commands": {
    "T*": [{"echo": true}], "LATE?": [{"wait_ms": 700}, {"send": "OLD"}], "LONG?": [{"repeat": "OLD", "bytes": 300}]}},
  {"gpib": {"primary": 21}, "commands": {}},
  {"gpib": {"primary": 22}, "commands": {"*IDN?": [{"trickle": "7777777777", "gap_ms": 700}]}},
  {"gpib": {"primary": 23}, "reply_terminator": "", "end": false, "commands": {"*IDN?": "12."}}]})";

constexpr short kWellAddress = 5;
constexpr short kMissingAddress = 9;

class GpibStage : public Stage {
 public:
  GpibStage() : Stage(csIEEE) {
    EXPECT_EQ(clients::Write(device, &_CKespIEEE::put_EOSChar, std::wstring(L"10")), S_OK);
    EXPECT_EQ(clients::Write(device, &_CKespIEEE::put_SetEOS, VARIANT_FALSE), S_OK);
    SetTimeOut(to300ms);
    PointAt(kWellAddress);
  }

  void PointAt(short address) {
    EXPECT_EQ(clients::Write(device, &_CKespIEEE::put_PrimaryAddress, address), S_OK);
  }
  void SetTimeOut(ETimeOutSecs code) {
    EXPECT_EQ(clients::Write(device, &_CKespIEEE::put_TimeOutSecs, code), S_OK);
  }

  Outcome Initialize() {
    return Answering([&](VARIANT_BOOL* answer) { return device->Initialize(answer); });
  }
  Outcome Uninitialize() {
    return Answering([&](VARIANT_BOOL* answer) { return device->Uninitialize(answer); });
  }
  Outcome WriteLine(const std::string& cmd) override {
    const clients::Text text(TextOfBytes(cmd));
    return Answering([&](VARIANT_BOOL* answer) { return device->WriteLine(text.get(), answer); });
  }
  Outcome ReadLine() override {
    return Reading([&](BSTR* reply, VARIANT_BOOL* answer) { return device->ReadLine(reply, answer); });
  }
  Outcome AutoDetect(ESearchOption option) {
    return Reading([&](BSTR* reply, VARIANT_BOOL* answer) {
      return device->AutoDetect(reply, dlSCPIOnly, option, answer);
    });
  }

  clients::ComPtr<_CKespIEEE> device = Transport<_CKespIEEE>();

 private:
  void ReleaseTransport() override { device.Reset(); }
};

// The bus is loaded once: the library registers each thread with the driver once.
void LoadBus() {
  static const clients::SimulatedDriver driver;
  static const bool loaded = (driver.Load(kBus), true);
  static_cast<void>(loaded);
}

void JudgeAfterwards(Trial& trial, GpibStage& stage, bool with_operation) {
  stage.SetTimeOut(to300ms);
  stage.PointAt(kWellAddress);
  const std::string token = trial.NewToken();
  if (with_operation) {
    trial.JudgeQuery(stage.Query(token), token);
    return;
  }
  trial.Require("Initialize", stage.Initialize().result == "True");
  trial.JudgeQuery(stage.Exchange(token), token);
  trial.Require("Uninitialize", stage.Uninitialize().result == "True");
}

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
                       LoadBus();
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
                       LoadBus();
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
                       LoadBus();
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
                       LoadBus();
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

// The driver waits for ever; the trial takes the descriptor away from it.
void AddEndlessDriverCells(Cells& cells) {
  const auto add = [&](const std::string& member, const std::string& result, bool opens,
                       const std::function<Outcome(GpibStage&)>& call) {
    cells.push_back({.transport = "GPIB",
                     .member = member,
                     .way = "driver that does not return",
                     .specified = {result},
                     .without_limit = kForEver,
                     .play = [=](Trial& trial) {
                       LoadBus();
                       GpibStage stage;
                       stage.SetTimeOut(toNone);
                       if (opens) {
                         trial.Require("Initialize", stage.Initialize().result == "True");
                         stage.WriteLine("SILENT?");
                       }
                       std::thread end([&] {
                         std::this_thread::sleep_for(kEnd);
                         trial.CountFromNow();
                         using Online = int __stdcall(int descriptor, int online);
                         const FARPROC found = GetProcAddress(GetModuleHandleW(L"Gpib-32.dll"), "ibonl");
                         reinterpret_cast<Online*>(reinterpret_cast<void*>(found))(1, 0);
                       });
                       trial.Call([&] { return call(stage); });
                       end.join();
                       // The driver knows the descriptor no more.
                       if (opens) stage.Uninitialize();
                       JudgeAfterwards(trial, stage, !opens);
                     }});
  };
  add("CKespIEEE.ReadLine", Raised(ERR_IBRD), true, [](GpibStage& stage) { return stage.ReadLine(); });
  add("CKespCommObj.Query", FalseWith(cfrReadFailed), false,
      [](GpibStage& stage) { return stage.Query("SILENT?"); });
}

void AddDetectionCells(Cells& cells) {
  const auto add = [&](const std::string& member, const std::string& way, const std::string& result,
                       int waits, const std::function<Outcome(GpibStage&)>& call) {
    cells.push_back({.transport = "GPIB",
                     .member = member,
                     .way = way,
                     .specified = {result},
                     .limit = waits * kDetectionWait,
                     .play = [=](Trial& trial) {
                       LoadBus();
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
                     LoadBus();
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
  AddEndlessDriverCells(cells);
  AddDetectionCells(cells);
  AddReleaseCell(cells);
  AddQueryCells(cells);
  return cells;
}

}  // namespace kesp::hangs
