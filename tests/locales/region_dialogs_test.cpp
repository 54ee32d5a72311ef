// Both settings dialogs in some region: what number boxes take, what they show, and the lists.
#include <gtest/gtest.h>

#include "dialogs/dialog_ids.h"
#include "tests/clients/dialog_editing.h"
#include "tests/locales/region.h"

namespace kesp::clients {
namespace {

// Digits of other scripts, which number boxes do not take.
constexpr wchar_t kOtherDigits[] = L"\x663\xe53\xff13";

class RegionNetworkDialogTest : public EditingFixture<_CKespTCP> {
 protected:
  RegionNetworkDialogTest() : EditingFixture(L"TCP/IP Communication Settings") {
    transport_ = Create<_CKespTCP>(__uuidof(CKespTCP));
    transport_->put_IPAddress(Text(L"10.20.30.40").get());
    transport_->put_Port(10001);
    transport_->put_TimeOutmSecs(2500);
  }
};

TEST_F(RegionNetworkDialogTest, Numbers_AreShownAndTakenInPlainDigits) {
  EXPECT_TRUE(Edit(EditCall::kTransportEarly, {.flags = ecfShowTCPExtendedTab}, [](DialogUser& user) {
    EXPECT_EQ(user.Text(ID_TXT_IP + 3), L"40");
    EXPECT_EQ(user.Text(ID_TXT_PORT), L"10001");
    user.MoveTo(ID_TXT_PORT);
    user.Type(kOtherDigits);
    user.Type(
        L"5,.0\x130\x131"
        L"25");
    EXPECT_EQ(user.Text(ID_TXT_PORT), L"5025");
    user.ClickTab(1);
    EXPECT_EQ(user.Text(ID_TXT_TCP_TIMEOUT), L"2500");
    user.ClickArrow(ID_UD_TCP_TIMEOUT, true);
    EXPECT_EQ(user.Text(ID_TXT_TCP_TIMEOUT).find_first_not_of(L"0123456789"), std::wstring::npos);
    user.MoveTo(ID_TXT_TCP_TIMEOUT);
    user.Type(L"1500");
    user.Click(ID_OK);
  }));
  EXPECT_EQ(Read(transport_, &_CKespTCP::get_Port), 5025);
  EXPECT_EQ(Read(transport_, &_CKespTCP::get_TimeOutmSecs), 1500);
}

class RegionSerialDialogTest : public EditingFixture<_CKespCOMPort3> {
 protected:
  RegionSerialDialogTest() : EditingFixture(L"RS-232 Communication Settings") {
    transport_ = Create<_CKespCOMPort3>(__uuidof(CKespCOMPort3));
    transport_->put_MaxBaudRate(br115200);
    transport_->put_MinBaudRate(br9600);
    transport_->put_BaudRate(br57600);
    transport_->put_TimeOut(2500);
  }
};

// A point is the region's separator there; behind it there is nothing that counts.
TEST_F(RegionSerialDialogTest, TimeoutBox_TakesTheRegionsSeparator) {
  Edit(EditCall::kTransportEarly, {.flags = ecfShowRS232ExtendedTab}, [](DialogUser& user) {
    const std::wstring separator(1, TheRegion().separator);
    user.ClickTab(1);
    EXPECT_EQ(user.Text(ID_TXT_TIMEOUT), L"2500");
    user.MoveTo(ID_TXT_TIMEOUT);
    user.Type(std::wstring(kOtherDigits) + L"15.7");
    EXPECT_EQ(user.Text(ID_TXT_TIMEOUT), L"15" + separator + L"7");
    user.Press(VK_TAB);
    EXPECT_EQ(user.Text(ID_TXT_TIMEOUT), L"100") << "the least";
    user.MoveTo(ID_TXT_TIMEOUT);
    user.Type(L"3000");
    user.ClickArrow(ID_UD_TIMEOUT, true);
    EXPECT_EQ(user.Text(ID_TXT_TIMEOUT).size(), 4u);
    EXPECT_EQ(user.Text(ID_TXT_TIMEOUT).find_first_not_of(L"0123456789"), std::wstring::npos);
    user.Press(VK_ESCAPE);
  });
  EXPECT_EQ(Read(transport_, &_CKespCOMPort3::get_TimeOut), 2500);
}

TEST_F(RegionSerialDialogTest, ListOfRates_HasPlainDigits) {
  Edit(EditCall::kTransportEarly, {.flags = ecfShowRS232ExtendedTab}, [](DialogUser& user) {
    EXPECT_EQ(user.Entries(ID_CBO_BAUD_RATE),
              (std::vector<std::wstring>{L"9600", L"19200", L"38400", L"57600", L"115200"}));
    for (const std::wstring& port : user.Entries(ID_ICBO_COM_PORT)) EXPECT_TRUE(port.starts_with(L"COM"));
    user.Press(VK_ESCAPE);
  });
}

}  // namespace
}  // namespace kesp::clients
