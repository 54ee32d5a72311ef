// The bus of the simulated driver, and the judgement on it.
#include "tests/hangs/gpib_stage.h"

namespace kesp::hangs {

namespace {

// The devices, by their manners: 5 is well, and misbehaves on some commands; 6 sends no END; 7 keeps replies
// that were not read; 10 to 14 leave when they are told to. A search asks 3 and 4, which are silent, before
// 5, and behind 20 three that answer in vain.
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
  {"gpib": {"primary": 10}, "commands": {"LEAVE": [{"wait_ms": 100}, {"reset": true}]}},
  {"gpib": {"primary": 11}, "commands": {"LEAVE": [{"wait_ms": 100}, {"reset": true}]}},
  {"gpib": {"primary": 12}, "commands": {"LEAVE": [{"wait_ms": 100}, {"reset": true}]}},
  {"gpib": {"primary": 13}, "commands": {"LEAVE": [{"wait_ms": 100}, {"reset": true}]}},
  {"gpib": {"primary": 14}, "commands": {"LEAVE": [{"wait_ms": 100}, {"reset": true}]}},
  {"gpib": {"primary": 21}, "commands": {}},
  {"gpib": {"primary": 22}, "commands": {"*IDN?": [{"trickle": "7777777777", "gap_ms": 700}]}},
  {"gpib": {"primary": 23}, "reply_terminator": "", "end": false, "commands": {"*IDN?": "12."}}]})";

}  // namespace

const clients::SimulatedDriver& TheDriver() {
  static const clients::SimulatedDriver driver;
  static const bool loaded = (driver.Load(kBus), true);
  static_cast<void>(loaded);
  return driver;
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

}  // namespace kesp::hangs
