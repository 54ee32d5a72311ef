// Unit tests of the port switch's settings.
#include "serial/smart_switch.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

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

}  // namespace
}  // namespace kesp
