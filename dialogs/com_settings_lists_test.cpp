// Unit tests of the lists of the RS-232 dialog that are always the same.
#include "dialogs/com_settings_lists.h"

#include "dialogs/frm_com_settings_fixture.h"

namespace kesp {
namespace {

// Two of the controller styles are offered, and all switches but the small one, each with its picture.
TEST(ComSettingsListsTest, FramingAndStyles_TextsAndValues) {
  EXPECT_EQ(Described(ControllerStyleEntries()), (Lines{L"Kesp 7100/7200/7300 0", L"Omega 847/848 1"}));
  EXPECT_EQ(Described(SmartSwitchStyleEntries()), (Lines{L"6-port 2 [6-port]", L"8-port 1 [8-port]"}));
  EXPECT_EQ(Described(ParityEntries()), (Lines{L"None 0", L"Even 1", L"Odd 2", L"Mark 3", L"Space 4"}));
  EXPECT_EQ(Described(DataBitsEntries()),
            (Lines{L"4 bits 0", L"5 bits 1", L"6 bits 2", L"7 bits 3", L"8 bits 4"}));
  EXPECT_EQ(Described(StopBitsEntries()), (Lines{L"1 bit 0", L"1.5 bits 1", L"2 bits 2"}));
}

TEST(ComSettingsListsTest, BaudRates_FromTheLowestToTheHighest) {
  EXPECT_EQ(Described(BaudRateEntries(EKespBaudRate3::br150, EKespBaudRate3::br921600)),
            (Lines{L"150 0", L"300 1", L"600 2", L"1200 3", L"2400 4", L"4800 5", L"9600 6", L"19200 7",
                   L"38400 8", L"57600 9", L"115200 10", L"230400 11", L"460800 12", L"921600 13"}));
}

TEST(ComSettingsListsTest, BaudRates_OfARange_BothEndsIncluded) {
  using Rate = EKespBaudRate3;
  EXPECT_EQ(Described(BaudRateEntries(Rate::br4800, Rate::br19200)),
            (Lines{L"4800 5", L"9600 6", L"19200 7"}));
  EXPECT_EQ(Described(BaudRateEntries(Rate::br9600, Rate::br9600)), Lines{L"9600 6"});
  // From none they begin with the unknown one.
  EXPECT_EQ(Described(BaudRateEntries(Rate::brNone, Rate::br300)),
            (Lines{L"<unknown> -1", L"150 0", L"300 1"}));
  EXPECT_EQ(Described(BaudRateEntries(Rate::brNone, Rate::brNone)), Lines{L"<unknown> -1"});
  // The wrong way round there are none.
  EXPECT_EQ(Described(BaudRateEntries(Rate::br300, Rate::br150)), Lines{});
  EXPECT_EQ(Described(BaudRateEntries(Rate::br150, Rate::brNone)), Lines{});
}

}  // namespace
}  // namespace kesp
