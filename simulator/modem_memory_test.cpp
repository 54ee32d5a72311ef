// The file in which a radio modem keeps its registers.
#include "simulator/modem_memory.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <system_error>

#include "simulator/description_error.h"

namespace kesp::simulator {
namespace {

class ModemMemoryTest : public testing::Test {
 protected:
  ~ModemMemoryTest() override { std::filesystem::remove(file_); }

  const std::string file_ = testing::TempDir() + "kesp_modem_" + std::to_string(::getpid());
  const ModemMemory memory_{file_};
};

TEST_F(ModemMemoryTest, NothingSaved_IsNothing) {
  EXPECT_TRUE(memory_.Load().empty());
}

TEST_F(ModemMemoryTest, Save_IsLoadedAgainAndReplacesWhatWasThere) {
  memory_.Save({{"DL", 1}, {"ID", 2}});
  memory_.Save({{"DL", 0xFFFFFFFF}, {"CT", 0}});
  EXPECT_EQ(memory_.Load(), (ModemRegisters{{"DL", 0xFFFFFFFF}, {"CT", 0}}));
}

TEST_F(ModemMemoryTest, OtherContents_AreRefused) {
  for (const char* text : {"DL", "DL=xyz", "DL="}) {
    std::ofstream(file_) << text << "\n";
    EXPECT_THROW(memory_.Load(), DescriptionError) << text;
  }
}

TEST_F(ModemMemoryTest, NoFolder_CannotBeSavedTo) {
  EXPECT_THROW(ModemMemory(file_ + "/none").Save({{"DL", 1}}), std::system_error);
}

}  // namespace
}  // namespace kesp::simulator
