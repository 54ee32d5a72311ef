// The library's own help, beside a copy of its DLL, as long as no client has named a help file.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "dialogs/dialog_ids.h"
#include "tests/clients/dialog_editing.h"
#include "tests/clients/help_viewer.h"
#include "tests/clients/library_module.h"
#include "tests/win/html_help_fake.h"

namespace kesp::clients {
namespace {

// The cases stand in the order in which they have to run, which GoogleTest keeps and their letters show: the
// file that a client names stays until the process ends.
class OwnHelpTest : public EditingFixture<_CKespTCP> {
 protected:
  OwnHelpTest() : EditingFixture(L"TCP/IP Communication Settings") {
    static const LibraryModule copy(CopyOfTheLibrary());
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(copy.GetClassObject(__uuidof(CKespTCP), IID_IClassFactory,
                                  reinterpret_cast<void**>(factory.GetAddressOf())),
              S_OK);
    EXPECT_EQ(factory->CreateInstance(nullptr, __uuidof(_CKespTCP),
                                      reinterpret_cast<void**>(transport_.GetAddressOf())),
              S_OK);
  }

  // A DLL cannot be removed while it is loaded, so there is one folder for all runs of this width.
  static std::filesystem::path Folder() {
    return std::filesystem::temp_directory_path() / ("kesp own help " + std::to_string(sizeof(void*)));
  }
  static std::wstring CopyOfTheLibrary() {
    std::filesystem::remove_all(Folder());
    std::filesystem::create_directories(Folder());
    std::filesystem::copy_file(RegisteredPath(), Folder() / L"KespCommObj.dll");
    return (Folder() / L"KespCommObj.dll").wstring();
  }
  static std::filesystem::path OwnHelp() { return Folder() / L"KespCommObj.chm"; }
  // A file that is no help file.
  static void MakeOwnHelp() { std::ofstream(OwnHelp()) << "found"; }

  // Asks for help in the dialog and leaves it.
  HWND AskForHelp(const std::wstring& help_file) const {
    HWND dialog = nullptr;
    const EditArguments given{.help_file = help_file, .help_context = 70001};
    EXPECT_FALSE(Edit(EditCall::kTransportEarly, given, [&dialog](DialogUser& user) {
      dialog = user.window();
      user.Click(ID_HELP);
      user.Click(ID_CANCEL);
    }));
    return dialog;
  }
};

using Calls = std::vector<HtmlHelpFake::Call>;

TEST_F(OwnHelpTest, A_FileIsMissing_IsTheOlderViewerWithoutAFile) {
  const HtmlHelpFake html_help;
  const HelpViewer older;
  AskForHelp(L"");
  EXPECT_EQ(html_help.calls(), Calls());
  EXPECT_EQ(older.requests(), 1);
  EXPECT_TRUE(older.Mentions(70001));
}

TEST_F(OwnHelpTest, B_FileIsThere_IsTheDialogsPageWhateverTheContext) {
  MakeOwnHelp();
  const HtmlHelpFake html_help;
  const HelpViewer older;
  HWND dialog = AskForHelp(L"");
  EXPECT_EQ(html_help.calls(), (Calls{{dialog, OwnHelp().wstring(), 0x000F, 9003}}));
  EXPECT_EQ(older.requests(), 0);
}

// Wine's viewer reads the file and finds the page. It shows nothing of it, because there is no browser.
TEST_F(OwnHelpTest, C_DeliveredFile_OpensInAWindowThatGoesWithTheDialog) {
  const std::filesystem::path delivered =
      std::filesystem::path(RegisteredPath()).replace_filename(L"KespCommObj.chm");
  ASSERT_TRUE(std::filesystem::exists(delivered)) << "tools/make-help makes it";
  std::filesystem::copy_file(delivered, OwnHelp(), std::filesystem::copy_options::overwrite_existing);
  const auto window = [] { return FindWindowW(nullptr, L"Kesp Communication Object Library"); };
  EXPECT_FALSE(Edit(EditCall::kTransportEarly, {}, [&](DialogUser& user) {
    EXPECT_EQ(window(), nullptr);
    user.Click(ID_HELP);
    EXPECT_NE(window(), nullptr);
    EXPECT_EQ(GetWindow(window(), GW_OWNER), user.window());
    user.Click(ID_CANCEL);
  }));
  EXPECT_EQ(window(), nullptr);
}

TEST_F(OwnHelpTest, C_NoHelpFile_DialogGoesOn) {
  MakeOwnHelp();
  const HelpViewer older;
  AskForHelp(L"");
  EXPECT_EQ(older.requests(), 0);
}

TEST_F(OwnHelpTest, D_ClientNamesAFile_IsThatOneFromThenOn) {
  MakeOwnHelp();
  const HtmlHelpFake html_help;
  HWND first = AskForHelp(L"C:\\help\\lab.chm");
  HWND second = AskForHelp(L"");
  EXPECT_EQ(html_help.calls(), (Calls{{first, L"C:\\help\\lab.chm", 0x000F, 70001},
                                      {second, L"C:\\help\\lab.chm", 0x000F, 70001}}));
}

}  // namespace
}  // namespace kesp::clients
