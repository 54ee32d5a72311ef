// "kesp completion": every command and every option of the command line is in the script.
#include <gmock/gmock.h>

#include "console/command_fixture.h"
#include "console/command_words.h"

namespace kesp::console {
namespace {

using testing::HasSubstr;

class CompletionCommandTest : public CommandFixture {
 protected:
  CompletionCommandTest() { code_ = Run(CompletionOptions{}); }

  // The line of that command in the script.
  std::string LineOf(const std::string& command) const {
    const std::size_t begin = console_.output.find("    '" + command + "' = ");
    if (begin == std::string::npos) return "";
    return console_.output.substr(begin, console_.output.find('\n', begin) - begin);
  }

  int code_ = -1;
};

TEST_F(CompletionCommandTest, Script_HasAllThatTheHelpLists) {
  EXPECT_EQ(code_, kExitDone);
  EXPECT_THAT(console_.output, HasSubstr("Register-ArgumentCompleter -Native -CommandName kesp, kesp.exe"));
  const std::string help = ParseOptions({"--help"}).output;
  for (const CommandWord& command : CommandWords()) {
    EXPECT_THAT(help, HasSubstr("\n  " + command.name + " "));
    const std::string help_of_it = ParseOptions({command.name, "--help"}).output;
    for (const std::string& option : command.options) {
      EXPECT_THAT(help_of_it, HasSubstr(option));
      EXPECT_THAT(LineOf(command.name), HasSubstr("'" + option + "'"));
    }
  }
}

TEST_F(CompletionCommandTest, Commands_AreThoseOfTheCommandLine) {
  std::vector<std::string> names;
  for (const CommandWord& command : CommandWords()) names.push_back(command.name);
  EXPECT_THAT(names, testing::ElementsAre("query", "send", "terminal", "detect", "discover", "ports",
                                          "download", "edit", "log", "snippet", "doctor", "completion"));
  EXPECT_EQ(names.size(), std::variant_size_v<CommandOptions>);
}

TEST_F(CompletionCommandTest, WordsOfAFew_AreOffered) {
  EXPECT_THAT(LineOf("snippet"), HasSubstr("'powershell'"));
  EXPECT_THAT(LineOf("completion"), HasSubstr("Values = @('powershell')"));
  EXPECT_THAT(LineOf("query"), HasSubstr("'--gap'"));
}

}  // namespace
}  // namespace kesp::console
