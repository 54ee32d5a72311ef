// Tests of a form's life: what it is when it is made, loading, confirming, cancelling, help, and failures.
#include "dialogs/form.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "dialogs/form_fixture.h"
#include "support/failure.h"

namespace kesp {
namespace {

using FormTest = FormFixture;

const Boxes kOverflowBox = {ErrorBox(L"test", L"6 - Overflow\r\n(KespCommObj)")};

TEST_F(FormTest, New_IsOpenOnItsFirstPage) {
  EXPECT_TRUE(form_.is_open());
  EXPECT_FALSE(form_.bCancel());
  EXPECT_EQ(form_.focused(), nullptr);
  EXPECT_EQ(form_.caption(), L"Caption");
  EXPECT_EQ(form_.help_context(), 77);
  EXPECT_EQ(form_.tabSettings.selection(), 0U);
  ASSERT_EQ(form_.framSettings.size(), 2U);
  EXPECT_TRUE(form_.framSettings[0].visible());
  EXPECT_FALSE(form_.framSettings[1].visible());
  EXPECT_TRUE(view_.lines.empty());
}

TEST_F(FormTest, FirstPaint_LoadsOnceOnlyAndAFailureEndsTheDialogAsCancelled) {
  for (const bool fails : {false, true}) {
    FormForTest form(user_, {});
    int loads = 0;
    form.on_load = [&] {
      ++loads;
      if (fails) throw Overflow();
    };
    form.FirstPaint();
    form.FirstPaint();
    EXPECT_EQ(loads, 1);
    EXPECT_EQ(form.is_open(), !fails);
    EXPECT_EQ(form.bCancel(), fails);
  }
  EXPECT_EQ(user_.TakeBoxes(), kOverflowBox);
}

TEST_F(FormTest, OK_ValidatesThenWritesThenCloses) {
  form_.on_validate = Step(L"validate");
  form_.on_write = [this] {
    view_.lines.push_back(L"write");
    EXPECT_TRUE(form_.is_open());
    return true;
  };
  Click(Form::kOK);
  EXPECT_EQ(view_.lines, (Lines{L"validate", L"write"}));
  EXPECT_FALSE(form_.is_open());
  EXPECT_FALSE(form_.bCancel());
}

TEST_F(FormTest, OKRefusedOrNotWritten_StaysForAnotherAttempt) {
  form_.on_validate = Step(L"validate", false);
  form_.on_write = Step(L"write", false);
  Click(Form::kOK);
  EXPECT_EQ(view_.lines, Lines{L"validate"});
  EXPECT_TRUE(form_.is_open());
  form_.on_validate = Step(L"validate");
  Click(Form::kOK);
  EXPECT_TRUE(form_.is_open());
  EXPECT_FALSE(form_.bCancel());
  form_.on_write = Step(L"write");
  Click(Form::kOK);
  EXPECT_FALSE(form_.is_open());
}

TEST_F(FormTest, OKFails_IsShownAndStays) {
  form_.on_validate = []() -> bool { throw Overflow(); };
  form_.on_write = Step(L"write");
  Click(Form::kOK);
  EXPECT_EQ(view_.lines, Lines{L"box"});
  EXPECT_EQ(user_.TakeBoxes(), kOverflowBox);
  EXPECT_TRUE(form_.is_open());
}

TEST_F(FormTest, CancelOrClose_EndsWithoutValidatingOrWriting) {
  const std::function<void(Form&)> ways[] = {[](Form& form) { form.cmdOKCancelHelp[Form::kCancel].Click(); },
                                             [](Form& form) { form.Close(); }};
  for (const auto& end : ways) {
    FormForTest form(user_, {});
    form.on_validate = Step(L"validate");
    form.on_write = Step(L"write");
    end(form);
    EXPECT_FALSE(form.is_open());
    EXPECT_TRUE(form.bCancel());
  }
  EXPECT_EQ(view_.lines, Lines{});
}

TEST_F(FormTest, Help_OpensTheFormsTopicAndStays) {
  user_.SetHelpFile(L"C:\\kesp.hlp");
  Click(Form::kHelp);
  ASSERT_EQ(user_.help_calls().size(), 1U);
  EXPECT_EQ(user_.help_calls()[0], (UserSurfaceFake::HelpCall{L"C:\\kesp.hlp", 1, 77, MousePointer::kBusy}));
  EXPECT_TRUE(form_.is_open());
  EXPECT_FALSE(form_.bCancel());
}

TEST_F(FormTest, HelpWithoutAClientsFile_OpensTheDialogsOwnTopic) {
  user_.own_help_file = L"C:\\own.chm";
  Click(Form::kHelp);
  ASSERT_EQ(user_.help_calls().size(), 1U);
  EXPECT_EQ(user_.help_calls()[0], (UserSurfaceFake::HelpCall{L"C:\\own.chm", 1, 9003, MousePointer::kBusy}));
}

TEST_F(FormTest, HelpFails_NobodyIsTold) {
  user_.help_failure = true;
  Click(Form::kHelp);
  EXPECT_TRUE(user_.boxes().empty());
  EXPECT_TRUE(form_.is_open());
}

TEST_F(FormTest, CloseAfterOK_ChangesNothing) {
  Click(Form::kOK);
  form_.Close();
  EXPECT_FALSE(form_.bCancel());
}

TEST_F(FormTest, UseFails_IsShownWhateverWasThrown) {
  form_.Use([] { throw Failure(-5, L"", L"No source"); });
  form_.Use([] { throw std::runtime_error("odd"); });
  EXPECT_EQ(user_.TakeBoxes(), (Boxes{ErrorBox(L"test", L"-5 - No source"),
                                      ErrorBox(L"test", L"51 - Internal error (odd)\r\n(KespCommObj)")}));
  EXPECT_TRUE(form_.is_open());
}

}  // namespace
}  // namespace kesp
