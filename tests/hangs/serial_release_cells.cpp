// The cells of a port that was just closed and that its driver releases late, or not.
#include "tests/hangs/box_moment.h"
#include "tests/hangs/serial_cells.h"
#include "tests/hangs/serial_stage.h"

namespace kesp::hangs {

namespace {

// A port that was just closed by this object and that its driver has yet to release: somebody else has it.
class Unreleased {
 public:
  Unreleased()
      : handle_(CreateFileW(clients::SerialWire::PortName().c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                            OPEN_EXISTING, 0, nullptr)) {
    EXPECT_NE(handle_, INVALID_HANDLE_VALUE);
  }
  ~Unreleased() { CloseHandle(handle_); }
  Unreleased(const Unreleased&) = delete;
  Unreleased& operator=(const Unreleased&) = delete;

 private:
  HANDLE handle_;
};

struct Member {
  std::string name;
  // What it comes to when the port is released, if the peer has an answer to it, and when it is not.
  std::string done, refused;
  std::function<Outcome(SerialStage&)> call;
  // The box or dialog that it ends with.
  const wchar_t* box = nullptr;
  int button = IDOK;
};

std::vector<Member> Members() {
  const std::string timed_out = FalseWith(cfrTimeout);
  const auto on = [](Outcome (SerialStage::*member)()) {
    return [member](SerialStage& stage) { return (stage.*member)(); };
  };
  const auto operation = [](Outcome (Stage::*member)(const std::string&)) {
    return [member](SerialStage& stage) { return (stage.*member)("T"); };
  };
  return {
      {"CKespCOMPort3.OpenPort", "True", RaisedControl(8005), on(&SerialStage::OpenPort)},
      {"CKespCOMPort3.PortExists", "True", "True", on(&SerialStage::PortExists)},
      {"CKespCOMPort3.IsPortAvailable", "True", "False", on(&SerialStage::IsPortAvailable)},
      {"CKespCOMPort3.Edit", "False", "False", on(&SerialStage::Edit), kEditTitle, IDCANCEL},
      {"CKespCOMPort3.AutoDetect", "True", "False", on(&SerialStage::AutoDetect)},
      {"CKespCOMPort3.RFReadModemSettings", "", "False", on(&SerialStage::ReadModem)},
      {"CKespCOMPort3.TestSmartSwitch", "", "done", on(&SerialStage::TestSmartSwitch),
       L"Kesp Communications Error"},
      {"CKespCommObj.Query", "True", timed_out, operation(&Stage::Query)},
      // It tries but once, and waits for silence behind its reply.
      {"CKespCommObj.QueryBinary", "", FalseWith(cfrOtherError), operation(&Stage::QueryBinary)},
      {"CKespCommObj.Update", "True", timed_out, operation(&Stage::Update)},
      {"CKespCommObj.DetectInstrument", "True", "False",
       [](SerialStage& stage) { return stage.DetectInstrument(); }},
  };
}

void PlayJustClosed(Trial& trial, const Member& member, Milliseconds released_after) {
  SerialStage stage;
  trial.Require("OpenPort", stage.OpenPort().result == "True");
  stage.ClosePort();
  std::optional<Unreleased> unreleased;
  if (released_after.count() > 0) unreleased.emplace();
  std::thread release([&] {
    if (released_after > kJustClosed) return;
    std::this_thread::sleep_for(released_after);
    unreleased.reset();
  });
  {
    std::optional<BoxMoment> box;
    if (member.box != nullptr) box.emplace(trial, member.box, member.button);
    trial.Call([&] { return member.call(stage); });
  }
  release.join();
  unreleased.reset();
  JudgeAfterwards(trial, stage);
}

}  // namespace

void AddSerialReleaseCells(Cells& cells) {
  for (const Member& member : Members()) {
    const auto add = [&](const std::string& way, const std::string& result, Milliseconds released_after) {
      if (result.empty()) return;
      cells.push_back({.transport = "serial",
                       .member = member.name,
                       .way = way,
                       .specified = {result},
                       .limit = kJustClosed,
                       .play = [=](Trial& trial) { PlayJustClosed(trial, member, released_after); }});
    };
    add("port just closed", member.done, Milliseconds(0));
    add("driver that releases the port late", member.done, Milliseconds(300));
    add("driver that does not release the port", member.refused, kJustClosed * 2);
  }
}

}  // namespace kesp::hangs
