// Tests of what the radio modem's form accepts, asks, and writes to the modem.
#include <gtest/gtest.h>

#include <functional>

#include "dialogs/frm_rf_modem_settings_fixture.h"

namespace kesp {
namespace {

constexpr std::int32_t kDeviceFailure = 8021;
constexpr int kNo = 7;  // IDNO

constexpr wchar_t kPANIDRange[] = L"The RF PAN ID entered is invalid. Enter a value between 1 and 65535.";
constexpr wchar_t kChannelRange[] = L"The RF channel entered is invalid. Enter a value between 12 and 24.";
constexpr wchar_t kAddressRange[] =
    L"The RF modem address entered is invalid. Enter a value between 1 and 65535.";
constexpr wchar_t kTimeoutRange[] =
    L"The timeout interval entered is invalid. Enter a value between 2 and 65535.";
constexpr wchar_t kQuestion[] = L"Do you want to write these settings to NVRAM?";

class frmRFModemSettingsConfirmTest : public frmRFModemSettingsTest {
 protected:
  void Fill(const wchar_t* pan_id, const wchar_t* channel, const wchar_t* address, const wchar_t* timeout) {
    form_->txtPANID.Type(pan_id);
    form_->txtChannel.Type(channel);
    form_->txtRFModemAddress.Type(address);
    form_->txtTimeout.Type(timeout);
  }

  // OK is refused with this message alone, and the box has the focus then.
  void ExpectRefused(const TextBox& box, const wchar_t* title, const wchar_t* message) {
    const std::size_t before = Shown().size();
    view_.lines.clear();
    OK();
    ASSERT_EQ(Shown().size(), before + 1) << testing::PrintToString(box.text());
    EXPECT_EQ(Shown().back().text, message);
    EXPECT_EQ(Shown().back().title, title);
    EXPECT_EQ(Shown().back().style, 64U);
    EXPECT_EQ(form_->focused(), &box);
    EXPECT_EQ(view_.lines, (ViewLines{"100 selection 0", "110 shown", "focus " + std::to_string(box.id())}));
    EXPECT_TRUE(form_->is_open());
    EXPECT_TRUE(record_.empty());
  }

  void ExpectErrorBox(const MessageBoxRequest& box, const wchar_t* action) {
    EXPECT_EQ(box.text, L"An error occurred while " + std::wstring(action) +
                            L".\r\nError: 6 - Overflow\r\n(KespCommObj)");
    EXPECT_EQ(box.title, L"Kesp Communications Error");
    EXPECT_TRUE(form_->is_open());
    EXPECT_FALSE(form_->bCancel());
  }

