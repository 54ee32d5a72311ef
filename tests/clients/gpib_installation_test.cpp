// Drivers that are broken, incomplete, somewhere else or under the other name. The driver stays loaded in a
// process that has found it, so each of these tests is run in a program of its own.
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/clients/ieee_client.h"

namespace kesp::clients {
namespace {

namespace fs = std::filesystem;

// The folder of this program, in which the simulated driver lies at first.
fs::path ProgramFolder() {
  std::array<wchar_t, 32768> path{};
  GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
  return fs::path(path.data()).parent_path();
}

std::string ContentsOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void WriteFile(const fs::path& file, const std::string& contents) {
  std::ofstream(file, std::ios::binary) << contents;
}

class GpibInstallationTest : public testing::Test {
 protected:
  GpibInstallationTest() {
    EXPECT_TRUE(fs::exists(driver_)) << "no driver beside the program: run this with tools/wine-run --driver";
    EXPECT_EQ(GetModuleHandleW(L"Gpib-32.dll"), nullptr) << "another test of this process has loaded it";
    fs::create_directory(elsewhere_);
    fs::rename(driver_, elsewhere_ / L"Gpib-32.dll");
    ieee_.SetEndsReads(false);
  }

  void Install() { fs::copy_file(elsewhere_ / L"Gpib-32.dll", driver_); }
  // The driver with another text, as long, in the place of one of its own.
  void InstallWith(const std::string& replacement_for, const std::string& replacement) {
    std::string contents = ContentsOf(elsewhere_ / L"Gpib-32.dll");
    std::size_t place = contents.find(replacement_for);
    ASSERT_NE(place, std::string::npos);
    for (; place != std::string::npos; place = contents.find(replacement_for, place)) {
      contents.replace(place, replacement.size(), replacement);
    }
    WriteFile(driver_, contents);
  }
  void ExpectNotFound() { EXPECT_EQ(ieee_.Initialize().result, ControlError(53)); }
  void ExpectWorking() { EXPECT_EQ(ieee_.Converse(L"*IDN?"), L"KESP,GP488,SIM48805,1.0\n"); }

  const fs::path folder_ = ProgramFolder();
  const fs::path driver_ = folder_ / L"Gpib-32.dll";
  const fs::path elsewhere_ = folder_ / L"elsewhere";
  Apartment apartment_;
  IeeeClient ieee_;
};

TEST_F(GpibInstallationTest, CurrentFolderAndPath_AreNotSearched) {
  ASSERT_TRUE(SetCurrentDirectoryW(elsewhere_.c_str()));
  ASSERT_TRUE(SetEnvironmentVariableW(L"PATH", elsewhere_.c_str()));
  ExpectNotFound();
  ASSERT_TRUE(SetCurrentDirectoryW(folder_.c_str()));
  Install();
  ExpectWorking();
}

TEST_F(GpibInstallationTest, FolderThatTheProgramNames_IsSearched) {
  ExpectNotFound();
  ASSERT_NE(AddDllDirectory(elsewhere_.c_str()), nullptr);
  ExpectWorking();
}

TEST_F(GpibInstallationTest, FileThatIsNoDll_IsAnErrorInLoading) {
  const Refusal refusal{ControlError(48), kOpeningSource,
                        L"Error in loading the GPIB driver Gpib-32.dll (system error 193)"};
  WriteFile(driver_, "This is no DLL.");
  EXPECT_EQ(ieee_.Initialize(), refusal);
  EXPECT_EQ(ieee_.Initialize(), refusal);
  // Of a good one the beginning.
  const std::string whole = ContentsOf(elsewhere_ / L"Gpib-32.dll");
  WriteFile(driver_, whole.substr(0, 64));
  EXPECT_EQ(ieee_.Initialize(), refusal);
  fs::remove(driver_);
  ExpectNotFound();
  Install();
  ExpectWorking();
}

TEST_F(GpibInstallationTest, DllWithoutAnEntryPoint_IsNamed_UntilItIsReplaced) {
  // In the list of exports, which stays in order, and where debuggers look.
  InstallWith(std::string("\0ibeos\0", 7), std::string("\0ibeoz\0", 7));
  const Refusal refusal{ControlError(453), kOpeningSource,
                        L"Can't find the entry point ibeos in the GPIB driver Gpib-32.dll"};
  EXPECT_EQ(ieee_.Initialize(), refusal);
  EXPECT_EQ(ieee_.Initialize(), refusal);
  EXPECT_EQ(ieee_.WriteLine(L"t").source, kWritingSource);
  // The incomplete one was given up, or it could not be removed.
  ASSERT_TRUE(fs::remove(driver_));
  Install();
  ExpectWorking();
}

TEST_F(GpibInstallationTest, DllThatNeedsAMissingOne_IsToldFromAMissingDriver) {
  InstallWith("msvcrt.dll", "nsvcrt.dll");
  EXPECT_EQ(ieee_.Initialize(),
            (Refusal{ControlError(48), kOpeningSource,
                     L"Error in loading the GPIB driver Gpib-32.dll (a DLL that it needs is missing)"}));
  // Wine holds on to a file that it could not load.
  fs::rename(driver_, folder_ / L"needs_another.dll");
  Install();
  ExpectWorking();
}

TEST_F(GpibInstallationTest, NameOfThe64BitDriver) {
  fs::copy_file(elsewhere_ / L"Gpib-32.dll", folder_ / L"ni4882.dll");
  if (sizeof(void*) == 8) {
    ExpectWorking();
  } else {
    ExpectNotFound();
  }
}

TEST_F(GpibInstallationTest, BothNames_BrokenFirstOneIsNotPassedOver) {
  WriteFile(driver_, "This is no DLL.");
  fs::copy_file(elsewhere_ / L"Gpib-32.dll", folder_ / L"ni4882.dll");
  EXPECT_EQ(ieee_.Initialize().result, ControlError(48));
}

}  // namespace
}  // namespace kesp::clients
