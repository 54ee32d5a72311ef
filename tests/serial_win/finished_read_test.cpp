// Reads that their driver finishes late: a pipe whose writer takes its time.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <thread>

#include "serial/finished_read_win.h"

namespace kesp::clients {
namespace {

class FinishedReadTest : public testing::Test {
 protected:
  FinishedReadTest() {
    const std::wstring name = LR"(\\.\pipe\kesp-finished-read-)" + std::to_wstring(GetCurrentProcessId());
    pipe_ = CreateNamedPipeW(name.c_str(), PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED, PIPE_TYPE_BYTE, 1, 4096,
                             4096, 0, nullptr);
    EXPECT_NE(pipe_, INVALID_HANDLE_VALUE);
    other_end_ =
        CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_NE(other_end_, INVALID_HANDLE_VALUE);
  }
  ~FinishedReadTest() override {
    CloseHandle(other_end_);
    CloseHandle(pipe_);
  }

  void Write(const std::string& bytes) const {
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(other_end_, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr));
  }

  HANDLE pipe_ = INVALID_HANDLE_VALUE;
  HANDLE other_end_ = INVALID_HANDLE_VALUE;
};

TEST_F(FinishedReadTest, DriverTakesItsTime_IsWaitedFor) {
  for (const DWORD milliseconds : {0U, 150U, 1000U}) {
    std::thread writer([&] {
      Sleep(milliseconds);
      Write("12.3\r\n");
    });
    EXPECT_EQ(FinishedRead(pipe_, 6), "12.3\r\n") << milliseconds;
    writer.join();
  }
}

TEST_F(FinishedReadTest, DriverNeverFinishes_IsCalledBackAndTheNextReadWorks) {
  EXPECT_EQ(FinishedRead(pipe_, 6, 100), std::nullopt);
  Write("12.3\r\n");
  EXPECT_EQ(FinishedRead(pipe_, 6), "12.3\r\n");
}

}  // namespace
}  // namespace kesp::clients
