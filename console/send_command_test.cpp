// "kesp send" with a library and a console of the tests.
#include <gmock/gmock.h>

#include "console/command_fixture.h"

namespace kesp::console {
namespace {

using testing::ElementsAre;

class SendCommand : public CommandFixture {
 protected:
  SendCommand() {
    options_.talk.address = "com3@9600";
    options_.commands = {"*RST"};
  }

  SendOptions options_;
};

TEST_F(SendCommand, Command_IsSentAndNothingIsWritten) {
  EXPECT_EQ(Run(options_), kExitDone);
  EXPECT_THAT(library_.calls, ElementsAre("At com3@9600", "Update *RST"));
  EXPECT_FALSE(library_.tunings.at(0).keep_open);
  EXPECT_EQ(console_.output + console_.error, "");
}

TEST_F(SendCommand, FirstFailure_EndsIt) {
  options_.commands = {"A", "B", "C"};
  library_.Fail("B", LibraryError("cfrWriteFailed", "CKespCOMPort3 - WriteLine()", "Not sent"));
  EXPECT_EQ(Run(options_), kExitFailed);
  EXPECT_THAT(library_.calls, ElementsAre("At com3@9600", "Update A", "Update B"));
  EXPECT_TRUE(library_.tunings.at(0).keep_open);
  EXPECT_EQ(console_.error, "kesp: Not sent (cfrWriteFailed, CKespCOMPort3 - WriteLine())\n");
}

TEST_F(SendCommand, FailureOfAKnownKind_ComesWithAHint) {
  library_.Fail("*RST", LibraryError("cfrTimeout", "", "Port already open"));
  EXPECT_EQ(Run(options_), kExitFailed);
  EXPECT_EQ(console_.error,
            "kesp: Port already open (cfrTimeout)\n  Another program holds the port: close it there"
            " (docs\\no-answer.md#access-denied).\n");
}

TEST_F(SendCommand, SearchOnTheGpib_IsRefused) {
  options_.talk.address = "gpib:";
  EXPECT_EQ(Run(options_), kExitUsage);
  EXPECT_TRUE(library_.calls.empty());
}

}  // namespace
}  // namespace kesp::console
