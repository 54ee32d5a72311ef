// Two processes that write one trace and one settings file at the same time.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "tests/clients/temporary_file.h"
#include "tests/threads/client_process.h"
#include "tests/threads/figure.h"
#include "tests/threads/left_files.h"
#include "tests/threads/together.h"

namespace kesp::threads {
namespace {

constexpr int kPorts = 250;
constexpr DWORD kDeadlineMs = 600000;

class TwoProcessesTest : public testing::Test {
 protected:
  // Both at the same time, until they have ended.
  void Write(int rounds) const {
    const std::wstring rest = std::to_wstring(rounds) + L" " + std::to_wstring(kPorts);
    const ClientProcess first(L"writing_process.exe", L"\"" + trace_.path() + L"\" 0 " + rest);
    const ClientProcess second(L"writing_process.exe", L"\"" + trace_.path() + L"\" 1 " + rest);
    EXPECT_EQ(first.CodeWithin(kDeadlineMs), 0U);
    EXPECT_EQ(second.CodeWithin(kDeadlineMs), 0U);
  }

  WorkingFolder folder_;
  clients::TemporaryFile trace_{folder_.File(L"trace.log")};
};

// Each query leaves the same lines, but for its number. The trace is of yesterday at first: whichever process
// comes first renames it.
TEST_F(TwoProcessesTest, OneTrace_LinesOfBothAreThere) {
  const int rounds = Rounds(10);
  const std::wstring rolled = trace_.path() + L" " + trace_.WriteDaysAgo(1, "old\r\n");
  const std::wstring settings = folder_.File(L"RFModem.ini");
  {
    std::ofstream file(std::filesystem::path(settings), std::ios::binary);
    for (int port = 1; port <= kPorts; ++port) file << "[COM" << port << "]\r\nInstrAddr=12\r\n";
  }
  Write(rounds);

  const std::string old = ContentOf(rolled);
  EXPECT_TRUE(old.starts_with("old\r\n")) << old;
  const LogLines lines = LinesOf(old.substr(old.find('\n') + 1) + trace_.Content());
  std::map<std::string, int> counts;
  for (const std::string& message : lines.messages) ++counts[message];
  long lost = 0;
  for (int process = 0; process < 2; ++process) {
    for (int round = 0; round < rounds; ++round) {
      const std::string cmd = "ECHO p" + std::to_string(process) + " r" + std::to_string(round);
      for (const std::string& line :
           {"Beginning Query()... (command: " + cmd + ")", "IEEE: WriteLine(" + cmd + ")",
            "Exiting Query()...(command: " + cmd + ")"}) {
        if (counts[line] != 1) ++lost;
      }
    }
  }
  const auto torn = static_cast<long>(lines.torn.size());
  const auto all = static_cast<long>(lines.messages.size());
  Figure("log lines torn, two processes", std::to_string(torn) + " of " + std::to_string(all));
  Figure("log lines missing, two processes", std::to_string(lost) + " of " + std::to_string(6 * rounds));
  // Windows appends in one step. Wine looks for the end of the file first, so that two lines may fall on one
  // place.
  EXPECT_LE(50 * (torn + lost), all);

  const std::string fault = FaultOfSettings(ContentOf(settings), kPorts, {"12", "-1"});
  EXPECT_EQ(fault, "");
  const int written = std::min(rounds, kPorts / 2) * 2;
  long kept = 0;
  const std::string content = ContentOf(settings);
  for (std::size_t at = 0; (at = content.find("=-1", at)) != std::string::npos; ++at) ++kept;
  Figure("settings files torn, two processes", std::to_string(fault.empty() ? 0 : 1) + " of 1");
  Figure("settings lost, two processes", std::to_string(written - kept) + " of " + std::to_string(written));
  EXPECT_EQ(kept, written);
}

}  // namespace
}  // namespace kesp::threads
