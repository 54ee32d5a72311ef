// Unit tests of the search for a device: order of events and driver calls, what is restored, and failures.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "gpib/kesp_ieee_fixture.h"

namespace kesp {
namespace {

// Devices by address answer commands; the others do not listen. Events and driver calls go into one record.
class CKespIEEEDetectionTest : public IeeeFixture {
 protected:
  CKespIEEEDetectionTest() {
    bus_.on_call = [this](const std::string& call) {
      record_.push_back(call);
      if (call.starts_with("ibdev(")) address_ = std::stoi(call.substr(8));
      if (call.starts_with("ibwrt(")) command_ = call.substr(call.find(',') + 1);
    };
    events_.record = [this](const std::wstring& event) { record_.emplace_back(event.begin(), event.end()); };
    bus_.answers["ibwrt"] = [this] {
      const auto found = devices_.find(address_);
      if (found == devices_.end()) return GpibOutcome::Failure(2);
      const auto reply = found->second.find(command_);
      if (reply != found->second.end()) bus_.waiting = reply->second;
      return GpibOutcome{};
    };
  }

  // The object, which outlives the record, may still have a device to close.
  ~CKespIEEEDetectionTest() override {
    bus_.on_call = [](const std::string&) {};
    bus_.answers.clear();
  }

  bool Detect(EDetectLevel level = EDetectLevel::dlAllCommands,
              ESearchOption option = ESearchOption::soFindFirst) {
    return ieee_.AutoDetect(result_, level, option);
  }
  bool FindNext() { return Detect(EDetectLevel::dlAllCommands, ESearchOption::soFindNext); }

  // The addresses that were opened.
  std::vector<int> Opened() const {
    std::vector<int> addresses;
    for (const std::string& line : record_) {
      if (line.starts_with("ibdev(")) addresses.push_back(std::stoi(line.substr(8)));
    }
    return addresses;
  }
  std::ptrdiff_t CountOf(const std::string& beginning) const {
    return std::count_if(record_.begin(), record_.end(),
                         [&](const std::string& line) { return line.starts_with(beginning); });
  }
  void ExpectRestored() const {
    EXPECT_EQ(ieee_.PrimaryAddress(), 5);
    EXPECT_EQ(ieee_.TimeOutSecs(), ETimeOutSecs::to3s);
    EXPECT_EQ(result_, L"");
    EXPECT_EQ(record_.back(), "AutoDetectEnd()");
    EXPECT_TRUE(bus_.open.empty());
  }

