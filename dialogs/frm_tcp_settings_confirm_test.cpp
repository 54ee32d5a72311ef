// Tests of what the TCP/IP form writes, what it keeps to itself, and what happens when the transport refuses.
#include <gtest/gtest.h>

#include "dialogs/frm_tcp_settings_fixture.h"

namespace kesp {
namespace {

using Written = std::tuple<EIPType, std::wstring, std::int16_t, std::int16_t, bool>;

class frmTCPSettingsConfirmTest : public frmTCPSettingsFixture {
 protected:
  void ExpectRefusedWith(const std::wstring& error) {
    EXPECT_EQ(TakeBoxes(), Boxes{ErrorBox(L"gather communication settings", error)});
    EXPECT_TRUE(form_->is_open());
    EXPECT_FALSE(form_->bCancel());
  }
};

TEST_F(frmTCPSettingsConfirmTest, OKWithoutChanges_WritesWhatThereWas) {
  const auto before = Settings();
  Load();
  OK();
  EXPECT_EQ(Settings(), before);
  EXPECT_FALSE(form_->is_open());
  EXPECT_FALSE(form_->bCancel());
  EXPECT_EQ(TakeBoxes(), Boxes{});
}

TEST_F(frmTCPSettingsConfirmTest, OKWithKnownAddress_WritesEverything) {
  LoadType(1);
  form_->optTCPType[0].Click();
  TypeOctets({L"10", L"1", L"2", L"3"});
  form_->txtPort.Type(L"32767");
  form_->txtTimeout.Type(L"500");
  form_->chkCreateLogFile.Click();
  OK();
  EXPECT_EQ(Settings(),
            (Written{EIPType::ipStatic, L"10.1.2.3", std::int16_t{32767}, std::int16_t{500}, false}));
  EXPECT_FALSE(form_->is_open());
}

TEST_F(frmTCPSettingsConfirmTest, OKWithDiscovery_WritesTheTypeAndLeavesAddressAndPort) {
  Load();
  TypeOctets({L"10", L"1", L"2", L"3"});
  form_->txtPort.Type(L"0");  // which would be refused
  form_->optTCPType[1].Click();
  OK();
  EXPECT_EQ(Settings(),
            (Written{EIPType::ipDynamic, L"192.168.0.10", std::int16_t{10001}, std::int16_t{2500}, true}));
  EXPECT_FALSE(form_->is_open());
}

TEST_F(frmTCPSettingsConfirmTest, OKWithNoOptionSelected_IsDiscovery) {
  LoadType(2);
  form_->txtPort.Type(L"80");
  OK();
  EXPECT_EQ(tcp_->IPType(), EIPType::ipDynamic);
  EXPECT_EQ(tcp_->Port(), 10001);
}

TEST_F(frmTCPSettingsConfirmTest, OKWithoutExtendedPage_LeavesItsSettings) {
  Load({false, 0});
  form_->txtPort.Type(L"80");
  form_->txtTimeout.Type(L"40000");  // which would be refused
  OK();
  EXPECT_EQ(Settings(),
            (Written{EIPType::ipStatic, L"192.168.0.10", std::int16_t{80}, std::int16_t{2500}, true}));
  EXPECT_FALSE(form_->is_open());
}

TEST_F(frmTCPSettingsConfirmTest, Octets_AreWrittenAsTheirLinesStand) {
  const struct {
    Lines octets;
    const wchar_t* address;
  } rows[] = {
      {{L"10", L"", L"0", L"1"}, L"10..0.1"},
      {{L"", L"", L"", L""}, L"..."},
      {{L"300", L"007", L"x", L" 1"}, L"300.007.x. 1"},
  };
  for (const auto& row : rows) {
    Load();
    TypeOctets(row.octets);
    OK();
    EXPECT_EQ(tcp_->IPAddress(), row.address);
    EXPECT_FALSE(form_->is_open());
  }
}

TEST_F(frmTCPSettingsConfirmTest, NumbersOutsideTheirBoxesRanges_AreTheTransportsMatter) {
  Load();
  form_->txtTimeout.Type(L"50");
  form_->txtPort.Type(L"80.5x");
  OK();
  EXPECT_EQ(tcp_->TimeOutmSecs(), 50);
  EXPECT_EQ(tcp_->Port(), 80);
  EXPECT_FALSE(form_->is_open());
}

TEST_F(frmTCPSettingsConfirmTest, TimeoutThatDoesNotFit_NothingIsWritten) {
  const auto before = Settings();
  Load();
  form_->txtTimeout.Type(L"40000");
  form_->chkCreateLogFile.Click();
  TypeOctets({L"10", L"1", L"2", L"3"});
  OK();
  ExpectRefusedWith(L"6 - Overflow\r\n(KespCommObj)");
  EXPECT_EQ(Settings(), before);
}

TEST_F(frmTCPSettingsConfirmTest, PortThatDoesNotFit_WhatWentBeforeStaysWritten) {
  LoadType(1);
  form_->optTCPType[0].Click();
  TypeOctets({L"10", L"1", L"2", L"3"});
  form_->txtPort.Type(L"40000");
  form_->txtTimeout.Type(L"500");
  form_->chkCreateLogFile.Click();
  OK();
  ExpectRefusedWith(L"6 - Overflow\r\n(KespCommObj)");
  EXPECT_EQ(Settings(),
            (Written{EIPType::ipDynamic, L"10.1.2.3", std::int16_t{10001}, std::int16_t{500}, false}));
}

TEST_F(frmTCPSettingsConfirmTest, EmptyPort_IsRefusedByTheTransport) {
  Load();
  TypeOctets({L"10", L"1", L"2", L"3"});
  form_->txtPort.Type(L"");
  OK();
  ExpectRefusedWith(L"-2147221263 - Invalid Port\r\n([CKespTCP - Port])");
  EXPECT_EQ(tcp_->IPAddress(), L"10.1.2.3");
  EXPECT_EQ(tcp_->Port(), 10001);
  // Set right by leaving the box, it is written.
  form_->LostFocus(form_->txtPort);
  OK();
  EXPECT_EQ(tcp_->Port(), 1);
  EXPECT_FALSE(form_->is_open());
}

}  // namespace
}  // namespace kesp
