// Unit tests of the network transport's Edit: what happens around its settings dialog.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "network/kesp_tcp_fixture.h"

namespace kesp {
namespace {

constexpr wchar_t kHelpFile[] = L"C:\\help\\lab.hlp";
constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

class CKespTCPEditingTest : public KespTCPFixture {
 protected:
  bool Edit(std::int32_t flags = 0, const std::wstring& help_file = {}, std::int32_t help_context = 0) {
    return tcp_->Edit(static_cast<EEditCommFlags>(flags), help_file, help_context);
  }

  // The only box tells of this error.
  void ExpectBox(const std::wstring& error) const {
    ASSERT_EQ(fakes_.user.boxes().size(), 1u);
    EXPECT_EQ(fakes_.user.boxes()[0].title, L"Kesp Communications Error");
    EXPECT_EQ(fakes_.user.boxes()[0].style, 16u);
    EXPECT_EQ(fakes_.user.boxes()[0].text,
              L"An error occurred while attempting to edit TCP/IP settings.\r\nError: " + error);
  }
};

TEST_F(CKespTCPEditingTest, Confirmed_TrueAndCancelled_False) {
  for (const bool answer : {true, false}) {
    dialog_.answer = answer;
    EXPECT_EQ(Edit(), answer);
    EXPECT_EQ(Edit(8, kHelpFile, 3), answer);
  }
  EXPECT_EQ(dialog_.shown.size(), 4u);
  EXPECT_TRUE(fakes_.user.boxes().empty());
}

// Every combination of the four flags, and bits that have no name.
TEST_F(CKespTCPEditingTest, Flags_OnlyItsOwnBitShowsTheExtendedPage) {
  std::vector<std::int32_t> all{16, 32, 0x40000000, -1, kLowest, kHighest};
  for (std::int32_t flags = 0; flags < 16; ++flags) all.push_back(flags);
  for (const std::int32_t flags : all) {
    dialog_.shown.clear();
    EXPECT_TRUE(Edit(flags)) << flags;
    ASSERT_EQ(dialog_.shown.size(), 1u);
    EXPECT_EQ(dialog_.shown[0].show_extended_page, (flags & 8) != 0) << flags;
  }
}

TEST_F(CKespTCPEditingTest, HelpContext_IsHandedOn) {
  for (const std::int32_t number : {0, 1, 4711, -1, kLowest, kHighest}) {
    EXPECT_TRUE(Edit(0, L"", number));
    EXPECT_EQ(dialog_.shown.back().help_context, number);
  }
}

TEST_F(CKespTCPEditingTest, ArgumentsLeftOut_ShowTheFirstPageOnlyAndNoTopic) {
  fakes_.user.SetHelpFile(kHelpFile);
  EXPECT_TRUE(tcp_->Edit());
  ASSERT_EQ(dialog_.shown.size(), 1u);
  EXPECT_FALSE(dialog_.shown[0].show_extended_page);
  EXPECT_EQ(dialog_.shown[0].help_context, 0);
  EXPECT_EQ(fakes_.user.help_file(), kHelpFile);
}

TEST_F(CKespTCPEditingTest, HelpFile_IsSetBeforeTheDialogIsShown) {
  fakes_.user.SetHelpFile(L"C:\\earlier.hlp");
  std::wstring seen;
  dialog_.on_show = [&](CKespTCP&) { seen = fakes_.user.help_file(); };
  EXPECT_TRUE(Edit(0, kHelpFile));
  EXPECT_EQ(seen, kHelpFile);
  EXPECT_TRUE(Edit(8, L"", 12));
  EXPECT_EQ(fakes_.user.help_file(), kHelpFile) << "an empty name leaves the earlier one";
}

TEST_F(CKespTCPEditingTest, Dialog_WorksOnThisObject) {
  Connect();
  dialog_.answer = false;
  dialog_.on_show = [this](CKespTCP& tcp) {
    EXPECT_EQ(&tcp, tcp_.get());
    EXPECT_EQ(tcp.IPAddress(), L"10.0.0.7");
    tcp.SetIPAddress(L"10.0.0.8");
    tcp.SetIPType(EIPType::ipDynamic);
  };
  EXPECT_FALSE(Edit());
  EXPECT_EQ(tcp_->IPAddress(), L"10.0.0.8");
  EXPECT_EQ(tcp_->IPType(), EIPType::ipDynamic);
  EXPECT_EQ(tcp_->Port(), 5025);
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckConnected);
  EXPECT_EQ(socket_->calls, Calls{});
}

TEST_F(CKespTCPEditingTest, DialogFails_IsShownAndFalse) {
  dialog_.on_show = [](CKespTCP&) { throw Failure(7, L"dialog", L"Out of memory"); };
  EXPECT_FALSE(Edit(0, kHelpFile));
  ExpectBox(L"7 - Out of memory\r\n(dialog)");
  EXPECT_EQ(fakes_.user.help_file(), kHelpFile);
}

TEST_F(CKespTCPEditingTest, NoScreen_FalseBehindTheOtherSteps) {
  CKespTCP tcp(
      fakes_.environment,
      [](SocketListener& listener) { return std::make_unique<SocketControlFake>(listener); }, MakeInstrument);
  EXPECT_FALSE(tcp.Edit(EEditCommFlags::ecfShowTCPExtendedTab, kHelpFile, 3));
  EXPECT_EQ(fakes_.user.help_file(), kHelpFile);
  EXPECT_TRUE(fakes_.user.boxes().empty());
}

}  // namespace
}  // namespace kesp
