// Tests of typing into the TCP/IP form: the dots of an address, the keys, and the focus.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>

#include "dialogs/frm_tcp_settings_fixture.h"

namespace kesp {
namespace {

// A window that does what a real one does: the focus moves, the boxes hear of it, and a typed character
// replaces what is selected.
class frmTCPSettingsTypingTest : public frmTCPSettingsFixture {
 protected:
  void Type(const char* keys) {
    for (; *keys != 0; ++keys) {
      TextBox& box = FocusedOctet();
      const std::int16_t kept = form_->KeyPress(box, *keys);
      if (&FocusedOctet() != &box) {
        form_->LostFocus(box);
        form_->GotFocus(FocusedOctet());
        replace_ = true;
      }
      if (kept == 0) continue;
      box.Type((replace_ ? L"" : box.text()) + static_cast<wchar_t>(kept));
      replace_ = false;
    }
  }

 private:
  TextBox& FocusedOctet() {
    return *std::find_if(form_->txtIP.begin(), form_->txtIP.end(),
                         [this](const TextBox& box) { return &box == form_->focused(); });
  }

  bool replace_ = true;
};

TEST_F(frmTCPSettingsTypingTest, WholeAddress_FillsTheBoxesOneByOne) {
  tcp_->SetIPAddress(L"1.2.3.4");
  Load();
  Type("192.168.0.10");
  EXPECT_EQ(Octets(), (Lines{L"192", L"168", L"0", L"10"}));
  EXPECT_EQ(form_->focused(), &form_->txtIP[3]);
}

TEST_F(frmTCPSettingsTypingTest, FourthDot_WrapsToTheFirstBox) {
  Load();
  Type("1.2.3.4.5");
  EXPECT_EQ(Octets(), (Lines{L"5", L"2", L"3", L"4"}));
  EXPECT_EQ(form_->focused(), &form_->txtIP[0]);
}

TEST_F(frmTCPSettingsTypingTest, TooLargeOctet_IsCorrectedWhenTheDotLeavesIt) {
  Load();
  Type("300.");
  EXPECT_EQ(Octets()[0], L"255");
}

TEST_F(frmTCPSettingsTypingTest, Dot_MovesTheFocusAndIsDropped) {
  Load();
  view_.lines.clear();
  for (TextBox& box : form_->txtIP) EXPECT_EQ(form_->KeyPress(box, L'.'), 0);
  EXPECT_EQ(view_.lines, (Lines{L"414 focused", L"415 focused", L"416 focused", L"413 focused"}));
}

TEST_F(frmTCPSettingsTypingTest, DotInAnotherBox_IsOnlyDropped) {
  Load();
  view_.lines.clear();
  EXPECT_EQ(form_->KeyPress(form_->txtPort, L'.'), 0);
  EXPECT_EQ(form_->KeyPress(form_->txtTimeout, L'.'), 0);
  EXPECT_TRUE(view_.lines.empty());
}

TEST_F(frmTCPSettingsTypingTest, OtherKeys_AreFilteredAndMoveNothing) {
  Load();
  view_.lines.clear();
  for (TextBox* box : {&form_->txtIP[0], &form_->txtIP[3], &form_->txtPort, &form_->txtTimeout}) {
    EXPECT_EQ(form_->KeyPress(*box, L'5'), L'5');
    EXPECT_EQ(form_->KeyPress(*box, 22), 22);
    for (const char dropped : {'-', '+', ',', ' ', 'x'}) {
      EXPECT_EQ(form_->KeyPress(*box, dropped), 0) << dropped;
    }
  }
  EXPECT_TRUE(view_.lines.empty());
}

TEST_F(frmTCPSettingsTypingTest, LostFocus_BringsTheNumberIntoTheBoxsRange) {
  Load();
  const struct {
    TextBox& box;
    const wchar_t* typed;
    const wchar_t* shown;
  } rows[] = {
      {form_->txtIP[0], L"300", L"255"},    {form_->txtIP[1], L"256", L"255"},
      {form_->txtIP[2], L"", L"0"},         {form_->txtIP[3], L"255", L"255"},
      {form_->txtIP[3], L"-1", L"0"},       {form_->txtPort, L"0", L"1"},
      {form_->txtPort, L"", L"1"},          {form_->txtPort, L"65535", L"65535"},
      {form_->txtPort, L"65536", L"65535"}, {form_->txtTimeout, L"99", L"100"},
      {form_->txtTimeout, L"100", L"100"},  {form_->txtTimeout, L"10001", L"10000"},
  };
  for (const auto& row : rows) {
    row.box.Type(row.typed);
    form_->LostFocus(row.box);
    EXPECT_EQ(row.box.text(), row.shown) << row.box.id() << " " << row.typed;
  }
}

}  // namespace
}  // namespace kesp
