// Tests of what the radio modem's form accepts, asks, and writes to the modem.
#include <gtest/gtest.h>

#include "dialogs/frm_rf_modem_settings_fixture.h"

namespace kesp {
namespace {

constexpr std::int32_t kDeviceFailure = 8021;
constexpr int kNo = 7;  // IDNO

const MessageBoxRequest kQuestion{L"Do you want to write these settings to NVRAM?", L"RF Modem Properties", 4,
                                  L"", 0};

class frmRFModemSettingsConfirmTest : public frmRFModemSettingsFixture {
 protected:
  void Fill(const wchar_t* pan_id, const wchar_t* channel, const wchar_t* address, const wchar_t* timeout) {
    form_->txtPANID.Type(pan_id);
    form_->txtChannel.Type(channel);
    form_->txtRFModemAddress.Type(address);
    form_->txtTimeout.Type(timeout);
  }

  // OK is refused with this message alone, and the box has the focus then.
  void ExpectRefused(const TextBox& box, const wchar_t* title, const wchar_t* message) {
    view_.lines.clear();
    OK();
    EXPECT_EQ(TakeBoxes(), Boxes{Remark(title, message)}) << testing::PrintToString(box.text());
    EXPECT_EQ(form_->focused(), &box);
    EXPECT_EQ(view_.lines,
              (Lines{L"100 selects Properties", L"110 shown", std::to_wstring(box.id()) + L" focused"}));
    EXPECT_TRUE(form_->is_open());
    EXPECT_TRUE(record_.empty());
  }

