// Failures swept over the communication object on each transport: the status tells them, nothing stays open,
// and the object goes on working.
#include <gtest/gtest.h>

#include "commobj/kesp_comm_obj_fixture.h"
#include "support/attempt.h"
#include "support/failing_allocation_fake.h"
#include "support/fault_sweep_fixture.h"

namespace kesp {
namespace {

// Behind each transport an instrument answers "t". What the socket's notifications throw ends there, as it
// does in the window procedure.
template <ECommStyle style>
class CommObjStage final : public KespCommObjFixture, public FaultStage {
 public:
  using KespCommObjFixture::comm_;
  using KespCommObjFixture::fakes_;
  using KespCommObjFixture::Transports;

  CommObjStage() {
    UseNetwork();
    StartTrace();
    comm_->network().SetTimeOutmSecs(500);
    comm_->serial().SetCreateLogFile(false);
    comm_->ieee().SetCreateLogFile(false);
    comm_->serial().SetTimeOut(400);
    comm_->ieee().SetEOSChar(L"10");
    comm_->SetCommStyle(style);
    fakes_.clock.SetStepPerReading(50);
    fakes_.pump.OnPump([this] {
      fakes_.clock.Advance(100);
      try {
        socket_->Deliver();
      } catch (...) {
      }
    });
    socket_->on_connect = [this] { socket_->ThenConnects(); };
    socket_->on_send = [this](const std::string&) { socket_->ThenReceives("20.5\r"); };
    bus_.knows_descriptors = true;
    bus_.on_call = [this](const std::string& call) {
      if (call.starts_with("ibwrt(")) bus_.waiting = "20.5";
    };
    for (const char* command : {"t\r", "*IDN?\r"}) ports_.line.Answer(command, "20.5\r\n");
  }

  void TestBody() override {}

  std::vector<FaultySeam> Seams() override {
    std::vector<FaultySeam> seams = {
        {"files out of memory", fakes_.files.faults},
        {"files", fakes_.files.faults, [this] { fakes_.files.answers_failure = true; }},
        {"GUIDs", fakes_.guids.faults},
        {"user surface", fakes_.user.faults}};
    switch (style) {
      case ECommStyle::csRS232:
        Append(seams, {{"serial control", ports_.line.faults},
                       {"settings files", fakes_.settings.faults},
                       {"dialog", serial_dialog_.faults}});
        break;
      case ECommStyle::csTCPIP:
        Append(seams, {{"socket", socket_->faults}, {"dialog", network_dialog_.faults}});
        break;
      default:
        Append(seams, {{"driver", bus_.faults},
                       {"loading of the driver", bus_.loading},
                       {"registration of the thread", bus_.registering}});
    }
    return seams;
  }

  void ExpectWhole() override {
    EXPECT_EQ(comm_->CommStyle(), style);
    EXPECT_TRUE(comm_->Debugging());
    EXPECT_FALSE(ports_.line.open);
    EXPECT_TRUE(IsClosed() || socket_->faults.failures() > 0) << "a socket that closes is closed";
    EXPECT_EQ(bus_.open, bus_.kept_open);
    ExpectWholeLog(fakes_.files.Content(comm_->DebugFilename()));
  }

  void ExpectWorking() override {
    result_.clear();
    // Where the socket has refused to close, the connection is still that of the operation.
    comm_->network().Uninitialize();
    EXPECT_EQ(RaisedBy([&] { succeeded_ = comm_->Query(result_, L"t"); }), Raised());
    ExpectSucceeded();
    EXPECT_FALSE(ports_.line.open);
    EXPECT_TRUE(IsClosed());
    EXPECT_EQ(bus_.open, bus_.kept_open);
  }

  void Query() { succeeded_ = comm_->Query(result_, L"t"); }
  void QueryWithModem() {
    comm_->serial().SetUseRFModem(true);
    comm_->serial().SetInstrAddr(26);
    ports_.line.ConfirmAddress26();
  }
  void WithSwitch() {
    comm_->serial().SetUseSmartSwitch(true);
    comm_->serial().SmartSwitch()->SetSSPort(L"3");
  }
  void QueryBinary() { succeeded_ = comm_->QueryBinary(value_, L"t"); }
  void Update() { succeeded_ = comm_->Update(L"t"); }
  void Detect() { comm_->DetectInstrument(result_); }
  void Edit() { comm_->Edit({}, help_file_, 5); }
  void SetDebugFilename() { comm_->SetDebugFilename(L"C:\\Temp\\another conversation.log"); }
  void SetInputMode() { comm_->SetInputMode(EInputMode::imBinary); }
  void Create() {
    const Kept socket{socket_};
    const CKespCommObj other(fakes_.environment, Transports());
  }
  void LeaveOpen() {
    comm_->SetAutoClose(false);
    comm_->Query(result_, L"t");
    comm_->SetAutoClose(true);
  }
  void Reselect() { comm_->SetCommStyle(style); }

  // The status and the result are of one mind.
  void ExpectStatus() {
    EXPECT_EQ(succeeded_, comm_->CommError() == ECommError::cfrSuccess);
    EXPECT_TRUE(!succeeded_ || (comm_->CommErrorDescr().empty() && comm_->CommErrorSource().empty()));
    EXPECT_TRUE(succeeded_ || !Undisturbed());
  }

 private:
  // The stage's own socket, whatever is made meanwhile.
  struct Kept {
    SocketControlFake*& place;
    SocketControlFake* own = place;
    ~Kept() { place = own; }
  };

  static void Append(std::vector<FaultySeam>& seams, std::initializer_list<FaultySeam> more) {
    for (const FaultySeam& seam : more) seams.push_back(seam);
  }
  void ExpectSucceeded() {
    EXPECT_TRUE(succeeded_);
    EXPECT_EQ(comm_->CommError(), ECommError::cfrSuccess);
    EXPECT_EQ(comm_->CommErrorDescr(), L"");
    EXPECT_EQ(result_, L"20.5");
  }

