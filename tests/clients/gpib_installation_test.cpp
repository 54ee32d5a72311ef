// Drivers that are broken, incomplete, somewhere else or under the other name. The driver stays loaded in a
// process that has found it, so each of these tests is run in a program of its own.
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

#include "tests/clients/ieee_client.h"
#include "tests/clients/library_module.h"

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
  void InstallWith(const std::string& replacement_for, const std::string& replacement) {
    InstallWith(driver_, replacement_for, replacement);
  }
  // The driver with another text, as long, in the place of one of its own.
  void InstallWith(const fs::path& file, const std::string& replacement_for, const std::string& replacement) {
    std::string contents = ContentsOf(elsewhere_ / L"Gpib-32.dll");
    std::size_t place = contents.find(replacement_for);
    ASSERT_NE(place, std::string::npos);
    for (; place != std::string::npos; place = contents.find(replacement_for, place)) {
      contents.replace(place, replacement.size(), replacement);
    }
    WriteFile(file, contents);
  }
  // From now on the transport is one of a copy of the library in a folder of its own.
  void MoveTheLibrary() {
    fs::create_directory(library_);
    fs::copy_file(RegisteredPath(), library_ / L"KespCommObj.dll");
    moved_.emplace(library_ / L"KespCommObj.dll");
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(moved_->GetClassObject(__uuidof(CKespIEEE), IID_IClassFactory,
                                     reinterpret_cast<void**>(factory.GetAddressOf())),
              S_OK);
    ComPtr<_CKespIEEE> transport;
    ASSERT_EQ(factory->CreateInstance(nullptr, __uuidof(_CKespIEEE),
                                      reinterpret_cast<void**>(transport.GetAddressOf())),
              S_OK);
    ieee_.object = transport;
    ieee_.SetAddress(5);
    ieee_.SetEos(L"10");
    ieee_.SetEndsReads(false);
  }
  void ExpectNotFound() { EXPECT_EQ(ieee_.Initialize().result, ControlError(53)); }
  void ExpectWorking() { EXPECT_EQ(ieee_.Converse(L"*IDN?"), L"KESP,GP488,SIM48805,1.0\n"); }

  const fs::path folder_ = ProgramFolder();
  const fs::path driver_ = folder_ / L"Gpib-32.dll";
  const fs::path elsewhere_ = folder_ / L"elsewhere";
  const fs::path library_ = folder_ / L"library";
  std::optional<LibraryModule> moved_;
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

TEST_F(GpibInstallationTest, FolderOfTheLibrary_IsSearchedForTheDriverAndWhatItNeeds) {
  MoveTheLibrary();
  ExpectNotFound();
  InstallWith(library_ / L"Gpib-32.dll", "msvcrt.dll", "nsvcrt.dll");
  EXPECT_EQ(ieee_.Initialize().description,
            L"Error in loading the GPIB driver Gpib-32.dll (a DLL that it needs is missing)");
  std::array<wchar_t, MAX_PATH> system{};
  GetSystemDirectoryW(system.data(), static_cast<UINT>(system.size()));
  fs::copy_file(fs::path(system.data()) / L"msvcrt.dll", library_ / L"nsvcrt.dll");
  ExpectWorking();
}

TEST_F(GpibInstallationTest, DriverBesideTheLibrary_AndBesideTheProgram_ThatOfTheProgramIsTaken) {
  MoveTheLibrary();
  InstallWith(library_ / L"Gpib-32.dll", "SIM48805", "SIMwrong");
  Install();
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
