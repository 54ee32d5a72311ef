// "kesp ports".
#include "console/command_fixture.h"

namespace kesp::console {
namespace {

class PortsCommandTest : public CommandFixture {};

TEST_F(PortsCommandTest, WithoutProbe_NoPortIsOpened) {
  machine_.ports = SomePorts();
  EXPECT_EQ(Run(PortsOptions{}), kExitDone);
  EXPECT_EQ(machine_.probed, std::vector<std::string>());
  EXPECT_NE(console_.output.find("COM10"), std::string::npos);
  EXPECT_LT(console_.output.find("COM2 "), console_.output.find("COM10"));
}

TEST_F(PortsCommandTest, Probe_OpensThosePortsThatAreThere) {
  machine_.ports = SomePorts();
  machine_.uses = {{"COM1", PortUse::kFree}, {"COM2", PortUse::kInUse}};
  EXPECT_EQ(Run(PortsOptions{.probe = true, .json = false}), kExitDone);
  EXPECT_EQ(machine_.probed, (std::vector<std::string>{"COM1", "COM2", "COM9", "COM10", "COM11", "COM12"}));
  EXPECT_NE(console_.output.find("COM1   free"), std::string::npos) << console_.output;
  EXPECT_NE(console_.output.find("COM2   in use"), std::string::npos);
}

TEST_F(PortsCommandTest, NoPorts_SaysSo) {
  EXPECT_EQ(Run(PortsOptions{}), kExitDone);
  EXPECT_EQ(console_.output, "");
  EXPECT_EQ(console_.error, "this machine has no COM ports\n");
  EXPECT_EQ(Run(PortsOptions{.probe = false, .json = true}), kExitDone);
  EXPECT_EQ(console_.output, "[]\n");
}

}  // namespace
}  // namespace kesp::console
