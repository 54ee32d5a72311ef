// Tests of the TCP/IP form: its controls, what it loads, and its options.
#include "dialogs/frm_tcp_settings.h"

#include <gtest/gtest.h>

#include "dialogs/dialog_ids.h"
#include "dialogs/frm_tcp_settings_fixture.h"

namespace kesp {
namespace {

using frmTCPSettingsTest = frmTCPSettingsFixture;

TEST_F(frmTCPSettingsTest, New_HasItsCaptionTopicAndPages) {
  using Tabs = std::vector<TabStrip::Tab>;
  for (const bool extended : {true, false}) {
    const frmTCPSettings form(fakes_.user, *tcp_, {extended, 4711});
    EXPECT_EQ(form.caption(), L"TCP/IP Communication Settings");
    EXPECT_EQ(form.own_topic(), HelpTopic::kTCPSettings);
    EXPECT_EQ(form.help_context(), 4711);
    EXPECT_EQ(form.tabSettings.tabs(),
              (extended ? Tabs{{L"General", 0}, {L"Extended", 1}} : Tabs{{L"General", 0}}));
    EXPECT_TRUE(form.framSettings[0].visible());
    EXPECT_FALSE(form.framSettings[1].visible());
  }
}

TEST_F(frmTCPSettingsTest, New_HasLoadedNothing) {
  form_ = std::make_unique<frmTCPSettings>(fakes_.user, *tcp_, TcpDialogOptions{true, 0});
  EXPECT_EQ(Octets(), (Lines{L"", L"", L"", L""}));
  EXPECT_EQ(form_->txtPort.text(), L"");
  EXPECT_EQ(form_->txtTimeout.text(), L"");
  EXPECT_FALSE(form_->optTCPType[0].selected());
  EXPECT_FALSE(form_->optTCPType[1].selected());
}

TEST_F(frmTCPSettingsTest, New_TheArrowsHoldTheRanges) {
  const frmTCPSettings form(fakes_.user, *tcp_, {true, 0});
  EXPECT_EQ(form.udPort.minimum(), 1);
  EXPECT_EQ(form.udPort.maximum(), 65535);
  EXPECT_EQ(form.udTimeout.minimum(), 100);
  EXPECT_EQ(form.udTimeout.maximum(), 10000);
  EXPECT_EQ(form.udPort.step(), 1);
  EXPECT_EQ(form.udTimeout.step(), 100);
}

TEST_F(frmTCPSettingsTest, FirstPaint_TellsTheViewInThisOrder) {
  Load();
  EXPECT_EQ(view_.lines,
            (Lines{L"422 checked", L"420 text 2500", L"410 checked", L"411 unchecked", L"412 enabled",
                   L"413 enabled", L"414 enabled", L"415 enabled", L"416 enabled", L"417 enabled",
                   L"418 enabled", L"419 enabled", L"413 text 192", L"414 text 168", L"415 text 0",
                   L"416 text 10", L"418 text 10001", L"413 focused"}));
  EXPECT_EQ(TakeBoxes(), Boxes{});
}

TEST_F(frmTCPSettingsTest, FirstPaintWithoutExtendedPage_LoadsNothingOfIt) {
  Load({false, 0});
  EXPECT_EQ(form_->txtTimeout.text(), L"");
  EXPECT_FALSE(form_->chkCreateLogFile.checked());
  EXPECT_EQ(form_->txtPort.text(), L"10001");
}

TEST_F(frmTCPSettingsTest, FirstPaintWithDiscovery_GreysOutAddressAndPortAndLeavesTheFocus) {
  LoadType(1);
  EXPECT_FALSE(form_->optTCPType[0].selected());
  EXPECT_TRUE(form_->optTCPType[1].selected());
  EXPECT_FALSE(form_->lblIPAddress.enabled());
  EXPECT_EQ(Octets(), (Lines{L"192", L"168", L"0", L"10"}));
  EXPECT_EQ(form_->focused(), nullptr);
}

TEST_F(frmTCPSettingsTest, FirstPaintWithATypeThatHasNoOption_SelectsNoneAndWorks) {
  for (const std::int32_t type : {2, 255, -1, -2147483647 - 1, 2147483647}) {
    LoadType(type);
    EXPECT_FALSE(form_->optTCPType[0].selected());
    EXPECT_FALSE(form_->optTCPType[1].selected());
    EXPECT_TRUE(form_->lblIPAddress.enabled());
    EXPECT_EQ(form_->txtPort.text(), L"10001");
    EXPECT_EQ(form_->focused(), &form_->txtIP[0]);
    form_->optTCPType[1].Click();
    EXPECT_FALSE(form_->txtPort.enabled());
  }
  EXPECT_EQ(TakeBoxes(), Boxes{});
}

TEST_F(frmTCPSettingsTest, Address_ItsPartsGoIntoTheBoxesAsPlainNumbers) {
  const struct {
    const wchar_t* address;
    Lines octets;
  } rows[] = {
      {L"1.2.3.4", {L"1", L"2", L"3", L"4"}},
      {L"1.2.3.4.5", {L"1", L"2", L"3", L"4"}},
      {L"1.2.3.4.", {L"1", L"2", L"3", L"4"}},
      {L"010.001.000.255", {L"10", L"1", L"0", L"255"}},
      {L"300.-1.3.4", {L"300", L"-1", L"3", L"4"}},
      {L"1..3.4", {L"1", L"0", L"3", L"4"}},
      {L"...", {L"0", L"0", L"0", L"0"}},
      {L"host.example", {L"0", L"0", L"", L""}},
      {L"host", {L"0", L"", L"", L""}},
      {L"7", {L"7", L"", L"", L""}},
      {L"1.2.", {L"1", L"2", L"0", L""}},
      {L"1.2.3", {L"1", L"2", L"3", L""}},
      {L" 1 . 2 .3x.x4", {L"1", L"2", L"3", L"0"}},
  };
  for (const auto& row : rows) {
    tcp_->SetIPAddress(row.address);
    Load();
    EXPECT_EQ(Octets(), row.octets) << row.address;
    EXPECT_EQ(form_->txtPort.text(), L"10001") << row.address;
  }
  EXPECT_EQ(TakeBoxes(), Boxes{});
}

TEST_F(frmTCPSettingsTest, AddressWithANumberBeyondAllNumbers_TheErrorIsShownAndTheDialogEnds) {
  tcp_->SetIPAddress(L"1.1e999.lab");
  Load();
  EXPECT_EQ(TakeBoxes(), Boxes{ErrorBox(L"edit TCP/IP settings", L"6 - Overflow\r\n(KespCommObj)")});
  EXPECT_FALSE(form_->is_open());
  EXPECT_TRUE(form_->bCancel());
  EXPECT_EQ(tcp_->IPAddress(), L"1.1e999.lab");
}

TEST_F(frmTCPSettingsTest, AddressOfFewerParts_TheOtherBoxesKeepTheirContent) {
  tcp_->SetIPAddress(L"1.2");
  form_ = std::make_unique<frmTCPSettings>(fakes_.user, *tcp_, TcpDialogOptions{});
  TypeOctets({L"9", L"8", L"7", L"6"});
  form_->FirstPaint();
  EXPECT_EQ(Octets(), (Lines{L"1", L"2", L"7", L"6"}));
}

TEST_F(frmTCPSettingsTest, ClickAnOption_EnablesAddressAndPortForAKnownOne) {
  Load();
  for (const std::size_t option : {1, 0}) {
    view_.lines.clear();
    form_->optTCPType[option].Click();
    Lines expected = {option == 0 ? L"410 checked" : L"411 checked",
                      option == 0 ? L"411 unchecked" : L"410 unchecked"};
    for (int id = ID_LBL_IP_ADDRESS; id <= ID_UD_PORT; ++id) {
      expected.push_back(std::to_wstring(id) + (option == 0 ? L" enabled" : L" disabled"));
    }
    EXPECT_EQ(view_.lines, expected);
    EXPECT_EQ(tcp_->IPType(), EIPType::ipStatic);
  }
}

}  // namespace
}  // namespace kesp
