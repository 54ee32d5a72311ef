// The command line.
#include "console/options.h"

#include <gtest/gtest.h>

#include "console/command_words.h"

namespace kesp::console {
namespace {

template <class Command>
Command Parsed(const std::vector<std::string>& arguments) {
  const ParsedOptions parsed = ParseOptions(arguments);
  EXPECT_TRUE(parsed.options) << parsed.error;
  if (!parsed.options) return {};
  EXPECT_TRUE(std::holds_alternative<Command>(parsed.options->command));
  return std::get<Command>(parsed.options->command);
}

TEST(ParseOptions, Query_TakesWhatIsSaid) {
  const auto query = Parsed<QueryOptions>({"query", "com3", "*IDN?", "t", "--timeout", "2s", "--repeat", "3",
                                           "--every", "250ms", "--csv", "--trace", "t.log"});
  EXPECT_EQ(query.talk.address, "com3");
  EXPECT_EQ(query.commands, (std::vector<std::string>{"*IDN?", "t"}));
  EXPECT_EQ(query.talk.timeout_ms, 2000);
  EXPECT_EQ(query.talk.trace, "t.log");
  EXPECT_EQ(query.repeat, 3);
  EXPECT_EQ(query.every_ms, 250);
  EXPECT_TRUE(query.csv);
  EXPECT_FALSE(query.json || query.hex || query.crlf_as_is);
}

TEST(ParseOptions, WordInBrackets_IsNoList) {
  for (const char* command : {"query", "send"}) {
    const ParsedOptions parsed = ParseOptions({command, "[com3,com4]", "[A,B]", "[]", "C"});
    ASSERT_TRUE(parsed.options) << parsed.error;
    const auto* send = std::get_if<SendOptions>(&parsed.options->command);
    const auto* query = std::get_if<QueryOptions>(&parsed.options->command);
    EXPECT_EQ((send ? send->talk : query->talk).address, "[com3,com4]");
    EXPECT_EQ(send ? send->commands : query->commands, (std::vector<std::string>{"[A,B]", "[]", "C"}));
  }
  const auto log = Parsed<LogOptions>({"log", "[a,b].log", "--as-device", "[c,d].json"});
  EXPECT_EQ(log.file + log.as_device, "[a,b].log[c,d].json");
  EXPECT_EQ(Parsed<DownloadOptions>({"download", "com3", "f", "--command", "[A,B]"}).command, "[A,B]");
}

TEST(ParseOptions, Registered_StandsBeforeAndBehindTheCommand) {
  EXPECT_TRUE(ParseOptions({"--registered", "discover"}).options->registered);
  EXPECT_TRUE(ParseOptions({"discover", "--registered"}).options->registered);
  EXPECT_FALSE(ParseOptions({"discover"}).options->registered);
}

TEST(ParseOptions, NamesOfValues_AreTakenInAnyCase) {
  EXPECT_EQ(Parsed<DetectOptions>({"detect", "com3", "--level", "SCPI"}).level, 1);
  EXPECT_EQ(Parsed<DetectOptions>({"detect", "com3"}).level, 3);
  EXPECT_EQ(Parsed<SnippetOptions>({"snippet", "PowerShell", "com3"}).language, "powershell");
}

TEST(ParseOptions, OtherCommands_HaveTheirOptions) {
  EXPECT_EQ(Parsed<SendOptions>({"send", "gpib:5", "*RST"}).commands, std::vector<std::string>{"*RST"});
  EXPECT_EQ(Parsed<TerminalOptions>({"terminal", "gpib:5"}).talk.address, "gpib:5");
  EXPECT_EQ(Parsed<DiscoverOptions>({"discover", "--timeout", "1min"}).timeout_ms, 60'000);
  EXPECT_TRUE(Parsed<PortsOptions>({"ports", "--probe"}).probe);
  EXPECT_EQ(Parsed<DownloadOptions>({"download", "com3", "f.bin", "--command", "DUMP"}).command, "DUMP");
  EXPECT_EQ(Parsed<EditOptions>({"edit", "com3"}).talk.address, "com3");
  EXPECT_EQ(Parsed<LogOptions>({"log", "t.log", "--since", "10min", "--as-device", "o.json"}).as_device,
            "o.json");
  EXPECT_TRUE(Parsed<DoctorOptions>({"doctor", "--json"}).json);
}

TEST(ParseOptions, HelpAndVersion_SucceedWithAText) {
  const std::pair<std::vector<std::string>, std::vector<std::string>> cases[] = {
      {{"--help"},
       {"Addresses:", "Examples:", "query", "send", "terminal", "detect", "discover", "ports", "download",
        "edit", "log", "snippet", "doctor"}},
      {{"--version"}, {"kesp " KESP_VERSION "\n"}},
      {{"query", "--help"},
       {"--timeout", "--binary", "--hex", "--json", "--csv", "--repeat", "--every", "--crlf-as-is"}},
      {{"log", "--help"}, {"--errors", "--since", "--follow", "--csv", "--as-device", "\n  kesp log "}},
      {{"ports", "--help"}, {"only --probe tells", "\n  kesp ports\n"}},
      {{"snippet", "--help"}, {"--output", "UTF-16", "\n  kesp snippet "}},
      {{"doctor", "--help"}, {"--json", "\n  kesp doctor\n"}},
  };
  for (const auto& [arguments, texts] : cases) {
    const ParsedOptions parsed = ParseOptions(arguments);
    EXPECT_FALSE(parsed.options);
    EXPECT_EQ(parsed.exit_code, kExitDone);
    for (const std::string& text : texts) EXPECT_NE(parsed.output.find(text), std::string::npos) << text;
  }
}

TEST(ParseOptions, HelpOfEachCommand_HasTwoExamples) {
  for (const CommandWord& command : CommandWords()) {
    const std::string help = ParseOptions({command.name, "--help"}).output;
    const std::size_t examples = help.find("\nExamples:\n");
    ASSERT_NE(examples, std::string::npos) << command.name;
    const std::string example = "\n  kesp " + command.name;
    const std::size_t first = help.find(example, examples);
    EXPECT_NE(first, std::string::npos) << command.name;
    EXPECT_NE(help.find(example, first + 1), std::string::npos) << command.name;
  }
}

TEST(ParseOptions, Help_ShowsAllOptionsOfAddresses) {
  const std::string help = ParseOptions({"--help"}).output;
  for (const char* option :
       {",eos=", ",eos=13+10", ",any", ",omega=", ",modem=", ",switch=", ",ir", ",cr", ",noclear", "usb:"})
    EXPECT_NE(help.find(option), std::string::npos) << option;
}

TEST(ParseOptions, Mistakes_AreRefusedWithAMessage) {
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{}, "Examples:"},
      {{"qery", "com3", "*IDN?"}, "\"qery\" is not a command"},
      {{"query", "com3"}, "CMD"},
      {{"query", "com3", "t", "--timeout", "soon"}, "\"soon\" is not a time"},
      {{"query", "com3", "t", "--every", "1s"}, "--repeat"},
      {{"query", "com3", "t", "--json", "--csv"}, "--csv"},
      {{"query", "com3", "t", "--repeat", "-1"}, "-1"},
      {{"detect", "com3", "--level", "4x"}, "4x"},
      {{"snippet", "cobol", "com3"}, "cobol"},
      {{"log", "t.log", "--follow", "--as-device", "o.json"}, "--follow"},
  };
  for (const auto& [arguments, text] : cases) {
    const ParsedOptions parsed = ParseOptions(arguments);
    EXPECT_FALSE(parsed.options);
    EXPECT_EQ(parsed.exit_code, kExitUsage);
    EXPECT_NE(parsed.error.find(text), std::string::npos) << parsed.error;
  }
}

}  // namespace
}  // namespace kesp::console
