// Unit tests of the port switch: its settings and its sequences.
#include "serial/smart_switch.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

TEST(CKespSmartSwitch3, Created_IsSixPortBoxWithNothingWantedOrConnected) {
  const CKespSmartSwitch3 box;
  EXPECT_EQ(box.Style(), ESmartSwitchStyle3::ssBB6port);
  EXPECT_EQ(box.NumPorts(), 6);
  EXPECT_EQ(box.SSPort(), L"");
  EXPECT_EQ(box.CurrentPort(), L"");
}

TEST(CKespSmartSwitch3, StyleSet_NumPortsFollows) {
  struct Case {
    std::int32_t style;
    std::int16_t num_ports;
  };
  // Eight ports come before six: the values are not in the order of the port counts.
  constexpr Case kCases[] = {{0, 4}, {1, 8}, {2, 6}, {0, 4}};
  CKespSmartSwitch3 box;
  for (const Case& c : kCases) {
    box.SetStyle(static_cast<ESmartSwitchStyle3>(c.style));
    EXPECT_EQ(static_cast<std::int32_t>(box.Style()), c.style);
    EXPECT_EQ(box.NumPorts(), c.num_ports) << c.style;
  }
}

TEST(CKespSmartSwitch3, StyleWithoutModel_IsStoredAndNumPortsStays) {
  for (const std::int32_t style : {-1, 3, 1000}) {
    CKespSmartSwitch3 box;
    box.SetStyle(ESmartSwitchStyle3::ssBB8port);
    box.SetStyle(static_cast<ESmartSwitchStyle3>(style));
    EXPECT_EQ(static_cast<std::int32_t>(box.Style()), style);
    EXPECT_EQ(box.NumPorts(), 8) << style;
  }
}

TEST(CKespSmartSwitch3, AnySSPort_IsStoredAndConnectsNothing) {
  CKespSmartSwitch3 box;
  for (const std::wstring& port : {std::wstring(L"A"), std::wstring(L"03"), std::wstring(L"no such port"),
                                   std::wstring(L"a\0b", 3), std::wstring()}) {
    box.SetSSPort(port);
    EXPECT_EQ(box.SSPort(), port);
    EXPECT_EQ(box.CurrentPort(), L"");
  }
}

TEST(CKespSmartSwitch3, StyleSet_KeepsSSPort) {
  CKespSmartSwitch3 box;
  box.SetSSPort(L"H");
  box.SetStyle(ESmartSwitchStyle3::ssBB4port);
  EXPECT_EQ(box.SSPort(), L"H");
}

// The line that a box sits on, as a list of what was done to it.
class SwitchLineFake final : public SwitchLine {
 public:
  void ClearLine() override { Do("clear"); }
  void WriteToLine(const std::string& bytes) override {
    if (box != nullptr) connected_while_writing.push_back(box->CurrentPort());
    Do("write " + SerialControlFake::Visible(bytes));
  }
  void AwaitLine() override { Do("await"); }
  void LogSwitch(const std::wstring& message) override {
    done.push_back("log " + SerialControlFake::Visible(SystemCodePage().ToBytes(message)));
  }

  std::vector<std::string> done;
  int fail_at = 0;  // which of the clearings, writings and waits fails; 0 for none
  const CKespSmartSwitch3* box = nullptr;
  std::vector<std::wstring> connected_while_writing;  // the box's CurrentPort at each

 private:
  void Do(const std::string& what) {
    if (++calls_ == fail_at) throw SerialControlFailure(kSerialDeviceError);
    done.push_back(what);
  }

  int calls_ = 0;
};

using Steps = std::vector<std::string>;

