// The command line.
#include "simulator/options.h"

#include <gtest/gtest.h>

namespace kesp::simulator {
namespace {

TEST(ParseOptions, NoArguments_GivesTheDefaults) {
  const ParsedOptions parsed = ParseOptions({});
  ASSERT_TRUE(parsed.options);
  EXPECT_EQ(parsed.options->port, 0);
  EXPECT_EQ(parsed.options->bind, "127.0.0.1");
  EXPECT_EQ(parsed.options->file, "");
  EXPECT_EQ(parsed.options->log, "");
  EXPECT_FALSE(parsed.options->quiet);
  EXPECT_FALSE(parsed.options->once);
  EXPECT_EQ(parsed.output + parsed.error, "");
}

TEST(ParseOptions, AllArguments_AreTaken) {
  const ParsedOptions parsed =
      ParseOptions({"--port", "10001", "--bind", "::1", "p.json", "--log=l.txt", "--quiet", "--once"});
  ASSERT_TRUE(parsed.options) << parsed.error;
  EXPECT_EQ(parsed.options->port, 10001);
  EXPECT_EQ(parsed.options->bind, "::1");
  EXPECT_EQ(parsed.options->file, "p.json");
  EXPECT_EQ(parsed.options->log, "l.txt");
  EXPECT_TRUE(parsed.options->quiet);
  EXPECT_TRUE(parsed.options->once);
}

TEST(ParseOptions, Serial_IsTakenInPlaceOfAPort) {
  const ParsedOptions parsed = ParseOptions({"--serial", "d/com33", "--quiet"});
  ASSERT_TRUE(parsed.options) << parsed.error;
  EXPECT_EQ(parsed.options->serial, "d/com33");
}

TEST(ParseOptions, Discovery_IsOffAndHasItsDefaults) {
  const ParsedOptions none = ParseOptions({});
  EXPECT_FALSE(none.options->discovery);
  const ParsedOptions parsed = ParseOptions({"--discovery"});
  ASSERT_TRUE(parsed.options) << parsed.error;
  EXPECT_TRUE(parsed.options->discovery);
  EXPECT_EQ(parsed.options->discovery_port, 30718);
  EXPECT_FALSE(parsed.options->discovery_from);
  EXPECT_EQ(parsed.options->discovery_rate, 0U);
}

TEST(ParseOptions, DiscoveryArguments_AreTaken) {
  const ParsedOptions parsed =
      ParseOptions({"--discovery", "--discovery-port", "0", "--discovery-from", "10.0.0.1-10.0.0.9",
                    "--discovery-rate", "500", "--bind", "0.0.0.0"});
  ASSERT_TRUE(parsed.options) << parsed.error;
  EXPECT_EQ(parsed.options->discovery_port, 0);
  EXPECT_EQ(parsed.options->discovery_from->Text(), "10.0.0.1-10.0.0.9");
  EXPECT_EQ(parsed.options->discovery_rate, 500U);
}

TEST(ParseOptions, Help_NamesEveryOptionAndSucceeds) {
  const ParsedOptions parsed = ParseOptions({"serve", "--help"});
  EXPECT_FALSE(parsed.options);
  EXPECT_EQ(parsed.exit_code, kExitDone);
  EXPECT_EQ(parsed.error, "");
  for (const char* name : {"--port", "--bind", "--serial", "--log", "--quiet", "--once", "--help",
                           "--discovery", "--discovery-port", "--discovery-from", "--discovery-rate"})
    EXPECT_NE(parsed.output.find(name), std::string::npos) << name;
}

TEST(ParseOptions, Commands_AreServeUnlessNamed) {
  EXPECT_EQ(ParseOptions({"p.json", "--quiet"}).options->command, Command::kServe);
  EXPECT_EQ(ParseOptions({"serve", "p.json"}).options->file, "p.json");
  const ParsedOptions wire = ParseOptions({"wire", "--serial", "p", "--port", "5"});
  ASSERT_TRUE(wire.options) << wire.error;
  EXPECT_EQ(wire.options->command, Command::kWire);
  EXPECT_EQ(wire.options->serial, "p");
  EXPECT_EQ(wire.options->port, 5);
}

TEST(ParseOptions, HelpAndVersion_OfTheWholeProgram) {
  EXPECT_NE(ParseOptions({"--help"}).output.find("Examples:"), std::string::npos);
  EXPECT_EQ(ParseOptions({"--version"}).output, "kesp-sim " KESP_VERSION "\n");
}

TEST(ParseOptions, Mistakes_AreRefusedWithAMessage) {
  const std::vector<std::vector<std::string>> mistakes = {
      {"--prot", "1"},
      {"--port", "65536"},
      {"--port", "-1"},
      {"--port", "x"},
      {"--port"},
      {"--bind", "host.x"},
      {"--bind", "127.0.0.1:5"},
      {"p.json", "stray"},
      {""},
      {"wire"},
      {"--serial"},
      {"--serial", ""},
      {"--serial", "p", "--port", "1"},
      {"--serial", "p", "--bind", "::1"},
      {"--serial", "p", "--once"},
      {"--serial", "p", "--discovery"},
      {"--discovery-port", "1"},
      {"--discovery-from", "10.0.0.1"},
      {"--discovery-rate", "1"},
      {"--discovery", "--discovery-port", "65536"},
      {"--discovery", "--discovery-from", "10.0.0.2-10.0.0.1"},
      {"--discovery", "--discovery-from", ""},
      {"--discovery", "--discovery-rate", "-1"},
      {"--discovery", "--bind", "::1"},
  };
  for (const std::vector<std::string>& arguments : mistakes) {
    const ParsedOptions parsed = ParseOptions(arguments);
    EXPECT_FALSE(parsed.options) << arguments.front();
    EXPECT_EQ(parsed.exit_code, kExitBadInput) << arguments.front();
    EXPECT_FALSE(parsed.error.empty()) << arguments.front();
    EXPECT_EQ(parsed.output, "") << arguments.front();
  }
}

}  // namespace
}  // namespace kesp::simulator
