// The simulated driver's DLL in real threads and real time.
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <future>
#include <thread>

#include "simulator/gpib/driver_library_win.h"

namespace kesp::simulator::gpib {
namespace {

constexpr char kBus[] = R"({"devices": [{"gpib": {"primary": 5}, "commands": {"A?": "one"}}]})";
constexpr int kError = 0x8000;
constexpr int kTimedOut = 0xC100;

class DriverWin : public testing::Test {
 protected:
  DriverWin() { EXPECT_EQ(driver_.Load(kBus), ""); }

  // The four cells of a thread.
  struct Cells {
    std::array<int, 4> values{-1, -1, -1, -1};
    int Register(DriverLibrary& driver) {
      return driver.Register(&values[0], &values[1], &values[2], &values[3]);
    }
  };

  // Waits until the record has that text; whether it came.
  bool Comes(const std::string& text) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (driver_.Record().find(text) == std::string::npos) {
      if (std::chrono::steady_clock::now() > deadline) return false;
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
  }

  DriverLibrary driver_;
};

TEST_F(DriverWin, NameAlone_FindsTheDriverBesideTheProgram) {
  std::array<wchar_t, MAX_PATH> program{};
  GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size()));
  EXPECT_EQ(driver_.Path().parent_path(), std::filesystem::path(program.data()).parent_path());
}

TEST_F(DriverWin, Exports_AreTheseAndNoOthersOfTheirName) {
  HMODULE library = GetModuleHandleW(L"Gpib-32.dll");
  for (const char* decorated : {"ibdev@24", "_ibdev@24", "ibrd@12", "UnregisterGpibGlobalsForThread@0"})
    EXPECT_EQ(GetProcAddress(library, decorated), nullptr) << decorated;
}

TEST_F(DriverWin, Conversation_WorksThroughTheWholeInterface) {
  Cells cells;
  EXPECT_EQ(cells.Register(driver_), 0);
  const int device = driver_.ibdev(0, 5, 0, 13, 1, 0);
  EXPECT_EQ(device, 1);
  EXPECT_EQ(driver_.ibclr(device), 0x100);
  EXPECT_EQ(driver_.ibeos(device, 0x40A), 0x100);
  EXPECT_EQ(driver_.ibwrt(device, "A?", 2), 0x100);
  std::array<char, 10> buffer{};
  EXPECT_EQ(driver_.ibrd(device, buffer.data(), 10), 0x2100);
  EXPECT_STREQ(buffer.data(), "one\n");
  EXPECT_EQ(cells.values, (std::array<int, 4>{0x2100, 0, 4, 4}));
  EXPECT_EQ(driver_.open_descriptors(), 1);
  EXPECT_EQ(driver_.ibonl(device, 0), 0x100);
  EXPECT_EQ(driver_.open_descriptors(), 0);
  EXPECT_EQ(driver_.Unregister(), 0);
  EXPECT_EQ(driver_.Unregister(), 1);
}

TEST_F(DriverWin, EachFault_WorksThroughTheDll) {
  EXPECT_EQ(driver_.Load(R"({"devices": [{"gpib": {"primary": 5}, "commands": {
              "LATE?": [{"wait_ms": 50}, {"send": "late"}], "PIECES?": [{"split": "abcd", "pieces": 2, "gap_ms": 20}],
              "GARBAGE?": [{"send_hex": "FF 80"}], "SRQ": [{"status_byte": 80}], "BYE?": [{"send": "bye"}, {"close": true}]}}],
            "failures": [{"call": "ibrsp", "at": 3, "error": 15}]})"),
            "");
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(driver_.Ask("LATE?"), "late\n");
  EXPECT_EQ(driver_.Ask("PIECES?"), "abcd\n");
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(68));
  EXPECT_EQ(driver_.Ask("GARBAGE?"), "\xFF\x80");
  const int device = driver_.ibdev(0, 5, 0, 13, 1, 0);
  EXPECT_EQ(driver_.ibwrt(device, "SRQ", 3), 0x900);
  for (const char expected : {'\x50', '\x10', 'x'}) {
    char status = 'x';
    EXPECT_EQ(driver_.ibrsp(device, &status), expected == 'x' ? 0x8100 : 0x100);
    EXPECT_EQ(status, expected);
  }
  EXPECT_EQ(driver_.Ask("BYE?"), "bye\n");
  EXPECT_EQ(driver_.ibwrt(device, "A?", 2), 0x8100) << "it has left the bus";
}

