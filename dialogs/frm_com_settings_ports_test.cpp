// Unit tests of the list of ports of the RS-232 form: how they are looked for, and which one is selected.
#include <set>
#include <stdexcept>

#include "dialogs/frm_com_settings_fixture.h"

namespace kesp {
namespace {

using frmCOMSettingsPortsTest = frmCOMSettingsFixture;

TEST_F(frmCOMSettingsPortsTest, EachTriedOnceInOrder_InUseNotListedOtherAnswersAre) {
  ports_.codes = {{1, 5}, {2, 31}, {10, 0}, {256, 0}};
  EXPECT_EQ(Described(Show().icboCOMPort.entries()),
            (Lines{L"COM2 2 [COMPort]", L"COM10 10 [COMPort]", L"COM256 256 [COMPort]"}));
  std::vector<std::int16_t> expected;
  for (std::int16_t n = 1; n <= 256; ++n) expected.push_back(n);
  EXPECT_EQ(ports_.asked, expected);
}

TEST_F(frmCOMSettingsPortsTest, All_OnesOwnIsSelected) {
  ports_.code = 0;
  port_.SetPort(256);
  const frmCOMSettings& form = Show();
  ASSERT_EQ(form.icboCOMPort.entries().size(), 256u);
  for (std::int32_t n = 1; n <= 256; ++n) {
    EXPECT_EQ(form.icboCOMPort.entries()[static_cast<std::size_t>(n - 1)].value, n);
  }
  EXPECT_EQ(Selected(form.icboCOMPort), L"COM256");
}

TEST_F(frmCOMSettingsPortsTest, OnesOwnAbsent_FirstIsSelected) {
  ports_.codes = {{17, 0}};
  EXPECT_EQ(Selected(Show().icboCOMPort), L"COM17");
  ports_.codes = {{16, 0}, {18, 0}};
  port_.SetPort(17);
  EXPECT_EQ(Selected(Show().icboCOMPort), L"COM16");
}

TEST_F(frmCOMSettingsPortsTest, None_NothingIsSelected) {
  ports_.codes.clear();
  const frmCOMSettings& form = Show();
  EXPECT_TRUE(form.icboCOMPort.entries().empty());
  EXPECT_EQ(form.icboCOMPort.selected(), nullptr);
  EXPECT_EQ(Selected(form.cboBaudRate), L"9600");
  ExpectBoxes({});
}

TEST_F(frmCOMSettingsPortsTest, LookedForUnderTheBusyPointer) {
  std::set<MousePointer> seen;
  ports_.on_question = [&](std::int16_t) { seen.insert(user_.pointer()); };
  Make();
  EXPECT_EQ(seen, std::set{MousePointer::kBusy});
  EXPECT_EQ(user_.pointer(), MousePointer::kDefault);
}

TEST_F(frmCOMSettingsPortsTest, CannotBeFoundOut_IsShownAndTheOthersAreListed) {
  ports_.codes = {{1, 0}, {3, 0}, {4, 0}};
  ports_.on_question = [&](std::int16_t port) {
    if (port == 2 || port == 3) throw std::runtime_error("out of order");
  };
  const frmCOMSettings& form = Show();
  const std::wstring failure = L"51 - Internal error (out of order)\r\n(KespCommObj)";
  ExpectBoxes({ErrorBox(L"determine if COM2 is currently available", failure),
               ErrorBox(L"determine if COM3 is currently available", failure)});
  EXPECT_EQ(Described(form.icboCOMPort.entries()), (Lines{L"COM1 1 [COMPort]", L"COM4 4 [COMPort]"}));
  EXPECT_EQ(ports_.asked.back(), 256);
  EXPECT_TRUE(form.is_open());
}

}  // namespace
}  // namespace kesp