  void ConfirmsSettings() {
    Confirms({"+++", "ATID3332\r", "ATCHC\r", "ATMY1A\r", "ATCTF\r", "ATWR\r", "ATCN\r"});
  }
};

TEST_F(frmRFModemSettingsConfirmTest, EmptyBoxes_AreRefusedOneByOne) {
  Load();
  Fill(L"", L"", L"", L"");
  ExpectRefused(form_->txtPANID, L"Invalid PAN ID", L"Enter the RF PAN ID.");
  form_->txtPANID.Type(L"1");
  ExpectRefused(form_->txtChannel, L"Invalid RF Channel", L"Enter the RF channel.");
  form_->txtChannel.Type(L"12");
  ExpectRefused(form_->txtRFModemAddress, L"Invalid Modem Address", L"Enter the RF modem address.");
  form_->txtRFModemAddress.Type(L"1");
  ExpectRefused(form_->txtTimeout, L"Invalid Timeout", L"Enter a Timeout interval.");
}

TEST_F(frmRFModemSettingsConfirmTest, NumbersOutOfRange_AreRefusedOneByOne) {
  Load();
  Fill(L"0", L"11", L"0", L"1");
  ExpectRefused(form_->txtPANID, L"Invalid PAN ID", kPANIDRange);
  form_->txtPANID.Type(L"1");
  ExpectRefused(form_->txtChannel, L"Invalid RF Channel", kChannelRange);
  form_->txtChannel.Type(L"12");
  ExpectRefused(form_->txtRFModemAddress, L"Invalid Modem Address", kAddressRange);
  form_->txtRFModemAddress.Type(L"1");
  ExpectRefused(form_->txtTimeout, L"Invalid Timeout", kTimeoutRange);
}

TEST_F(frmRFModemSettingsConfirmTest, EachRange_IsRefusedBeyondEitherEnd) {
  Load();
  const struct {
    TextBox& box;
    std::vector<const wchar_t*> refused;
    const wchar_t* title;
    const wchar_t* message;
  } rows[] = {
      {form_->txtPANID,
       {L"0", L"65536", L"x", L"-5", L"0.9", L"65535.1", L"1e999"},
       L"Invalid PAN ID",
       kPANIDRange},
      {form_->txtChannel,
       {L"11", L"25", L"x", L"-1", L"11.4", L"24.6", L"32767"},
       L"Invalid RF Channel",
       kChannelRange},
      {form_->txtRFModemAddress,
       {L"0", L"65536", L"x", L"0.9", L"65535.1"},
       L"Invalid Modem Address",
       kAddressRange},
      {form_->txtTimeout, {L"1", L"65536", L"x", L"1.9", L"65535.1"}, L"Invalid Timeout", kTimeoutRange},
  };
  for (const auto& row : rows) {
    const std::wstring valid = row.box.text();
    for (const wchar_t* text : row.refused) {
      row.box.Type(text);
      ExpectRefused(row.box, row.title, row.message);
    }
    row.box.Type(valid);
  }
}

TEST_F(frmRFModemSettingsConfirmTest, EndsOfTheRanges_AreAccepted) {
  const std::vector<std::vector<const wchar_t*>> rows = {{L"1", L"12", L"1", L"2"},
                                                         {L"65535", L"24", L"65535", L"65535"},
                                                         {L"1x", L"11.5", L"1.4", L" 2"},
                                                         {L"1", L"24.5", L"1", L"2"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row[1]);
    form_ = std::make_unique<frmRFModemSettings>(environment_.user, port_, 0);
    Fill(row[0], row[1], row[2], row[3]);
    OK();
    EXPECT_EQ(Shown().back().text, kQuestion);
    EXPECT_FALSE(form_->is_open());
  }
}

TEST_F(frmRFModemSettingsConfirmTest, ChannelTypedAndConfirmedByEnter_IsRefusedAndCorrectedWhenLeft) {
  Load();
  form_->txtChannel.Type(L"11");
  ExpectRefused(form_->txtChannel, L"Invalid RF Channel", kChannelRange);
  form_->LostFocus(form_->txtChannel);
  EXPECT_EQ(form_->txtChannel.text(), L"12");
  OK();
  EXPECT_FALSE(form_->is_open());
}

TEST_F(frmRFModemSettingsConfirmTest, ChannelThatDoesNotFit_TheErrorIsShownAndTheDialogStays) {
  Load();
  form_->txtChannel.Type(L"40000");
  OK();
  ASSERT_EQ(Shown().size(), 1U);
  ExpectErrorBox(Shown()[0], L"attempting to validate settings");
  EXPECT_TRUE(record_.empty());
}

TEST_F(frmRFModemSettingsConfirmTest, ValidEntries_TheQuestionIsAskedBeforeAnythingIsSent) {
  Load();
  environment_.user.on_box = [this] {
    EXPECT_TRUE(record_.empty());
    EXPECT_TRUE(form_->is_open());
  };
  OK();
  ASSERT_EQ(Shown().size(), 1U);
  EXPECT_EQ(Shown()[0].text, kQuestion);
  EXPECT_EQ(Shown()[0].title, L"RF Modem Properties");
  EXPECT_EQ(Shown()[0].style, 4U);
}

TEST_F(frmRFModemSettingsConfirmTest, Yes_WritesTheFourValuesAndStoresThem) {
  Load();
  ConfirmsSettings();
  environment_.user.Answer(kYesAnswer);
  OK();
  EXPECT_EQ(Outputs(), (Lines{L"+++", L"ATID3332<0D>", L"ATCHC<0D>", L"ATMY1A<0D>", L"ATCTF<0D>", L"ATWR<0D>",
                              L"ATCN<0D>"}));
  EXPECT_FALSE(form_->is_open());
  EXPECT_FALSE(form_->bCancel());
}

TEST_F(frmRFModemSettingsConfirmTest, No_WritesTheFourValuesWithoutStoringThem) {
  Load();
  ConfirmsSettings();
  environment_.user.Answer(kNo);
  OK();
  EXPECT_EQ(Outputs(),
            (Lines{L"+++", L"ATID3332<0D>", L"ATCHC<0D>", L"ATMY1A<0D>", L"ATCTF<0D>", L"ATCN<0D>"}));
  EXPECT_FALSE(form_->is_open());
}

TEST_F(frmRFModemSettingsConfirmTest, ChangedEntries_GoIntoTheirOwnCommands) {
  Load();
  Fill(L"65535", L"24", L"40000.5", L"250");
  Confirms({"+++"});
  OK();
  EXPECT_EQ(Outputs(),
            (Lines{L"+++", L"ATIDFFFF<0D>", L"ATCH18<0D>", L"ATMY9C40<0D>", L"ATCT2<0D>", L"ATCN<0D>"}));
}

TEST_F(frmRFModemSettingsConfirmTest, Writing_ThePointerIsBusyMeanwhile) {
  Load();
  ConfirmsSettings();
  int polls = 0;
  ports_.line.on_poll = [&] {
    ++polls;
    EXPECT_EQ(environment_.user.pointer(), MousePointer::kBusy);
  };
  OK();
  EXPECT_GT(polls, 0);
  EXPECT_EQ(environment_.user.pointer(), MousePointer::kDefault);
}

TEST_F(frmRFModemSettingsConfirmTest, SilentModem_TheDialogClosesAllTheSame) {
  Load();
  ports_.line.answers.clear();
  environment_.user.Answer(kYesAnswer);
  OK();
  EXPECT_EQ(Outputs(), Lines{L"+++"});
  EXPECT_FALSE(form_->is_open());
  EXPECT_EQ(Shown().size(), 1U);
}

TEST_F(frmRFModemSettingsConfirmTest, PortFailsAtAnyCall_TheDialogStaysForAnotherAttempt) {
  Load();
  ConfirmsSettings();
  int failed = 0;
  for (int nth = 1;; ++nth) {
    SCOPED_TRACE(nth);
    environment_.user.Answer(kYesAnswer);
    ports_.line.FailCall(nth, kDeviceFailure);
    const std::size_t boxes = Shown().size();
    OK();
    ASSERT_GT(Shown().size(), boxes);
    EXPECT_EQ(Shown()[boxes].text, kQuestion);
    if (ports_.line.calls < ports_.line.fail_at) {
      EXPECT_EQ(Shown().size(), boxes + 1);
      break;
    }
    ++failed;
    ASSERT_EQ(Shown().size(), boxes + 2);
    EXPECT_EQ(
        Shown().back().text,
        L"An error occurred while attempting to gather settings.\r\n"
        L"Error: 57 - Unable to write settings to RF modem. Make sure the modem is connected to COM1\r\n"
        L"(KespCommObj)");
    EXPECT_TRUE(form_->is_open());
    EXPECT_FALSE(form_->bCancel());
    EXPECT_EQ(Boxes(), (Texts{L"13106", L"12", L"26", L"1500"}));
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
  ASSERT_EQ(Shown().size(), 2U);
  ExpectErrorBox(Shown()[1], L"attempting to gather settings");
  EXPECT_TRUE(record_.empty());
}

TEST_F(frmRFModemSettingsConfirmTest, CancelOrClose_WritesNothing) {
  const std::function<void()> ends[] = {[this] { form_->cmdOKCancelHelp[Form::kCancel].Click(); },
                                        [this] { form_->Close(); }};
  for (const auto& end : ends) {
    form_ = std::make_unique<frmRFModemSettings>(environment_.user, port_, 0);
    form_->SetView(&view_);
    Load();
    form_->txtChannel.Type(L"24");
    end();
    EXPECT_TRUE(record_.empty());
    EXPECT_TRUE(Shown().empty());
    EXPECT_TRUE(form_->bCancel());
    EXPECT_FALSE(form_->is_open());
  }
}

TEST_F(frmRFModemSettingsConfirmTest, Help_OpensTheTopicThatWasHandedIn) {
  Load();
  form_->cmdOKCancelHelp[Form::kHelp].Click();
  ASSERT_EQ(environment_.user.help_calls().size(), 1U);
  EXPECT_EQ(environment_.user.help_calls()[0].data, 4711U);
  EXPECT_TRUE(form_->is_open());
}

}  // namespace
}  // namespace kesp