TEST_F(DriverWin, TwoThreads_HaveTheirOutcomesInTheirOwnCells) {
  constexpr int kRounds = 300;
  const auto run = [this](int primary, int expected_error) {
    Cells cells;
    if (cells.Register(driver_) != 0) return -1;
    const int device = driver_.ibdev(0, primary, 0, 13, 1, 0);
    int good = 0;
    for (int i = 0; i < kRounds; ++i) {
      const int status = driver_.ibwrt(device, "A?", 2);
      const bool is_own = cells.values[0] == status && cells.values[1] == expected_error &&
                          cells.values[2] == (expected_error == 0 ? 2 : 0);
      good += is_own ? 1 : 0;
    }
    driver_.Unregister();
    return good;
  };
  auto talks = std::async(std::launch::async, run, 5, 0);
  auto fails = std::async(std::launch::async, run, 9, 2);
  EXPECT_EQ(talks.get(), kRounds);
  EXPECT_EQ(fails.get(), kRounds);
}

TEST_F(DriverWin, ThreadThatEndsRegistered_IsForgottenAndRecorded) {
  Cells cells;
  driver_.Unregister();  // we are the first thread
  std::thread([&] { cells.Register(driver_); }).join();
  EXPECT_TRUE(Comes("2 thread ended, registered\n"));
  std::thread([&] {
    cells.Register(driver_);
    driver_.Unregister();
  }).join();
  EXPECT_TRUE(Comes("3 UnregisterGpibGlobalsForThread() = 0\n"));
  EXPECT_EQ(driver_.Record().find("3 thread ended"), std::string::npos);
}

TEST_F(DriverWin, TimeOuts_TakeTheirTime) {
  struct {
    int code;
    int milliseconds;
  } const kTimeOuts[] = {{1, 0}, {7, 10}, {9, 100}, {10, 300}};
  for (const auto& [code, milliseconds] : kTimeOuts) {
    const int device = driver_.ibdev(0, 5, 0, code, 1, 0);
    char byte = 0;
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(driver_.ibrd(device, &byte, 1), kTimedOut);
    const auto took = std::chrono::steady_clock::now() - begin;
    // One millisecond for two clocks that are read apart.
    EXPECT_GE(took + std::chrono::milliseconds(1), std::chrono::milliseconds(milliseconds));
    EXPECT_LE(took, std::chrono::seconds(10));
  }
}

TEST_F(DriverWin, ThreadThatWaits_HoldsNobodyUp) {
  auto waiting = std::async(std::launch::async, [this] {
    char byte = 0;
    return driver_.ibrd(driver_.ibdev(0, 9, 0, 0, 1, 0), &byte, 1);
  });
  ASSERT_TRUE(Comes("ibdev(0,9,"));
  EXPECT_EQ(driver_.Ask("A?"), "one\n");
  std::thread([this] { driver_.Unregister(); }).join();  // and threads may end
  EXPECT_EQ(waiting.wait_for(std::chrono::milliseconds(0)), std::future_status::timeout);
  EXPECT_EQ(driver_.Load(kBus), "");
  ASSERT_EQ(waiting.wait_for(std::chrono::seconds(20)), std::future_status::ready) << "another bus ends it";
  EXPECT_EQ(waiting.get(), kError | 0x100);
}

TEST_F(DriverWin, ReplyToAnotherThreadsCommand_EndsAWait) {
  auto waiting = std::async(std::launch::async, [this] {
    std::array<char, 10> buffer{};
    driver_.ibrd(driver_.ibdev(0, 5, 0, 0, 1, 0), buffer.data(), 10);
    return std::string(buffer.data());
  });
  ASSERT_TRUE(Comes("ibdev(0,5,"));
  driver_.ibwrt(driver_.ibdev(0, 5, 0, 13, 1, 0), "A?", 2);
  ASSERT_EQ(waiting.wait_for(std::chrono::seconds(20)), std::future_status::ready);
  EXPECT_EQ(waiting.get(), "one\n");
}

TEST_F(DriverWin, Load_OfAnUnusableText_LeavesTheBusAsItWas) {
  const int device = driver_.ibdev(0, 5, 0, 13, 1, 0);
  const std::string before = driver_.Record();
  EXPECT_EQ(driver_.Load(R"({"devices": [{"gpib": {"primary": 99}}]})"),
            "description:1: /devices/0/gpib/primary: must be a whole number from 0 to 30");
  EXPECT_EQ(driver_.load(nullptr, nullptr, 0), 1);
  EXPECT_EQ(driver_.Record(), before);
  EXPECT_EQ(driver_.ibwrt(device, "A?", 2), 0x100);
}

TEST_F(DriverWin, Texts_AreCutWhereTheyDoNotFit) {
  std::array<char, 8> message{'x', 'x', 'x', 'x', 'x', 'x', 'x', 'x'};
  EXPECT_EQ(driver_.load("[]", message.data(), 5), 1);
  EXPECT_STREQ(message.data(), "desc");
  EXPECT_EQ(message[5], 'x');
  driver_.ibonl(0, 0);
  const std::string whole = "1 ibonl(0,0) = 256 sta 0100 err 0 cnt 0\n";
  EXPECT_EQ(driver_.record(message.data(), 8), static_cast<long>(whole.size()) + 1);
  EXPECT_STREQ(message.data(), "1 ibonl");
}

}  // namespace
}  // namespace kesp::simulator::gpib
