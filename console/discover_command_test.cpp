// "kesp discover": the table, progress, and how it ends early.
#include <gtest/gtest.h>

#include "console/command_fixture.h"

namespace kesp::console {
namespace {

class DiscoverCommandTest : public CommandFixture {
 protected:
  DiscoverCommandTest() {
    adapter_ = BroadcastAdapter{"Ethernet 2", "10.88.0.1"};
    library_.steps = {{"", "", 2, 0}, {"10.88.0.13", "*IDN?", 1, 2}, {"10.88.0.2", "*IDN?", 2, 2}};
    library_.found = {{"10.88.0.13", "7100", "SIM1"}, {"10.88.0.2", "GP488-long", ""}};
  }

  int Discover() { return Run(options_); }

  DiscoverOptions options_;
};

TEST_F(DiscoverCommandTest, Found_InTheOrderOfTheirAddresses) {
  EXPECT_EQ(Discover(), kExitDone);
  EXPECT_EQ(console_.output,
            "ADDRESS         MODEL       SERIAL NUMBER\n"
            "tcp:10.88.0.2   GP488-long\n"
            "tcp:10.88.0.13  7100        SIM1\n");
  EXPECT_EQ(console_.error, "the broadcast leaves by Ethernet 2 (10.88.0.1)\n");
  EXPECT_EQ(console_.progress,
            (std::vector<std::string>{"waiting for answers \u2026 2", "10.88.0.13, *IDN? \u2026 1 of 2",
                                      "10.88.0.2, *IDN? \u2026 2 of 2", ""}));
}

TEST_F(DiscoverCommandTest, Json_HasTheAdapterToo) {
  options_.json = true;
  library_.found.pop_back();
  EXPECT_EQ(Discover(), kExitDone);
  EXPECT_EQ(console_.output, R"({
  "adapter": {
    "name": "Ethernet 2",
    "address": "10.88.0.1"
  },
  "instruments": [
    {
      "address": "tcp:10.88.0.13",
      "model": "7100",
      "serial_number": "SIM1"
    }
  ]
}
)");
}

TEST_F(DiscoverCommandTest, NobodyAnswers) {
  adapter_.reset();
  library_.found.clear();
  EXPECT_EQ(Discover(), kExitFailed);
  EXPECT_EQ(console_.output, "");
  EXPECT_EQ(console_.error,
            "the system does not tell by which network adapter the broadcast leaves\n"
            "kesp: nobody answered the broadcast; instruments behind another network adapter or a router do "
            "not hear it (docs\\no-answer.md#discovery-finds-nobody)\n");
}

TEST_F(DiscoverCommandTest, NobodyAnswers_JsonIsAnEmptyList) {
  adapter_.reset();
  options_.json = true;
  library_.found.clear();
  EXPECT_EQ(Discover(), kExitFailed);
  EXPECT_EQ(console_.output, "{\n  \"instruments\": []\n}\n");
}

TEST_F(DiscoverCommandTest, CtrlC_ShowsWhatIsFoundByThen) {
  console_.Interrupt();
  EXPECT_EQ(Discover(), kExitInterrupted);
  EXPECT_TRUE(library_.aborted);
  EXPECT_NE(console_.output.find("tcp:10.88.0.13"), std::string::npos);
}

TEST_F(DiscoverCommandTest, TheTimeIsUp_NobodyFurtherIsAsked) {
  options_.timeout_ms = 0;
  EXPECT_EQ(Discover(), kExitDone);
  EXPECT_TRUE(library_.aborted);
}

}  // namespace
}  // namespace kesp::console
