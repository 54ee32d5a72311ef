// "kesp snippet".
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "console/command_fixture.h"

namespace kesp::console {
namespace {

namespace fs = std::filesystem;

class SnippetCommandTest : public CommandFixture {
 protected:
  SnippetCommandTest() {
    std::string pattern = (fs::temp_directory_path() / "kesp-snippet.XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~SnippetCommandTest() override { fs::remove_all(folder_); }

  fs::path folder_;
};

TEST_F(SnippetCommandTest, Output_HoldsWhatIsPrintedOtherwise) {
  EXPECT_EQ(Run(SnippetOptions{"python", "com3", ""}), kExitDone);
  const std::string program = console_.output;
  EXPECT_TRUE(program.starts_with("# Asks the instrument at com3")) << program;
  console_.output.clear();
  const std::string file = (folder_ / "ask.py").string();
  EXPECT_EQ(Run(SnippetOptions{"python", "com3", file}), kExitDone);
  EXPECT_EQ(console_.output, "");
  std::stringstream content;
  content << std::ifstream(file).rdbuf();
  EXPECT_EQ(content.str(), program);
  EXPECT_EQ(Run(SnippetOptions{"python", "com3", file}), kExitFailed);
  EXPECT_EQ(console_.error, "kesp: " + file + " is there already\n");
}

}  // namespace
}  // namespace kesp::console
