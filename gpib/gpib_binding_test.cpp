// Unit tests of the binding: which files are tried, what is missing, and that all is looked up once.
#include "gpib/gpib_binding.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "gpib/gpib_driver_fake.h"
#include "support/failure_fixture.h"
#include "support/lines_fixture.h"

namespace kesp {
namespace {

constexpr const char* kEntryPoints[] = {"ibdev",
                                        "ibclr",
                                        "ibeos",
                                        "ibwrt",
                                        "ibrd",
                                        "ibonl",
                                        "RegisterGpibGlobalsForThread",
                                        "UnregisterGpibGlobalsForThread"};

class GpibBindingTest : public testing::Test {
 protected:
  Raised Refusal() {
    return RaisedBy([this] { BindGpibDriver(bus_, L"[source]"); });
  }
  // Binds and tells where the driver was looked for.
  Lines Tried() {
    bus_.loads.clear();
    BindGpibDriver(bus_, L"[source]");
    return bus_.loads;
  }

  GpibDriverFake bus_;
};

TEST_F(GpibBindingTest, WholeDriver_EachEntryPointIsLookedUpOnce) {
  const GpibEntryPoints table = BindGpibDriver(bus_, L"[source]");
  std::map<std::string, int> once;
  for (const char* const name : kEntryPoints) once[name] = 1;
  EXPECT_EQ(bus_.lookups, once);
  EXPECT_EQ(bus_.loads, (Lines{L"Gpib-32.dll"}));
  table.ibeos(7, 1034);
  table.ibonl(7, 0);
  EXPECT_EQ(bus_.heard, (std::vector<std::string>{"ibeos(7,1034)", "ibonl(7,0)"}));
}

TEST_F(GpibBindingTest, FileMissing_SaysWhich) {
  bus_.load_errors[L"Gpib-32.dll"] = kGpibLibraryNotFound;
  EXPECT_EQ(Refusal(),
            (Raised{53, L"[source]", L"File not found: Gpib-32.dll (the GPIB driver is not installed)"}));
  EXPECT_TRUE(bus_.lookups.empty());
}

TEST_F(GpibBindingTest, SeveralNames_FirstThatIsThereIsTaken_FolderOfTheLibraryIsLast) {
  bus_.file_names = {L"Gpib-32.dll", L"ni4882.dll"};
  EXPECT_EQ(Tried(), (Lines{L"Gpib-32.dll"}));
  bus_.load_errors[L"Gpib-32.dll"] = kGpibLibraryNotFound;
  EXPECT_EQ(Tried(), (Lines{L"Gpib-32.dll", L"ni4882.dll"}));
  bus_.load_errors[L"ni4882.dll"] = kGpibLibraryNotFound;
  bus_.beside[L"ni4882.dll"] = 0;
  EXPECT_EQ(Tried(), (Lines{L"Gpib-32.dll", L"ni4882.dll", L"beside Gpib-32.dll", L"beside ni4882.dll"}));
  bus_.beside[L"Gpib-32.dll"] = 193;
  EXPECT_EQ(Refusal().number, 48);
  bus_.beside.clear();
  EXPECT_EQ(Refusal(),
            (Raised{53, L"[source]",
                    L"File not found: Gpib-32.dll or ni4882.dll (the GPIB driver is not installed)"}));
}

TEST_F(GpibBindingTest, FileCannotBeLoaded_SaysWhyAndTriesNoOther) {
  bus_.file_names = {L"Gpib-32.dll", L"ni4882.dll"};
  // 193: not an image of this width.
  for (const auto& [error, why] : {std::pair<std::uint32_t, const wchar_t*>{193, L"system error 193"},
                                   {kGpibLibraryNeedsAnother, L"a DLL that it needs is missing"}}) {
    bus_.load_errors[L"Gpib-32.dll"] = error;
    EXPECT_EQ(Refusal(),
              (Raised{48, L"[source]",
                      L"Error in loading the GPIB driver Gpib-32.dll (" + std::wstring(why) + L")"}));
  }
  EXPECT_EQ(bus_.loads, (Lines{L"Gpib-32.dll", L"Gpib-32.dll"}));
}

TEST_F(GpibBindingTest, EntryPointMissing_IsNamedAndTheFileGivenUp) {
  int unloads = 0;
  for (const char* const name : kEntryPoints) {
    bus_.missing = {name};
    EXPECT_EQ(Refusal(),
              (Raised{453, L"[source]",
                      L"Can't find the entry point " + std::wstring(name, name + std::strlen(name)) +
                          L" in the GPIB driver Gpib-32.dll"}));
    EXPECT_EQ(bus_.unloads, ++unloads);
  }
}

}  // namespace
}  // namespace kesp
