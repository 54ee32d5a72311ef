// Drivers that are missing, broken, incomplete, somewhere else or under the other name.
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/clients/ieee_client.h"
#include "tests/clients/library_module.h"
#include "tests/clients/other_apartment.h"

namespace kesp::clients {
namespace {

namespace fs = std::filesystem;

constexpr wchar_t kDriver[] = L"Gpib-32.dll";
constexpr wchar_t kOtherName[] = L"ni4882.dll";

// The folder of this program, in which the simulated driver lies at first.
fs::path ProgramFolder() {
  std::array<wchar_t, 32768> path{};
  GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
  return fs::path(path.data()).parent_path();
}

std::string ContentsOf(const fs::path& file) {
  std::string contents(static_cast<std::size_t>(fs::file_size(file)), '\0');
  std::ifstream(file, std::ios::binary).read(contents.data(), static_cast<std::streamsize>(contents.size()));
  return contents;
}

void WriteFile(const fs::path& file, const std::string& contents) {
  std::ofstream(file, std::ios::binary) << contents;
}

// A library looks for the driver until it has found it and keeps that loaded. Each situation therefore has a
// copy of the library in a folder of its own, used on a thread that ends before the driver is given back.
class GpibInstallationTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    ASSERT_TRUE(fs::exists(ProgramFolder() / kDriver)) << "run this with tools/wine-run --driver";
    fs::create_directory(ProgramFolder() / L"elsewhere");
    fs::rename(ProgramFolder() / kDriver, ProgramFolder() / L"elsewhere" / kDriver);
  }
  GpibInstallationTest() {
    fs::create_directory(library_);
    fs::copy_file(RegisteredPath(), library_ / L"KespCommObj.dll");
  }
  ~GpibInstallationTest() override {
    for (const wchar_t* name : {kDriver, kOtherName}) {
      while (HMODULE loaded = GetModuleHandleW(name)) FreeLibrary(loaded);
      std::error_code none;
      // Wine holds on to a file that it could not load, so that it can be moved but not be removed.
      fs::rename(folder_ / name, library_ / (std::wstring(name) + L".used"), none);
    }
  }

  // With a transport of that library.
  template <class Work>
  void Run(const Work& work) {
    RunElsewhere(COINIT_APARTMENTTHREADED, [&] {
      const LibraryModule library(library_ / L"KespCommObj.dll");
      ComPtr<IClassFactory> factory;
      ASSERT_EQ(library.GetClassObject(__uuidof(CKespIEEE), IID_IClassFactory,
                                       reinterpret_cast<void**>(factory.GetAddressOf())),
                S_OK);
      ComPtr<_CKespIEEE> transport;
      ASSERT_EQ(factory->CreateInstance(nullptr, __uuidof(_CKespIEEE),
                                        reinterpret_cast<void**>(transport.GetAddressOf())),
                S_OK);
      IeeeClient ieee(transport);
      ieee.Set(&_CKespIEEE::put_SetEOS, VARIANT_FALSE);
      work(ieee);
    });
  }
  void Install(const fs::path& file) { fs::copy_file(original_, file); }
  // The driver with another text, as long, in the place of one of its own.
  void InstallWith(const fs::path& file, const std::string& text, const std::string& replacement) {
    std::string contents = ContentsOf(original_);
    std::size_t place = contents.find(text);
    ASSERT_NE(place, std::string::npos);
    for (; place != std::string::npos; place = contents.find(text, place)) {
      contents.replace(place, replacement.size(), replacement);
    }
    WriteFile(file, contents);
  }
  static Refusal NotFound(const std::wstring& source = kOpeningSource) {
    const std::wstring names = sizeof(void*) == 8 ? L"Gpib-32.dll or ni4882.dll" : L"Gpib-32.dll";
    return {ControlError(53), source, L"File not found: " + names + L" (the GPIB driver is not installed)"};
  }
  static Refusal ErrorInLoading(const std::wstring& why) {
    return {ControlError(48), kOpeningSource, L"Error in loading the GPIB driver Gpib-32.dll (" + why + L")"};
  }
  static void ExpectWorking(IeeeClient& ieee) {
    EXPECT_EQ(ieee.Converse(L"*IDN?"), kDone);
    EXPECT_EQ(ieee.reply.str(), L"KESP,GP488,SIM48805,1.0\n");
  }

  const fs::path folder_ = ProgramFolder();
  const fs::path driver_ = folder_ / kDriver;
  const fs::path elsewhere_ = folder_ / L"elsewhere";
  const fs::path original_ = elsewhere_ / kDriver;
  const fs::path library_ = folder_ / testing::UnitTest::GetInstance()->current_test_info()->name();
};

