// Tests of settings files on the system itself.
#include "support/settings_files_win.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <future>
#include <iterator>
#include <string>
#include <thread>

namespace kesp {
namespace {

class SettingsFilesWinTest : public testing::Test {
 protected:
  SettingsFilesWinTest() { std::filesystem::create_directory(folder_); }
  ~SettingsFilesWinTest() override {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  void Put(const std::wstring& path, const std::string& content) {
    std::ofstream(std::filesystem::path(path), std::ios::binary) << content;
  }
  std::string Content() const {
    std::ifstream file(std::filesystem::path(path_), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  bool Write(const std::wstring& value) { return files_.Write(path_, L"COM3", L"InstrAddr", value); }
  std::wstring Read() { return files_.Read(path_, L"COM3", L"InstrAddr", L"none"); }
  // The file is the only one in its folder.
  void ExpectNothingBeside() const {
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
      EXPECT_EQ(entry.path().wstring(), path_);
    }
  }

  const std::filesystem::path folder_ =
      std::filesystem::temp_directory_path() / (L"kesp settings " + std::to_wstring(GetCurrentProcessId()));
  const std::wstring path_ = (folder_ / L"RFModem.ini").wstring();
  const std::wstring copy_ = path_ + L".new";
  SettingsFilesWin files_;
};

TEST_F(SettingsFilesWinTest, Write_MakesTheFileAndKeepsTheRestOfIt) {
  EXPECT_TRUE(Write(L"12"));
  EXPECT_TRUE(files_.Write(path_, L"COM4", L"InstrAddr", L"-1"));
  EXPECT_TRUE(Write(L"13"));
  EXPECT_EQ(Content(), "[COM3]\r\nInstrAddr=13\r\n[COM4]\r\nInstrAddr=-1\r\n");
  ExpectNothingBeside();
}

TEST_F(SettingsFilesWinTest, TextIsThereAlready_TheFileIsNotTouched) {
  Put(path_, "[COM3]\nInstrAddr=12");
  EXPECT_TRUE(Write(L"12"));
  EXPECT_EQ(Content(), "[COM3]\nInstrAddr=12");
}

TEST_F(SettingsFilesWinTest, CopyOfAProgramThatEnded_IsNotTakenForTheFile) {
  Put(copy_, "[COM9]\r\nInstrAddr=9\r\n");
  EXPECT_TRUE(Write(L"12"));
  EXPECT_EQ(Content(), "[COM3]\r\nInstrAddr=12\r\n");
  ExpectNothingBeside();
}

TEST_F(SettingsFilesWinTest, FileCannotBeReplaced_IsWrittenInPlace) {
  Put(path_, "[COM3]\r\nInstrAddr=12\r\n");
  // A program that reads it without letting others rename it.
  HANDLE reading = CreateFileW(path_.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                               OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(reading, INVALID_HANDLE_VALUE);
  EXPECT_TRUE(Write(L"13"));
  CloseHandle(reading);
  EXPECT_EQ(Read(), L"13");
  ExpectNothingBeside();
}

// Another program was stopped while it changed a settings file.
TEST_F(SettingsFilesWinTest, AnotherTakesTooLong_IsWrittenAllTheSame) {
  HANDLE mutex = CreateMutexW(nullptr, FALSE, L"Local\\KespCommObj settings files");
  ASSERT_NE(mutex, nullptr);
  std::promise<void> is_held;
  std::promise<void> is_written;
  std::thread stopped([&] {
    WaitForSingleObject(mutex, INFINITE);
    is_held.set_value();
    is_written.get_future().wait();
    ReleaseMutex(mutex);
  });
  is_held.get_future().wait();
  EXPECT_TRUE(Write(L"12"));
  is_written.set_value();
  stopped.join();
  CloseHandle(mutex);
  EXPECT_EQ(Read(), L"12");
}

}  // namespace
}  // namespace kesp
