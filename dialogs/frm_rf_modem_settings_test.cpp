// Tests of the radio modem's form: its controls, and reading the modem.
#include "dialogs/frm_rf_modem_settings.h"

#include <gtest/gtest.h>

#include "dialogs/dialog_ids.h"
#include "dialogs/frm_rf_modem_settings_fixture.h"

namespace kesp {
namespace {

using frmRFModemSettingsTest = frmRFModemSettingsFixture;

MessageBoxRequest Unread(const std::wstring& port, const std::wstring& rate) {
  return Remark(L"Query RF Modem Settings",
                L"Unable to read settings from RF modem. Make sure the modem is connected to " + port +
                    L" and set to operate at " + rate + L" baud.");
}
constexpr std::int32_t kDeviceFailure = 8021;

TEST_F(frmRFModemSettingsTest, New_ShowsNothingOfTheModemYet) {
  EXPECT_EQ(form_->caption(), L"RF Modem Properties");
  EXPECT_EQ(form_->tabSettings.tabs(), (std::vector<TabStrip::Tab>{{L"Properties", 0}}));
  EXPECT_EQ(form_->own_topic(), HelpTopic::kRFModemSettings);
  EXPECT_EQ(form_->help_context(), 4711);
  EXPECT_EQ(Entries(), (Lines{L"", L"", L"", L""}));
  EXPECT_EQ(form_->lblSerial.text(), L"");
  EXPECT_EQ(form_->lblPowerLevel.text(), L"Power level");
  EXPECT_EQ(form_->pbPowerLevel.minimum(), 0);
  EXPECT_EQ(form_->pbPowerLevel.maximum(), 4);
  EXPECT_EQ(form_->pbPowerLevel.value(), 0);
  EXPECT_TRUE(record_.empty());
}

TEST_F(frmRFModemSettingsTest, FirstPaint_ReadsTheModemUnderTheBusyPointerAndShowsIt) {
  AnswersQuestions();
  int polls = 0;
  ports_.line.on_poll = [&] {
    ++polls;
    EXPECT_EQ(environment_.user.pointer(), MousePointer::kBusy);
  };
  form_->FirstPaint();
  EXPECT_GT(polls, 0);
  EXPECT_EQ(environment_.user.pointer(), MousePointer::kDefault);
  EXPECT_EQ(Outputs(), questions_);
  EXPECT_EQ(view_.lines, (Lines{L"100 selects Properties", L"110 shown", L"314 text 13A240B0C1D2",
                                L"315 text Power level 4", L"316 value 4", L"310 text 13106", L"311 text 12",
                                L"312 text 26", L"313 text 1500"}));
  EXPECT_TRUE(form_->is_open());
  ExpectLeftInOrder();
}

TEST_F(frmRFModemSettingsTest, Answers_AreShownAsTheyAreWithoutBlanksAroundThem) {
  AnswersQuestions();
  // Out of the ranges that the boxes take.
  ports_.line.Answer("ATCH\r", "1F\r");
  ports_.line.Answer("ATID\r", "FFFFF\r");
  port_.SetStripCRLF(false);
  ports_.line.Answer("ATSH\r", " 13A2\r");
  ports_.line.Answer("ATSL\r", "40B0C1D2 \r");
  ports_.line.Answer("ATPL\r", "  3 \r");
  form_->FirstPaint();
  EXPECT_EQ(form_->lblSerial.text(), L"13A240B0C1D2");
  EXPECT_EQ(form_->lblPowerLevel.text(), L"Power level 3");
  EXPECT_EQ(form_->pbPowerLevel.value(), 3);
  EXPECT_EQ(Entries(), (Lines{L"1048575", L"31", L"26", L"1500"}));
}

TEST_F(frmRFModemSettingsTest, PowerLevel_TheBarStaysInsideItsEnds) {
  const struct {
    const char* answer;
    std::int32_t value;
    const wchar_t* text;
  } rows[] = {{"0\r", 0, L"Power level 0"},
              {"2\r", 2, L"Power level 2"},
              {"9\r", 4, L"Power level 9"},
              {"x\r", 0, L"Power level x"}};
  for (const auto& row : rows) {
    AnswersQuestions();
    ports_.line.Answer("ATPL\r", row.answer);
    frmRFModemSettings form(environment_.user, port_, 0);
    form.FirstPaint();
    EXPECT_EQ(form.pbPowerLevel.value(), row.value) << row.answer;
    EXPECT_EQ(form.lblPowerLevel.text(), row.text);
  }
}

TEST_F(frmRFModemSettingsTest, NoAnswer_OneMessageAndTheDialogEndsAsCancelled) {
  environment_.user.on_box = [this] { EXPECT_TRUE(form_->is_open()); };
  form_->FirstPaint();
  EXPECT_EQ(TakeBoxes(), Boxes{Unread(L"COM1", L"9600")});
  EXPECT_EQ(environment_.user.pointer_under_boxes(), std::vector{MousePointer::kDefault});
  EXPECT_FALSE(form_->is_open());
  EXPECT_TRUE(form_->bCancel());
  EXPECT_EQ(Outputs(), Lines{L"+++"});
  EXPECT_EQ(view_.lines, (Lines{L"100 selects Properties", L"110 shown"}));
}

TEST_F(frmRFModemSettingsTest, NoAnswer_TheMessageNamesThePortAndItsRate) {
  AllowRates(0, 13, 10);
  port_.SetPort(12);
  form_->FirstPaint();
  EXPECT_EQ(TakeBoxes(), Boxes{Unread(L"COM12", L"115200")});
}

TEST_F(frmRFModemSettingsTest, PortFailsAtAnyCall_OneMessageAndTheDialogEndsWithNothingShown) {
  int failed = 0;
  for (int nth = 1;; ++nth) {
    SCOPED_TRACE(nth);
    AnswersQuestions();
    frmRFModemSettings form(environment_.user, port_, 0);
    ports_.line.FailCall(nth, kDeviceFailure);
    form.FirstPaint();
    if (ports_.line.faults.IsPending()) {
      // Fewer calls than that: nothing failed.
      EXPECT_EQ(TakeBoxes(), Boxes{});
      EXPECT_EQ(form.txtPANID.text(), L"13106");
      break;
    }
    ++failed;
    EXPECT_EQ(TakeBoxes(), Boxes{Unread(L"COM1", L"9600")});
    EXPECT_TRUE(form.bCancel());
    EXPECT_FALSE(form.is_open());
    EXPECT_EQ(form.txtPANID.text(), L"");
    EXPECT_EQ(form.lblPowerLevel.text(), L"Power level");
  }
  EXPECT_GT(failed, 20);
}

TEST_F(frmRFModemSettingsTest, ReadingFailsOtherwise_TheErrorIsShownAndTheDialogEnds) {
  AnswersQuestions();
  view_.on_change = [](const Control& control, Change) {
    if (control.id() == ID_PB_POWER_LEVEL) throw Overflow();
  };
  form_->FirstPaint();
  EXPECT_EQ(TakeBoxes(), Boxes{ErrorBox(L"read settings from RF modem", L"6 - Overflow\r\n(KespCommObj)")});
  EXPECT_FALSE(form_->is_open());
  EXPECT_TRUE(form_->bCancel());
}

TEST_F(frmRFModemSettingsTest, Boxes_TakeDigitsAndSelectAllAndCorrectTheirNumbers) {
  const struct {
    TextBox& box;
    const wchar_t* typed;
    const wchar_t* shown;
  } rows[] = {
      {form_->txtPANID, L"0", L"1"},
      {form_->txtPANID, L"", L"1"},
      {form_->txtPANID, L"65535", L"65535"},
      {form_->txtPANID, L"65536", L"65535"},
      {form_->txtChannel, L"30", L"24"},
      {form_->txtChannel, L"", L"12"},
      {form_->txtChannel, L"7x", L"12"},
      {form_->txtChannel, L"11", L"12"},
      {form_->txtChannel, L"24", L"24"},
      {form_->txtRFModemAddress, L"0", L"1"},
      {form_->txtRFModemAddress, L"70000", L"65535"},
      {form_->txtTimeout, L"1", L"2"},
      {form_->txtTimeout, L"2", L"2"},
      {form_->txtTimeout, L"70000", L"65535"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(form_->KeyPress(row.box, L'5'), L'5');
    EXPECT_EQ(form_->KeyPress(row.box, L'-'), 0);
    EXPECT_EQ(form_->KeyPress(row.box, L'.'), 0);
    row.box.Type(row.typed);
    form_->GotFocus(row.box);
    EXPECT_EQ(row.box.selection_length(), row.box.text().size());
    form_->LostFocus(row.box);
    EXPECT_EQ(row.box.text(), row.shown) << row.box.id() << " " << row.typed;
  }
}

}  // namespace
}  // namespace kesp
