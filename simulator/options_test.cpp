// The command line.
#include "simulator/options.h"

#include <gtest/gtest.h>

namespace kesp::simulator {
namespace {

// All options in one line, so that what an argument changes shows, and what it leaves alone.
std::string TextOf(const Options& options) {
  const auto number = [](auto value) { return std::to_string(value) + " "; };
  return number(static_cast<int>(options.command)) + "[" + options.file + "] " + number(options.port) +
         options.bind + " " + number(options.discovery) + number(options.discovery_port) +
         (options.discovery_from ? options.discovery_from->Text() : "-") + " " +
         number(options.discovery_rate) + "[" + options.serial + "] [" + options.log + "] " +
         number(options.quiet) + number(options.once) + options.kind;
}

TEST(ParseOptions, Arguments_AreTakenAndTheRestHasItsDefaults) {
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{}, "0 [] 0 127.0.0.1 0 30718 - 0 [] [] 0 0 "},
      {{"serve", "p.json"}, "0 [p.json] 0 127.0.0.1 0 30718 - 0 [] [] 0 0 "},
      {{"--port", "10001", "--bind", "::1", "p.json", "--log=l.txt", "--quiet", "--once"},
       "0 [p.json] 10001 ::1 0 30718 - 0 [] [l.txt] 1 1 "},
      {{"/p.json"}, "0 [/p.json] 0 127.0.0.1 0 30718 - 0 [] [] 0 0 "},
      {{"--serial", "d/com33"}, "0 [] 0 127.0.0.1 0 30718 - 0 [d/com33] [] 0 0 "},
      {{"--discovery", "--discovery-port", "0", "--discovery-from", "10.0.0.1-10.0.0.9", "--discovery-rate",
        "500"},
       "0 [] 0 127.0.0.1 1 0 10.0.0.1-10.0.0.9 500 [] [] 0 0 "},
      {{"wire", "--serial", "p", "--port", "5"}, "1 [] 5 127.0.0.1 0 30718 - 0 [p] [] 0 0 "},
      {{"check", "p.json"}, "2 [p.json] 0 127.0.0.1 0 30718 - 0 [] [] 0 0 "},
      {{"example", "bus"}, "3 [] 0 127.0.0.1 0 30718 - 0 [] [] 0 0 bus"},
  };
  for (const auto& [arguments, text] : cases) {
    const ParsedOptions parsed = ParseOptions(arguments);
    ASSERT_TRUE(parsed.options) << parsed.error;
    EXPECT_EQ(TextOf(*parsed.options), text);
    EXPECT_EQ(parsed.output + parsed.error, "");
  }
}

TEST(ParseOptions, HelpAndVersion_SucceedWithAText) {
  const std::pair<std::vector<std::string>, std::vector<std::string>> cases[] = {
      {{"--help"}, {"Examples:", "serve", "check", "example", "wire"}},
      {{"--version"}, {"kesp-sim " KESP_VERSION "\n"}},
      {{"serve", "--help"},
       {"--port", "--bind", "--serial", "--log", "--quiet", "--once", "--help", "--discovery",
        "--discovery-port", "--discovery-from", "--discovery-rate"}},
  };
  for (const auto& [arguments, texts] : cases) {
    const ParsedOptions parsed = ParseOptions(arguments);
    EXPECT_FALSE(parsed.options);
    EXPECT_EQ(parsed.exit_code, kExitDone);
    for (const std::string& text : texts) EXPECT_NE(parsed.output.find(text), std::string::npos) << text;
  }
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
      {"check"},
      {"example"},
      {"--serial", ""},
      {"--serial", "p", "--port", "1"},
      {"--serial", "p", "--bind", "::1"},
      {"--serial", "p", "--once"},
      {"--serial", "p", "--discovery"},
      {"--discovery-port", "1"},
      {"--discovery-from", "10.0.0.1"},
      {"--discovery-rate", "1"},
      {"--discovery", "--discovery-from", "10.0.0.2-10.0.0.1"},
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
