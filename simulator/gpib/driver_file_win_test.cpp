// The file beside the simulated driver's DLL, from which it takes its bus.
#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <iterator>

#include "simulator/gpib/driver_library_win.h"

namespace kesp::simulator::gpib {
namespace {

using std::filesystem::path;

// Each test has a copy of the DLL in a folder of its own.
class DriverFileWin : public testing::Test {
 protected:
  DriverFileWin() {
    std::array<wchar_t, MAX_PATH> name{};
    EXPECT_NE(GetTempFileNameW(std::filesystem::temp_directory_path().c_str(), L"bus", 0, name.data()), 0U);
    // The name is that of a file, which a folder may follow.
    std::filesystem::remove(name.data());
    folder_ = name.data();
    std::filesystem::create_directory(folder_);
    std::filesystem::copy_file(DriverLibrary().Path(), Dll());
  }
  ~DriverFileWin() override {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  path Dll() const { return folder_ / L"Gpib-32.dll"; }
  path Json() const { return folder_ / L"Gpib-32.json"; }
  path ErrorFile() const { return folder_ / L"Gpib-32.error.txt"; }

  void WriteJson(const std::string& text) const { std::ofstream(Json(), std::ios::binary) << text; }
  std::string ErrorText() const {
    std::ifstream file(ErrorFile(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

  path folder_;
};

TEST_F(DriverFileWin, WithoutFile_TheBuiltInBusIsThere) {
  DriverLibrary driver(Dll());
  ASSERT_EQ(driver.Path(), Dll());
  EXPECT_EQ(driver.Ask("*IDN?"), "KESP,GP488,SIM48805,1.0\n");
  EXPECT_EQ(driver.Ask("MEAS?"), "+021.48\n");
  EXPECT_EQ(driver.Ask("MEAS?"), "+021.50\n");
  EXPECT_FALSE(exists(ErrorFile()));
}

TEST_F(DriverFileWin, UsableFile_IsTheBus) {
  WriteJson(R"({"devices": [{"gpib": {"primary": 5}, "commands": {"A?": "of_the_file"}}]})");
  DriverLibrary driver(Dll());
  EXPECT_EQ(driver.Ask("A?"), "of_the_file\n");
}

TEST_F(DriverFileWin, File_IsReadAtTheFirstCallAndOnce) {
  DriverLibrary driver(Dll());
  WriteJson(R"({"devices": [{"gpib": {"primary": 5}, "commands": {"A?": "first"}}]})");
  EXPECT_EQ(driver.Ask("A?"), "first\n");
  WriteJson(R"({"devices": [{"gpib": {"primary": 5}, "commands": {"A?": "second"}}]})");
  EXPECT_EQ(driver.Ask("A?"), "first\n");
}

TEST_F(DriverFileWin, UnusableFile_FailsEveryCallAndSaysWhy) {
  WriteJson(R"({"devices": [{"gpib": {"primary": 5}, "commands": 1}]})");
  const std::string reason =
      "Gpib-32.json cannot be used:\r\nGpib-32.json:1: /devices/0/commands: must be an object";
  {
    DriverLibrary driver(Dll());
    int status = 0;
    int error = 0;
    int count = 0;
    int long_count = 0;
    EXPECT_EQ(driver.Register(&status, &error, &count, &long_count), 0);
    EXPECT_EQ(driver.ibdev(0, 5, 0, 13, 1, 0), -1);
    EXPECT_EQ(status, 0x8100);
    EXPECT_EQ(error, 12);
    EXPECT_EQ(driver.ibonl(0, 0), 0x8100);
    EXPECT_EQ(driver.Unregister(), 0);
    EXPECT_EQ(ErrorText(), reason + "\r\n");
    EXPECT_EQ(driver.Load("{}"), "") << "a bus that is given counts";
    EXPECT_EQ(driver.ibdev(0, 5, 0, 13, 1, 0), 1);
  }
  WriteJson("{}");
  DriverLibrary driver(Dll());
  EXPECT_EQ(driver.ibdev(0, 5, 0, 13, 1, 0), 1);
  EXPECT_FALSE(exists(ErrorFile())) << "the reason is taken away when all is well";
}

TEST_F(DriverFileWin, BusGivenBeforeTheFirstCall_KeepsTheFileUnread) {
  WriteJson("not JSON");
  DriverLibrary driver(Dll());
  EXPECT_NE(driver.Load("[]"), "");
  EXPECT_EQ(driver.Load(R"({"devices": [{"gpib": {"primary": 5}, "commands": {"A?": "given"}}]})"), "");
  EXPECT_EQ(driver.Ask("A?"), "given\n");
  EXPECT_FALSE(exists(ErrorFile()));
}

}  // namespace
}  // namespace kesp::simulator::gpib