TEST_F(GpibInstallationTest, Missing_EveryCallRaises_LaterOnesTryAgain) {
  Run([&](IeeeClient& ieee) {
    EXPECT_EQ(ieee.WriteLine(L"t"), NotFound(kWritingSource));
    EXPECT_EQ(ieee.ReadLine(), NotFound(kReadingSource));
    EXPECT_EQ(ieee.Uninitialize(), kDone) << "nothing is open";
    EXPECT_EQ(ieee.AutoDetect(), NotFound());
    EXPECT_EQ(ieee.Initialize(), NotFound());
    Install(driver_);
    ExpectWorking(ieee);
  });
}

TEST_F(GpibInstallationTest, CurrentFolderAndPath_AreNotSearched) {
  std::array<wchar_t, 32768> path{};
  GetEnvironmentVariableW(L"PATH", path.data(), static_cast<DWORD>(path.size()));
  fs::current_path(elsewhere_);
  ASSERT_TRUE(SetEnvironmentVariableW(L"PATH", elsewhere_.c_str()));
  Run([](IeeeClient& ieee) { EXPECT_EQ(ieee.Initialize(), NotFound()); });
  SetEnvironmentVariableW(L"PATH", path.data());
  fs::current_path(folder_);
}

TEST_F(GpibInstallationTest, FolderThatTheProgramNames_IsSearched) {
  const DLL_DIRECTORY_COOKIE named = AddDllDirectory(elsewhere_.c_str());
  ASSERT_NE(named, nullptr);
  Run(&ExpectWorking);
  RemoveDllDirectory(named);
}

TEST_F(GpibInstallationTest, FolderOfTheLibrary_IsSearchedForTheDriverAndWhatItNeeds) {
  Run([&](IeeeClient& ieee) {
    InstallWith(library_ / kDriver, "msvcrt.dll", "nsvcrt.dll");
    EXPECT_EQ(ieee.Initialize(), ErrorInLoading(L"a DLL that it needs is missing"));
    std::array<wchar_t, MAX_PATH> system{};
    GetSystemDirectoryW(system.data(), static_cast<UINT>(system.size()));
    fs::copy_file(fs::path(system.data()) / L"msvcrt.dll", library_ / L"nsvcrt.dll");
    ExpectWorking(ieee);
  });
}

TEST_F(GpibInstallationTest, BesideTheLibraryAndBesideTheProgram_ThatOfTheProgramIsTaken) {
  InstallWith(library_ / kDriver, "SIM48805", "SIMwrong");
  Install(driver_);
  Run(&ExpectWorking);
}

TEST_F(GpibInstallationTest, FileThatIsNoDll_IsAnErrorInLoading_UntilItIsReplaced) {
  Run([&](IeeeClient& ieee) {
    // The second is the beginning of a good one.
    for (const std::string& contents :
         {std::string("This is no DLL."), ContentsOf(original_).substr(0, 64)}) {
      WriteFile(driver_, contents);
      EXPECT_EQ(ieee.Initialize(), ErrorInLoading(L"system error 193"));
    }
    fs::remove(driver_);
    Install(driver_);
    ExpectWorking(ieee);
  });
}

TEST_F(GpibInstallationTest, DllWithoutAnEntryPoint_IsNamed_UntilItIsReplaced) {
  Run([&](IeeeClient& ieee) {
    // In the list of exports, which stays in order, and where debuggers look.
    InstallWith(driver_, std::string("\0ibeos\0", 7), std::string("\0ibeoz\0", 7));
    EXPECT_EQ(ieee.Initialize(),
              (Refusal{ControlError(453), kOpeningSource,
                       L"Can't find the entry point ibeos in the GPIB driver Gpib-32.dll"}));
    ASSERT_TRUE(fs::remove(driver_)) << "it was not given up";
    Install(driver_);
    ExpectWorking(ieee);
  });
}

TEST_F(GpibInstallationTest, OtherName_IsTakenOn64BitOnly) {
  Install(folder_ / kOtherName);
  Run([](IeeeClient& ieee) {
    if (sizeof(void*) == 8) {
      ExpectWorking(ieee);
    } else {
      EXPECT_EQ(ieee.Initialize(), NotFound());
    }
  });
}

TEST_F(GpibInstallationTest, BothNames_BrokenFirstOneIsNotPassedOver) {
  WriteFile(driver_, "This is no DLL.");
  Install(folder_ / kOtherName);
  Run([](IeeeClient& ieee) { EXPECT_EQ(ieee.Initialize(), ErrorInLoading(L"system error 193")); });
}

}  // namespace
}  // namespace kesp::clients
