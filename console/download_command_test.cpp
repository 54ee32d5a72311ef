// "kesp download": the file is whole, or nobody is left to believe so.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "console/command_fixture.h"

namespace kesp::console {
namespace {

class DownloadCommandTest : public CommandFixture {
 protected:
  DownloadCommandTest() {
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
    options_.talk.address = "com3";
    options_.file = (folder_ / "data.bin").string();
    options_.command = "DUMP?";
    library_.transfer = std::string("\0\r\n\xFF", 4);
    library_.transfer_steps = {3, 4};
  }
  ~DownloadCommandTest() override { std::filesystem::remove_all(folder_); }

  int Download() { return Run(options_); }
  static std::string Content(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  std::ptrdiff_t Files() const { return std::distance(std::filesystem::directory_iterator(folder_), {}); }

  std::filesystem::path folder_ =
      std::filesystem::path(testing::TempDir()) /
      (std::string("kesp-download-") + testing::UnitTest::GetInstance()->current_test_info()->name());
  DownloadOptions options_;
};

TEST_F(DownloadCommandTest, ItEnds_TheFileHoldsTheBytes) {
  std::ofstream(options_.file) << "an older and longer transfer";
  EXPECT_EQ(Download(), kExitDone);
  EXPECT_EQ(Content(options_.file), library_.transfer);
  EXPECT_EQ(Files(), 1);
  EXPECT_EQ(library_.calls, (std::vector<std::string>{"At com3", "Download DUMP?"}));
  EXPECT_EQ(console_.progress,
            (std::vector<std::string>{"3 bytes, 3000 bytes/s, 0.0 s", "4 bytes, 4000 bytes/s, 0.0 s", ""}));
  EXPECT_EQ(console_.output, options_.file + ": 4 bytes, 4000 bytes/s, 0.0 s\n");
}

TEST_F(DownloadCommandTest, CtrlC_WhatCameIsKeptUnderAnotherName) {
  console_.InterruptAfter(1);
  EXPECT_EQ(Download(), kExitInterrupted);
  EXPECT_TRUE(library_.aborted);
  EXPECT_EQ(Content(options_.file + ".part"), library_.transfer);
  EXPECT_EQ(Files(), 1);
  EXPECT_EQ(console_.error,
            "kesp: ended by Ctrl-C; the 4 bytes that had come are in " + options_.file + ".part\n");
}

TEST_F(DownloadCommandTest, CtrlCAfterTheLastLook_IsHeardToo) {
  console_.InterruptAfter(2);
  library_.transfer = "x";
  EXPECT_EQ(Download(), kExitInterrupted);
  EXPECT_EQ(console_.error,
            "kesp: ended by Ctrl-C; the 1 byte that had come is in " + options_.file + ".part\n");
}

TEST_F(DownloadCommandTest, CtrlCBeforeAnythingCame_NothingIsKept) {
  console_.Interrupt();
  library_.transfer.clear();
  EXPECT_EQ(Download(), kExitInterrupted);
  EXPECT_EQ(Files(), 0);
  EXPECT_EQ(console_.error, "kesp: ended by Ctrl-C; nothing had come\n");
}

TEST_F(DownloadCommandTest, ThePortFails_ToldWithWhatIsKept) {
  library_.transfer_fails = LibraryError("8020", "commCOMControl", "Error reading comm device");
  EXPECT_EQ(Download(), kExitFailed);
  EXPECT_EQ(console_.error,
            "kesp: Error reading comm device (8020, commCOMControl)\n  the 4 bytes that had come are in " +
                options_.file +
                ".part\n  The port gives nothing any more: plug the adapter in again, and send the "
                "command again (docs\\no-answer.md#the-port-is-not-there-or-gone).\n");
}

TEST_F(DownloadCommandTest, NothingComes_NoFile) {
  library_.transfer.clear();
  library_.transfer_fails = LibraryError("ERR_DOWNLOAD_TIMEOUT", "CKespCOMPort3 - Download()",
                                         "Timeout while downloading from COM3.");
  EXPECT_EQ(Download(), kExitFailed);
  EXPECT_EQ(Files(), 0);
}

TEST_F(DownloadCommandTest, TheFileCannotBeWritten_ToldBeforeAnythingIsSent) {
  options_.file = (folder_ / "none" / "data.bin").string();
  EXPECT_EQ(Download(), kExitFailed);
  EXPECT_EQ(console_.error, "kesp: " + options_.file + " cannot be written: No such file or directory\n");
  options_.file = folder_.string();
  EXPECT_EQ(Download(), kExitFailed);
  EXPECT_EQ(library_.calls, (std::vector<std::string>{"At com3", "At com3"}));
}

TEST_F(DownloadCommandTest, TheDiskIsFull_NothingIsLeftBehind) {
  std::filesystem::create_symlink("/dev/full", options_.file + ".part");
  EXPECT_EQ(Download(), kExitFailed);
  EXPECT_EQ(console_.error, "kesp: " + options_.file + " cannot be written: No space left on device\n");
  EXPECT_EQ(Files(), 0);
}

TEST_F(DownloadCommandTest, ElsewhereThanAtAComPort_Refused) {
  options_.talk.address = "gpib:5";
  EXPECT_EQ(Download(), kExitUsage);
  EXPECT_EQ(Files(), 0);
}

}  // namespace
}  // namespace kesp::console