  void ConfirmsSettings() {
    Confirms({"+++", "ATID3332\r", "ATCHC\r", "ATMY1A\r", "ATCTF\r", "ATWR\r", "ATCN\r"});
  }
};

// With every box empty, the first one is refused until its number is right, then the next one.
TEST_F(frmRFModemSettingsConfirmTest, BoxesEmptyOrOutOfRange_AreRefusedOneByOne) {
  Load();
  Fill(L"", L"", L"", L"");
  const struct {
    TextBox& box;
    const wchar_t* title;
    const wchar_t* when_empty;
    const wchar_t* when_out_of_range;
    std::vector<const wchar_t*> refused;
    const wchar_t* valid;
  } rows[] = {
      {form_->txtPANID,
       L"Invalid PAN ID",
       L"Enter the RF PAN ID.",
       L"The RF PAN ID entered is invalid. Enter a value between 1 and 65535.",
       {L"0", L"65536", L"x", L"-5", L"0.9", L"65535.1", L"1e999"},
       L"1"},
      {form_->txtChannel,
       L"Invalid RF Channel",
       L"Enter the RF channel.",
       L"The RF channel entered is invalid. Enter a value between 12 and 24.",
       {L"11", L"25", L"x", L"-1", L"11.4", L"24.6", L"32767"},
       L"12"},
      {form_->txtRFModemAddress,
       L"Invalid Modem Address",
       L"Enter the RF modem address.",
       L"The RF modem address entered is invalid. Enter a value between 1 and 65535.",
       {L"0", L"65536", L"x", L"0.9", L"65535.1"},
       L"1"},
      {form_->txtTimeout,
       L"Invalid Timeout",
       L"Enter a Timeout interval.",
       L"The timeout interval entered is invalid. Enter a value between 2 and 65535.",
       {L"1", L"65536", L"x", L"1.9", L"65535.1"},
       L"2"},
  };
  for (const auto& row : rows) {
    ExpectRefused(row.box, row.title, row.when_empty);
    for (const wchar_t* text : row.refused) {
      row.box.Type(text);
      ExpectRefused(row.box, row.title, row.when_out_of_range);
    }
    row.box.Type(row.valid);
  }
}

TEST_F(frmRFModemSettingsConfirmTest, EndsOfTheRanges_AreAccepted) {
  const std::vector<std::vector<const wchar_t*>> rows = {{L"1", L"12", L"1", L"2"},
                                                         {L"65535", L"24", L"65535", L"65535"},
                                                         {L"1x", L"11.5", L"1.4", L" 2"},
                                                         {L"1", L"24.5", L"1", L"2"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row[1]);
    MakeForm();
    Fill(row[0], row[1], row[2], row[3]);
    OK();
    EXPECT_EQ(TakeBoxes(), Boxes{kQuestion});
    EXPECT_FALSE(form_->is_open());
  }
}

TEST_F(frmRFModemSettingsConfirmTest, ChannelTypedAndConfirmedByEnter_IsRefusedAndCorrectedWhenLeft) {
  Load();
  form_->txtChannel.Type(L"11");
  OK();
  EXPECT_TRUE(form_->is_open());
  EXPECT_EQ(form_->txtChannel.text(), L"11");
  form_->LostFocus(form_->txtChannel);
  EXPECT_EQ(form_->txtChannel.text(), L"12");
  OK();
  EXPECT_FALSE(form_->is_open());
}

TEST_F(frmRFModemSettingsConfirmTest, ChannelThatDoesNotFit_TheErrorIsShownAndTheDialogStays) {
  Load();
  form_->txtChannel.Type(L"40000");
  OK();
  EXPECT_EQ(TakeBoxes(), Boxes{ErrorBox(L"validate settings", L"6 - Overflow\r\n(KespCommObj)")});
  EXPECT_TRUE(form_->is_open());
  EXPECT_FALSE(form_->bCancel());
  EXPECT_TRUE(record_.empty());
}

TEST_F(frmRFModemSettingsConfirmTest, ValidEntries_TheQuestionIsAskedBeforeAnythingIsSent) {
  Load();
  environment_.user.on_box = [this] {
    EXPECT_TRUE(record_.empty());
    EXPECT_TRUE(form_->is_open());
  };
  OK();
  EXPECT_EQ(TakeBoxes(), Boxes{kQuestion});
}

TEST_F(frmRFModemSettingsConfirmTest, Answered_WritesTheFourValuesAndStoresThemOnYes) {
  for (const int answer : {kYesAnswer, kNo}) {
    Load();
    ConfirmsSettings();
    environment_.user.Answer(answer);
    int polls = 0;
    ports_.line.on_poll = [&] {
      ++polls;
      EXPECT_EQ(environment_.user.pointer(), MousePointer::kBusy);
    };
    OK();
    ports_.line.on_poll = nullptr;
    EXPECT_GT(polls, 0);
    EXPECT_EQ(environment_.user.pointer(), MousePointer::kDefault);
    Lines expected = {L"+++", L"ATID3332<0D>", L"ATCHC<0D>", L"ATMY1A<0D>", L"ATCTF<0D>"};
    if (answer == kYesAnswer) expected.push_back(L"ATWR<0D>");
    expected.push_back(L"ATCN<0D>");
    EXPECT_EQ(Outputs(), expected);
    EXPECT_EQ(TakeBoxes(), Boxes{kQuestion});
    EXPECT_FALSE(form_->is_open());
    EXPECT_FALSE(form_->bCancel());
    MakeForm();
  }
}

TEST_F(frmRFModemSettingsConfirmTest, ChangedEntries_GoIntoTheirOwnCommands) {
  Load();
  Fill(L"65535", L"24", L"40000.5", L"250");
  Confirms({"+++"});
  OK();
  EXPECT_EQ(Outputs(),
            (Lines{L"+++", L"ATIDFFFF<0D>", L"ATCH18<0D>", L"ATMY9C40<0D>", L"ATCT2<0D>", L"ATCN<0D>"}));
}

TEST_F(frmRFModemSettingsConfirmTest, SilentModem_TheDialogClosesAllTheSame) {
  Load();
  ports_.line.answers.clear();
  environment_.user.Answer(kYesAnswer);
  OK();
  EXPECT_EQ(Outputs(), Lines{L"+++"});
  EXPECT_FALSE(form_->is_open());
  EXPECT_EQ(TakeBoxes(), Boxes{kQuestion});
}

TEST_F(frmRFModemSettingsConfirmTest, PortFailsAtAnyCall_TheDialogStaysForAnotherAttempt) {
  Load();
  ConfirmsSettings();
  int failed = 0;
  for (int nth = 1;; ++nth) {
    SCOPED_TRACE(nth);
    environment_.user.Answer(kYesAnswer);
    ports_.line.FailCall(nth, kDeviceFailure);
    OK();
    if (ports_.line.faults.IsPending()) {
      EXPECT_EQ(TakeBoxes(), Boxes{kQuestion});
      break;
    }
    ++failed;
    EXPECT_EQ(TakeBoxes(),
              (Boxes{kQuestion, ErrorBox(L"gather settings",
                                         L"57 - Unable to write settings to RF modem. Make sure the modem is "
                                         L"connected to COM1\r\n(KespCommObj)")}));
    EXPECT_TRUE(form_->is_open());
    EXPECT_FALSE(form_->bCancel());
    EXPECT_EQ(Entries(), (Lines{L"13106", L"12", L"26", L"1500"}));
  }
  EXPECT_GT(failed, 20);
  EXPECT_FALSE(form_->is_open());
}

TEST_F(frmRFModemSettingsConfirmTest, AnswerOfAnEarlierAttempt_IsForgotten) {
  Load();
  ConfirmsSettings();
  environment_.user.Answer(kYesAnswer);
  ports_.line.FailCall(1, kDeviceFailure);
  OK();
  ASSERT_TRUE(form_->is_open());
  record_.clear();
  environment_.user.Answer(kNo);
  OK();
  EXPECT_EQ(Outputs().size(), 6U);
  EXPECT_FALSE(form_->is_open());
}

TEST_F(frmRFModemSettingsConfirmTest, NumberBecomesTooLargeDuringTheQuestion_TheErrorIsShown) {
  Load();
  environment_.user.on_box = [this] { form_->txtPANID.Type(L"1e999"); };
  OK();
  EXPECT_EQ(TakeBoxes(), (Boxes{kQuestion, ErrorBox(L"gather settings", L"6 - Overflow\r\n(KespCommObj)")}));
  EXPECT_TRUE(form_->is_open());
  EXPECT_TRUE(record_.empty());
}

}  // namespace
}  // namespace kesp
