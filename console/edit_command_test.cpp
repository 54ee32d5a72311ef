// "kesp edit": confirmed, cancelled, and where there is no dialog.
#include <gtest/gtest.h>

#include "console/command_fixture.h"

namespace kesp::console {
namespace {

class EditCommandTest : public CommandFixture {
 protected:
  int Edit(const std::string& address) {
    EditOptions options;
    options.talk.address = address;
    return Run(options);
  }
};

TEST_F(EditCommandTest, Confirmed_PrintsTheSettings) {
  library_.found_at = TcpAddress{.host = "10.0.0.9", .port = 5025, .eos = {}, .any = false};
  EXPECT_EQ(Edit("tcp:10.0.0.7"), kExitDone);
  EXPECT_EQ(console_.output, "tcp:10.0.0.9:5025\n");
  EXPECT_EQ(console_.on_interrupt, Console::OnInterrupt::kEnd);
}

TEST_F(EditCommandTest, Cancelled_PrintsNothing) {
  library_.confirmed = false;
  EXPECT_EQ(Edit("com3"), kExitFailed);
  EXPECT_EQ(console_.output, "");
  EXPECT_EQ(console_.error, "kesp: the dialog was cancelled\n");
}

TEST_F(EditCommandTest, Gpib_HasNone) {
  EXPECT_EQ(Edit("gpib:5"), kExitUsage);
  EXPECT_EQ(
      console_.error,
      "kesp: the GPIB has no settings dialog; its settings stand in the address, as in gpib:5,eos=13\n");
  EXPECT_TRUE(library_.calls.empty());
}

}  // namespace
}  // namespace kesp::console