  const std::wstring help_file_ = L"C:\\Kesp\\a help file.chm";
  bool succeeded_ = false;
  std::wstring result_;
  BinaryValue value_;
};

// What each transport has. 7: even the error box fails.
template <typename Stage>
std::vector<FaultCase<Stage>> CommonCases() {
  // All members are named: the compiler fails at the defaults of a template's within a template.
  return {{.name = "Query",
           .run = &Stage::Query,
           .numbers = {0},
           .source = {},
           .prepare = {},
           .check = &Stage::ExpectStatus},
          {.name = "Update",
           .run = &Stage::Update,
           .numbers = {0},
           .source = {},
           .prepare = {},
           .check = &Stage::ExpectStatus},
          {.name = "DetectInstrument",
           .run = &Stage::Detect,
           .numbers = {0},
           .source = {},
           .prepare = {},
           .check = {}}};
}

using Serial = CommObjStage<ECommStyle::csRS232>;
using Network = CommObjStage<ECommStyle::csTCPIP>;
using Ieee = CommObjStage<ECommStyle::csIEEE>;

std::vector<FaultCase<Serial>> SerialCases() {
  std::vector<FaultCase<Serial>> cases = CommonCases<Serial>();
  const FaultCase<Serial> own[] = {
      {.name = "QueryBinary", .run = &Serial::QueryBinary, .numbers = {0}, .check = &Serial::ExpectStatus},
      {.name = "QueryThroughSwitch",
       .run = &Serial::Query,
       .numbers = {0},
       .prepare = &Serial::WithSwitch,
       .check = &Serial::ExpectStatus},
      {.name = "QueryThroughModem",
       .run = &Serial::Query,
       .numbers = {0},
       .prepare = &Serial::QueryWithModem,
       .check = &Serial::ExpectStatus},
      {.name = "SetCommStyle", .run = &Serial::Reselect, .numbers = {0}, .prepare = &Serial::LeaveOpen},
      {.name = "SetInputMode", .run = &Serial::SetInputMode, .numbers = {0}},
      {.name = "SetDebugFilename", .run = &Serial::SetDebugFilename, .numbers = {0}},
      {.name = "Create", .run = &Serial::Create, .numbers = {0, 7}},
      {.name = "Edit", .run = &Serial::Edit, .numbers = {0, 7}}};
  cases.insert(cases.end(), std::begin(own), std::end(own));
  return cases;
}

std::vector<FaultCase<Network>> NetworkCases() {
  std::vector<FaultCase<Network>> cases = CommonCases<Network>();
  cases.push_back(
      {.name = "QueryBinary", .run = &Network::QueryBinary, .numbers = {0}, .check = &Network::ExpectStatus});
  cases.push_back({.name = "Edit", .run = &Network::Edit, .numbers = {0, 7}});
  return cases;
}

class CKespCommObjSerialSweepTest : public testing::TestWithParam<FaultCase<Serial>> {};
class CKespCommObjNetworkSweepTest : public testing::TestWithParam<FaultCase<Network>> {};
class CKespCommObjIeeeSweepTest : public testing::TestWithParam<FaultCase<Ieee>> {};

TEST_P(CKespCommObjSerialSweepTest, AnyCallFails_StatusTellsItAndObjectWorksOn) {
  SweepSeams(GetParam().Operation());
}
TEST_P(CKespCommObjSerialSweepTest, AnyAllocationFails_NothingStaysOpenAndObjectWorksOn) {
  SweepAllocations(GetParam().Operation());
}
TEST_P(CKespCommObjNetworkSweepTest, AnyCallFails_StatusTellsItAndObjectWorksOn) {
  SweepSeams(GetParam().Operation());
}
TEST_P(CKespCommObjNetworkSweepTest, AnyAllocationFails_NothingStaysOpenAndObjectWorksOn) {
  SweepAllocations(GetParam().Operation());
}
TEST_P(CKespCommObjIeeeSweepTest, AnyCallFails_StatusTellsItAndObjectWorksOn) {
  SweepSeams(GetParam().Operation());
}
TEST_P(CKespCommObjIeeeSweepTest, AnyAllocationFails_NothingStaysOpenAndObjectWorksOn) {
  SweepAllocations(GetParam().Operation());
}

INSTANTIATE_TEST_SUITE_P(Each, CKespCommObjSerialSweepTest, testing::ValuesIn(SerialCases()), NameOf<Serial>);
INSTANTIATE_TEST_SUITE_P(Each, CKespCommObjNetworkSweepTest, testing::ValuesIn(NetworkCases()),
                         NameOf<Network>);
INSTANTIATE_TEST_SUITE_P(Each, CKespCommObjIeeeSweepTest, testing::ValuesIn(CommonCases<Ieee>()),
                         NameOf<Ieee>);

// Nothing is allocated before the trap that turns a failure into an error box.
template <typename Stage>
void FailFirstAllocation(void (Stage::*operation)()) {
  Stage stage;
  const FailingAllocation failing(1);
  EXPECT_EQ(RaisedBy([&] { (stage.*operation)(); }), Raised());
  EXPECT_EQ(failing.failures(), 1);
}

TEST(CKespCommObjFirstAllocationTest, FailsInTheTrap) {
  FailFirstAllocation(&Serial::Detect);
  FailFirstAllocation(&Network::Detect);
  FailFirstAllocation(&Ieee::Detect);
  FailFirstAllocation(&Serial::Edit);
  FailFirstAllocation(&Network::Edit);
}

}  // namespace
}  // namespace kesp