  std::map<int, std::map<std::string, std::string>> devices_;  // address, command and line feed, reply
  Calls record_;
  int address_ = 0;
  std::string command_;
  std::wstring result_ = L"before";
};

TEST_F(CKespIEEEDetectionTest, Found_EventsAndDriverCallsInOrder) {
  devices_[2] = {{"*VER\n)", "2.3\n"}};
  EXPECT_TRUE(Detect());
  EXPECT_EQ(record_, (Calls{"AutoDetectBegin()",
                            "AutoDetectUpdate(*IDN?,5,False)",
                            "ibdev(0,1,0,11,1,0)",
                            "ibclr(7)",
                            "ibeos(7,1073)",
                            "AutoDetectUpdate(*IDN?,1,False)",
                            "ibwrt(7,*IDN?\n)",
                            "AutoDetectUpdate(*VER,1,False)",
                            "ibwrt(7,*VER\n)",
                            "AutoDetectUpdate(t,1,False)",
                            "ibwrt(7,t\n)",
                            "ibonl(7,0)",
                            "ibonl(0,0)",
                            "ibdev(0,2,0,11,1,0)",
                            "ibclr(8)",
                            "ibeos(8,1073)",
                            "AutoDetectUpdate(*IDN?,2,False)",
                            "ibwrt(8,*IDN?\n)",
                            "ibrd(8,50)",
                            "AutoDetectUpdate(*VER,2,False)",
                            "ibwrt(8,*VER\n)",
                            "ibrd(8,50)",
                            "ibonl(8,0)",
                            "ibonl(0,0)",
                            "AutoDetectEnd()"}));
  EXPECT_EQ(result_, L"2.3\n");
  EXPECT_EQ(ieee_.PrimaryAddress(), 2);
  EXPECT_EQ(ieee_.TimeOutSecs(), ETimeOutSecs::to3s);
}

TEST_F(CKespIEEEDetectionTest, NothingThere_AllThirtyAreTriedAndAllIsRestored) {
  EXPECT_FALSE(Detect());
  std::vector<int> all;
  for (int address = 1; address <= 30; ++address) all.push_back(address);
  EXPECT_EQ(Opened(), all);
  EXPECT_EQ(CountOf("AutoDetectUpdate("), 1 + 30 * 3);
  ExpectRestored();
}

TEST_F(CKespIEEEDetectionTest, SecondaryAddress_IsKeptForEveryDevice) {
  ieee_.SetSecondaryAddress(9);
  Detect();
  EXPECT_EQ(CountOf("ibdev(0,30,9,11,1,0)"), 1);
}

TEST_F(CKespIEEEDetectionTest, Level_DecidesWhichCommandsAreTried) {
  for (const auto& [level, commands] : {std::pair<int, int>{1, 1}, {2, 2}, {3, 3}, {4, 3}}) {
    record_.clear();
    EXPECT_FALSE(Detect(static_cast<EDetectLevel>(level)));
    EXPECT_EQ(CountOf("ibwrt("), 30 * commands) << level;
    EXPECT_EQ(CountOf("AutoDetectUpdate(t,"), commands == 3 ? 30 : 0) << level;
  }
}

TEST_F(CKespIEEEDetectionTest, LevelBelowOne_HasNothingToTry) {
  EXPECT_FALSE(Detect(static_cast<EDetectLevel>(0)));
  EXPECT_EQ(record_, (Calls{"AutoDetectBegin()", "AutoDetectEnd()"}));
  ExpectRestored();
}

TEST_F(CKespIEEEDetectionTest, FindNext_BeginsBehindThePresentAddress) {
  devices_[3] = devices_[5] = devices_[9] = {{"*IDN?\n)", "KESP\n"}};
  EXPECT_TRUE(FindNext());
  EXPECT_EQ(Opened(), (std::vector<int>{6, 7, 8, 9}));
  EXPECT_EQ(ieee_.PrimaryAddress(), 9);
  EXPECT_TRUE(Detect());
  EXPECT_EQ(ieee_.PrimaryAddress(), 3);
  EXPECT_TRUE(FindNext());
  EXPECT_EQ(ieee_.PrimaryAddress(), 5);
}

TEST_F(CKespIEEEDetectionTest, FindNextAtTheLastAddress_SearchesNothing) {
  ieee_.SetPrimaryAddress(30);
  EXPECT_FALSE(FindNext());
  EXPECT_EQ(record_, (Calls{"AutoDetectBegin()", "AutoDetectUpdate(*IDN?,30,False)", "AutoDetectEnd()"}));
  EXPECT_EQ(ieee_.PrimaryAddress(), 30);
}

TEST_F(CKespIEEEDetectionTest, UnknownSearchOption_BeginsAtTheFirst) {
  EXPECT_FALSE(Detect(EDetectLevel::dlSCPIOnly, static_cast<ESearchOption>(7)));
  EXPECT_EQ(Opened().front(), 1);
}

TEST_F(CKespIEEEDetectionTest, AbortAtTheFirstUpdate_OpensNothingAndClosesWhatWasOpen) {
  ieee_.Initialize();
  record_.clear();
  events_.abort_at_update = 1;
  EXPECT_FALSE(Detect());
  EXPECT_EQ(record_, (Calls{"AutoDetectBegin()", "AutoDetectUpdate(*IDN?,5,False)", "ibonl(7,0)",
                            "ibonl(0,0)", "AutoDetectEnd()"}));
  ExpectRestored();
}

TEST_F(CKespIEEEDetectionTest, AbortInTheMiddle_EndsAtOnceAndClosesTheDevice) {
  devices_[3] = {{"t\n)", "1"}};
  events_.abort_at_update = 1 + 3 + 2;  // at address 2, before its second command
  EXPECT_FALSE(Detect());
  EXPECT_EQ(Opened(), (std::vector<int>{1, 2}));
  const Calls end(record_.end() - 4, record_.end());
  EXPECT_EQ(end, (Calls{"AutoDetectUpdate(*VER,2,False)", "ibonl(8,0)", "ibonl(0,0)", "AutoDetectEnd()"}));
  ExpectRestored();
}

TEST_F(CKespIEEEDetectionTest, DeviceWasOpen_IsClosedBeforeTheNextIsOpened) {
  ieee_.Initialize();
  record_.clear();
  Detect();
  const auto closing = std::find(record_.begin(), record_.end(), "ibonl(7,0)");
  ASSERT_NE(closing, record_.end());
  EXPECT_EQ(*(closing + 1), "ibdev(0,1,0,11,1,0)");
  EXPECT_TRUE(bus_.open.empty());
}

TEST_F(CKespIEEEDetectionTest, ReadTimesOut_NextCommandIsTried) {
  devices_[1] = {{"t\n)", "+021.5"}};
  EXPECT_TRUE(Detect());
  EXPECT_EQ(result_, L"+021.5");
  EXPECT_EQ(CountOf("ibrd("), 3);
}

TEST_F(CKespIEEEDetectionTest, LastReadFailsWithPartOfAReply_ResultStaysEmpty) {
  ieee_.SetPrimaryAddress(29);
  devices_[30] = {{"*IDN?\n)", "KESP"}};
  bus_.answers["ibrd"] = [] { return GpibOutcome{.status = 0xC100, .error = 6, .count = 4}; };
  EXPECT_FALSE(Detect(EDetectLevel::dlSCPIOnly, ESearchOption::soFindNext));
  EXPECT_EQ(CountOf("ibrd("), 1);
  EXPECT_EQ(result_, L"");
}

TEST_F(CKespIEEEDetectionTest, OtherDriverErrors_DoNotEndTheSearch) {
  devices_[4] = {{"*IDN?\n)", "KESP"}};
  const auto answer = bus_.answers["ibwrt"];
  bus_.answers["ibwrt"] = [this, answer] { return address_ == 1 ? GpibOutcome::Failure(14) : answer(); };
  EXPECT_TRUE(Detect());
  EXPECT_EQ(ieee_.PrimaryAddress(), 4);
}

TEST_F(CKespIEEEDetectionTest, EosCharCannotEndACommand_NothingIsFound) {
  devices_[1] = {{"*IDN?\n)", "KESP"}};
  ieee_.SetEOSChar(L"LF");
  EXPECT_FALSE(Detect());
  EXPECT_EQ(CountOf("ibwrt("), 0);
  ExpectRestored();
}

TEST_F(CKespIEEEDetectionTest, DeviceCannotBeOpened_IsRaisedWithAllRestored) {
  for (const auto& [entry_point, number] :
       {std::pair<const char*, std::int32_t>{"ibdev", ieee_error::ERR_IBDEV},
        {"ibclr", ieee_error::ERR_IBCLR},
        {"ibeos", ieee_error::ERR_IBEOS}}) {
    SCOPED_TRACE(entry_point);
    record_.clear();
    result_ = L"before";
    bus_.answers[entry_point] = [this] {
      return address_ == 3 ? GpibOutcome::Failure(4) : GpibOutcome{.result = 20 + address_};
    };
    const Raised raised = RaisedBy([this] { Detect(); });
    EXPECT_EQ(raised.number, number);
    EXPECT_EQ(raised.source, L"[CKespIEEE - InitializeIEEEBoard()]");
    EXPECT_EQ(Opened(), (std::vector<int>{1, 2, 3}));
    ExpectRestored();
    bus_.answers.erase(entry_point);
  }
}

TEST_F(CKespIEEEDetectionTest, EosCharEmptyWithSetEos_IsRaised) {
  ieee_.SetEOSChar(L"");
  EXPECT_EQ(RaisedBy([this] { Detect(); }).number, 5);
  ExpectRestored();
}

TEST_F(CKespIEEEDetectionTest, DriverMissing_IsRaisedWithAllRestored) {
  bus_.load_errors[L"Gpib-32.dll"] = kGpibLibraryNotFound;
  EXPECT_EQ(RaisedBy([this] { Detect(); }).number, 53);
  ExpectRestored();
}

TEST_F(CKespIEEEDetectionTest, ClosingFails_DoesNotChangeWhatItCameTo) {
  devices_[2] = {{"*IDN?\n)", "KESP"}};
  Answer("ibonl", GpibOutcome::Failure(14));
  EXPECT_TRUE(Detect());
  EXPECT_EQ(ieee_.PrimaryAddress(), 2);
  EXPECT_EQ(ieee_.TimeOutSecs(), ETimeOutSecs::to3s);
  EXPECT_EQ(record_.back(), "AutoDetectEnd()");
}

TEST_F(CKespIEEEDetectionTest, HandlersSeeTheTimeOutOfTheSearch) {
  std::vector<ETimeOutSecs> seen;
  for (const wchar_t* event : {L"AutoDetectBegin", L"AutoDetectUpdate", L"AutoDetectEnd"}) {
    events_.handlers[event] = [this, &seen] { seen.push_back(ieee_.TimeOutSecs()); };
  }
  events_.abort_at_update = 1;
  Detect();
  EXPECT_EQ(seen, (std::vector{ETimeOutSecs::to1s, ETimeOutSecs::to1s, ETimeOutSecs::to3s}));
}

TEST_F(CKespIEEEDetectionTest, HandlerSetsTheAddressAtTheBeginning_FindNextGoesOnFromThere) {
  events_.handlers[L"AutoDetectBegin"] = [this] { ieee_.SetPrimaryAddress(28); };
  EXPECT_FALSE(FindNext());
  EXPECT_EQ(Opened(), (std::vector<int>{29, 30}));
  EXPECT_EQ(ieee_.PrimaryAddress(), 5);
}

TEST_F(CKespIEEEDetectionTest, HandlerChangesTheObject_AddressOfTheAnswerStands) {
  devices_[2] = {{"*IDN?\n)", "KESP"}};
  events_.handlers[L"AutoDetectUpdate"] = [this] {
    ieee_.SetPrimaryAddress(17);
    ieee_.SetTimeOutSecs(ETimeOutSecs::to10s);
  };
  EXPECT_TRUE(Detect());
  EXPECT_EQ(ieee_.PrimaryAddress(), 2);
  EXPECT_EQ(ieee_.TimeOutSecs(), ETimeOutSecs::to3s);
}

// Closing takes the device away from the commands that follow, and a search closes behind it.
TEST_F(CKespIEEEDetectionTest, HandlerUsesTheDevice_SearchGoesOn) {
  struct Example {
    const char* name;
    std::function<bool()> use;
    std::int16_t found;
  };
  devices_[1] = devices_[2] = {{"*VER\n)", "2.3"}};
  std::wstring own;
  for (const Example& example :
       {Example{"opens it anew", [&] { return ieee_.Initialize(); }, 1},
        Example{"talks to it", [&] { return ieee_.WriteLine(L"*VER") && ieee_.ReadLine(own); }, 1},
        Example{"closes it", [&] { return ieee_.Uninitialize(); }, 2},
        Example{"searches itself", [&] { return ieee_.AutoDetect(own); }, 2}}) {
    SCOPED_TRACE(example.name);
    bool used = false;
    ieee_.SetPrimaryAddress(5);
    record_.clear();
    events_.handlers[L"AutoDetectUpdate"] = [&] {
      if (used || Opened().empty()) return;
      used = true;
      EXPECT_TRUE(example.use());
    };
    EXPECT_TRUE(Detect());
    EXPECT_TRUE(used);
    EXPECT_EQ(result_, L"2.3");
    EXPECT_EQ(ieee_.PrimaryAddress(), example.found);
    EXPECT_EQ(ieee_.TimeOutSecs(), ETimeOutSecs::to3s);
    EXPECT_TRUE(bus_.open.empty());
  }
}

TEST_F(CKespIEEEDetectionTest, NobodyListens_SearchesAllTheSame) {
  ieee_.SetEvents(nullptr);
  devices_[30] = {{"t\n)", "1"}};
  EXPECT_TRUE(Detect());
  EXPECT_EQ(ieee_.PrimaryAddress(), 30);
  EXPECT_EQ(CountOf("AutoDetect"), 0);
}

}  // namespace
}  // namespace kesp
