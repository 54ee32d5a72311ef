// The RS-232 dialog of the registered library on a real COM port: which ports it offers, what it writes, and
// what Cancel leaves.
#include <gtest/gtest.h>

#include <cstdio>

#include "tests/clients/serial_editing_fixture.h"
#include "tests/serial_win/bare_port.h"

namespace kesp::clients {
namespace {

class SerialEditingTest : public SerialEditingFixture {
 protected:
  bool IsAvailable() const {
    VARIANT_BOOL available = VARIANT_FALSE;
    EXPECT_EQ(port()->IsPortAvailable(SerialPortNumber(), &available), S_OK);
    return available == VARIANT_TRUE;
  }
  void MustOpen() const {
    VARIANT_BOOL opened = VARIANT_FALSE;
    ASSERT_EQ(RefusalOf(port()->OpenPort(&opened)), Refusal{});
    ASSERT_FALSE(IsAvailable());
  }

  SerialWire wire_;
};

class SerialEditingCallTest : public SerialEditingTest, public testing::WithParamInterface<EditCall> {
 protected:
  // Changes something on each page.
  static void ChangeAll(DialogUser& user) {
    user.ClickTab(kExtendedPage);
    user.Choose(ID_CBO_PARITY, PARITY_ODD);
    user.Choose(ID_CBO_DATA_BITS, DATA_7BITS);
    user.Choose(ID_CBO_STOP_BITS, STOP_2BITS);
    user.MoveTo(ID_TXT_TIMEOUT);
    user.Type(L"450");
    user.Click(ID_CHK_STRIP_CRLF);
    user.ClickTab(kSmartSwitchPage);
    user.Click(ID_CHK_USE_SMART_SWITCH);
    user.Choose(ID_ICBO_SMART_SWITCH_STYLE, 1);
    user.ClickTab(kComPortPage);
    user.Choose(ID_CBO_BAUD_RATE, br19200);
    user.Click(ID_CHK_USE_IR_DONGLE);
    user.Click(ID_CHK_USE_REDIRECTOR);
  }
  // The port's settings in one line.
  std::wstring Settings() const {
    std::wstring settings = Read(port(), &_CKespCOMPort3::GetSettings) + L", " +
                            std::to_wstring(Read(port(), &_CKespCOMPort3::get_TimeOut)) + L" ms";
    if (Read(port(), &_CKespCOMPort3::get_StripCRLF) == VARIANT_TRUE) settings += L", strip";
    if (Read(port(), &_CKespCOMPort3::get_UseSmartSwitch) == VARIANT_TRUE) settings += L", switch";
    if (Read(port(), &_CKespCOMPort3::get_UseIRDongle) == VARIANT_TRUE) settings += L", dongle";
    if (Read(port(), &_CKespCOMPort3::get_UseRedirector) == VARIANT_TRUE) settings += L", redirector";
    const auto box = ReadObject(port(), &_CKespCOMPort3::get_SmartSwitch);
    return settings + L", style " + std::to_wstring(Read(box, &_CKespSmartSwitch3::get_Style));
  }
};

INSTANTIATE_TEST_SUITE_P(Calls, SerialEditingCallTest,
                         testing::Values(EditCall::kTransportEarly, EditCall::kTransportLate,
                                         EditCall::kFacadeEarly, EditCall::kFacadeLate),
                         EditCallName);

TEST_P(SerialEditingCallTest, Entered_IsWhatThePropertiesSayAndCancelLeavesIt) {
  EXPECT_EQ(Settings(), L"9600,N,8,1, 1500 ms, strip, style 2");
  EXPECT_FALSE(Edit(GetParam(), kAllSerialPages, [](DialogUser& user) {
    EXPECT_EQ(user.Tabs(), (std::vector<std::wstring>{L"COM Port", L"SmartSwitch", L"Extended"}));
    ChangeAll(user);
    user.Click(ID_CANCEL);
  }));
  EXPECT_EQ(Settings(), L"9600,N,8,1, 1500 ms, strip, style 2");
  EXPECT_TRUE(Edit(GetParam(), kAllSerialPages, [](DialogUser& user) {
    ChangeAll(user);
    user.Click(ID_OK);
  }));
  EXPECT_EQ(Settings(), L"19200,O,7,2, 450 ms, switch, dongle, redirector, style 1");
}

TEST_F(SerialEditingTest, NoFlags_FirstPageWithoutTheDongle) {
  EXPECT_FALSE(Edit(EditCall::kFacadeLate, 0, [](DialogUser& user) {
    EXPECT_EQ(user.Tabs(), (std::vector<std::wstring>{L"COM Port"}));
    EXPECT_FALSE(user.IsVisible(ID_CHK_USE_IR_DONGLE));
    EXPECT_TRUE(user.IsVisible(ID_CHK_USE_RF_MODEM));
    user.Press(VK_ESCAPE);
  }));
}

TEST_F(SerialEditingTest, OwnPortThatWasOpen_IsOfferedAndClosedAfterwards) {
  MustOpen();
  const DWORD start = GetTickCount();
  DWORD shown = 0;
  EXPECT_TRUE(Edit([&shown](DialogUser& user) {
    shown = GetTickCount();
    EXPECT_EQ(user.Selection(ID_ICBO_COM_PORT), PlaceOf(user, ID_ICBO_COM_PORT, OwnPort()));
    EXPECT_GE(user.Selection(ID_ICBO_COM_PORT), 0);
    user.Click(ID_OK);
  }));
  std::printf("The dialog was there after %lu ms.\n", shown - start);
  EXPECT_TRUE(IsAvailable());
  EXPECT_EQ(Read(port(), &_CKespCOMPort3::get_Port), SerialPortNumber());
}

TEST_F(SerialEditingTest, PortHeldByAnother_IsNotOffered) {
  const BarePort other(SerialWire::PortName());
  ASSERT_EQ(other.error(), DWORD{ERROR_SUCCESS});
  EXPECT_FALSE(Edit([](DialogUser& user) {
    EXPECT_EQ(PlaceOf(user, ID_ICBO_COM_PORT, OwnPort()), -1);
    user.Click(ID_CANCEL);
  }));
}

TEST_F(SerialEditingTest, PortAndRateChosen_TheNextQueryUsesThem) {
  EXPECT_EQ(Write(port(), &_CKespCOMPort3::put_Port, kMissingPort), S_OK);
  EXPECT_EQ(Write(port(), &_CKespCOMPort3::put_BaudRate, br300), S_OK);
  EXPECT_TRUE(Edit([](DialogUser& user) {
    EXPECT_EQ(PlaceOf(user, ID_ICBO_COM_PORT, L"COM" + std::to_wstring(kMissingPort)), -1);
    EXPECT_EQ(user.Selection(ID_ICBO_COM_PORT), 0) << "the first, as its own is not there";
    user.Choose(ID_ICBO_COM_PORT, PlaceOf(user, ID_ICBO_COM_PORT, OwnPort()));
    EXPECT_EQ(user.Selection(ID_CBO_BAUD_RATE), br300);
    user.Choose(ID_CBO_BAUD_RATE, br9600);
    user.Click(ID_OK);
  }));
  EXPECT_EQ(Read(port(), &_CKespCOMPort3::get_Port), SerialPortNumber());
  wire_.OnBytes("*IDN?\r").Reply("KESP,W1,1,1.0\r\n");
  Text reply;
  VARIANT_BOOL answer = VARIANT_FALSE;
  EXPECT_EQ(comm()->Query(reply.in_out(), Text(L"*IDN?").get(), nullptr, nullptr, &answer), S_OK);
  EXPECT_EQ(answer, VARIANT_TRUE);
  EXPECT_EQ(reply.str(), L"KESP,W1,1,1.0");
}

TEST_F(SerialEditingTest, ControllerStyleChosen_StaysAfterCancel) {
  EXPECT_FALSE(Edit([](DialogUser& user) {
    user.ClickTab(kExtendedPage);
    user.Choose(ID_CBO_CONTROLLER_STYLE, CS_OMEGA);
    EXPECT_EQ(user.Selection(ID_CBO_PARITY), PARITY_EVEN);
    EXPECT_EQ(user.Selection(ID_CBO_DATA_BITS), DATA_7BITS);
    user.Click(ID_CANCEL);
  }));
  EXPECT_EQ(Read(port(), &_CKespCOMPort3::get_ControllerStyle), CS_OMEGA);
}

// The box's bytes are those of the saved style, which has six ports.
TEST_F(SerialEditingTest, TestSmartSwitch_StepsTheBoxOnTheLineThroughItsPorts) {
  const auto box = ReadObject(port(), &_CKespCOMPort3::get_SmartSwitch);
  const std::string release = "\x1B\x02\x02\x04";
  std::string expected = release;
  for (const std::string name : {"A", "B", "C", "D", "E", "F"}) {
    expected += release + "\x1B\x02" + "0" + name + "\r";
  }
  expected += release;
  EXPECT_EQ(Write(port(), &_CKespCOMPort3::put_UseSmartSwitch, VARIANT_TRUE), S_OK);
  EXPECT_FALSE(Edit([&](DialogUser& user) {
    user.ClickTab(kSmartSwitchPage);
    user.Choose(ID_ICBO_SMART_SWITCH_STYLE, 1);
    EXPECT_EQ(wire_.ReceiveUntilQuiet(), "");
    user.Click(ID_CMD_TEST_SMART_SWITCH);
    EXPECT_EQ(wire_.Receive(expected.size()), expected);
    EXPECT_EQ(wire_.ReceiveUntilQuiet(), "");
    user.Click(ID_CANCEL);
  }));
  EXPECT_EQ(Read(box, &_CKespSmartSwitch3::get_Style), ssBB6port);
  EXPECT_TRUE(IsAvailable());
}

}  // namespace
}  // namespace kesp::clients