TEST(CKespSmartSwitch3, Select_WritesTheSequenceOfTheModelBehindItsRelease) {
  struct Case {
    ESmartSwitchStyle3 style;
    const wchar_t* port;
    const char* release;
    const char* selection;
  };
  constexpr Case kCases[] = {
      {ESmartSwitchStyle3::ssBB4port, L"3", "<1B><02><04>", "<1B><02>3<0D>"},
      {ESmartSwitchStyle3::ssBB4port, L"03", "<1B><02><04>", "<1B><02>03<0D>"},
      {ESmartSwitchStyle3::ssBB8port, L"3", "<1B><02><02><04>", "<1B><02>03<0D>"},
      {ESmartSwitchStyle3::ssBB8port, L"12", "<1B><02><02><04>", "<1B><02>12<0D>"},
      {ESmartSwitchStyle3::ssBB6port, L"A", "<1B><02><02><04>", "<1B><02>0A<0D>"},
      {ESmartSwitchStyle3::ssBB6port, L"ABC", "<1B><02><02><04>", "<1B><02>ABC<0D>"},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.selection);
    CKespSmartSwitch3 box;
    box.SetStyle(c.style);
    box.SetSSPort(c.port);
    SwitchLineFake line;
    box.Select(line);
    const std::string name = SystemCodePage().ToBytes(c.port);
    const std::string release = c.release;
    const std::string selection = c.selection;
    EXPECT_EQ(line.done, (Steps{"clear", "write " + release, "log Closing SmartSwitch port (" + release + ")",
                                "await", "clear", "write " + selection, "await",
                                "log Selecting SmartSwitch port " + name + " (" + selection + ")", "clear"}));
    EXPECT_EQ(box.CurrentPort(), c.port);
  }
}

TEST(CKespSmartSwitch3, Select_ConnectedAlready_DoesNothing) {
  CKespSmartSwitch3 box;
  box.SetSSPort(L"B");
  SwitchLineFake line;
  box.Select(line);
  line.done.clear();
  box.Select(line);
  EXPECT_EQ(line.done, Steps{});
  EXPECT_EQ(box.CurrentPort(), L"B");
}

TEST(CKespSmartSwitch3, Select_NothingWanted_ReleasesWhateverIsConnected) {
  CKespSmartSwitch3 box;
  SwitchLineFake line;
  const Steps release{"clear", "write <1B><02><02><04>", "log Closing SmartSwitch port (<1B><02><02><04>)",
                      "await"};
  box.Select(line);  // nothing wanted and nothing connected
  EXPECT_EQ(line.done, release);
  box.SetSSPort(L"B");
  box.Select(line);
  line.done.clear();
  box.SetSSPort(L"");
  box.Select(line);
  EXPECT_EQ(line.done, release);
  EXPECT_EQ(box.CurrentPort(), L"");
}

TEST(CKespSmartSwitch3, SSPortChanged_CurrentPortStaysUntilSelected) {
  CKespSmartSwitch3 box;
  SwitchLineFake line;
  box.SetSSPort(L"B");
  box.Select(line);
  box.SetSSPort(L"C");
  EXPECT_EQ(box.CurrentPort(), L"B");
  line.done.clear();
  box.Select(line);
  EXPECT_EQ(box.CurrentPort(), L"C");
  EXPECT_EQ(line.done[1], "write <1B><02><02><04>");
  EXPECT_EQ(line.done[5], "write <1B><02>0C<0D>");
}

TEST(CKespSmartSwitch3, Release_Always_EmptiesCurrentPortBehindTheSequence) {
  CKespSmartSwitch3 box;
  SwitchLineFake line;
  box.SetSSPort(L"B");
  box.Select(line);
  line.done.clear();
  line.box = &box;
  box.Release(line);
  EXPECT_EQ(line.connected_while_writing, std::vector<std::wstring>{L"B"});
  EXPECT_EQ(box.CurrentPort(), L"");
  EXPECT_EQ(box.SSPort(), L"B");
  box.Release(line);
  EXPECT_EQ(line.done.size(), 6u);
}

TEST(CKespSmartSwitch3, LineFails_IsRaisedAndNothingCountsAsConnected) {
  // Clearing, writing and waiting to release; clearing, writing, waiting and clearing to select.
  for (int nth = 1; nth <= 7; ++nth) {
    SCOPED_TRACE(nth);
    CKespSmartSwitch3 box;
    SwitchLineFake good;
    box.SetSSPort(L"A");
    box.Select(good);
    box.SetSSPort(L"B");
    SwitchLineFake line;
    line.fail_at = nth;
    EXPECT_EQ(RaisedBy([&] { box.Select(line); }).number, kSerialDeviceError);
    EXPECT_EQ(box.CurrentPort(), L"");
  }
}

}  // namespace
}  // namespace kesp
