// Unit tests of the binding: which files are tried, what is missing, and that all is looked up once.
#include "gpib/gpib_binding.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "gpib/gpib_driver_fake.h"
#include "support/failure_fixture.h"

namespace kesp {
namespace {

using Names = std::vector<std::wstring>;

class GpibBindingTest : public testing::Test {
 protected:
  Raised Refusal() {
    return RaisedBy([this] { BindGpibDriver(bus_, L"[source]"); });
  }

  GpibDriverFake bus_;
};

TEST_F(GpibBindingTest, WholeDriver_EachEntryPointIsLookedUpOnce) {
  const GpibEntryPoints table = BindGpibDriver(bus_, L"[source]");
  EXPECT_EQ(bus_.lookups, (std::map<std::string, int>{{"ibdev", 1},
                                                      {"ibclr", 1},
                                                      {"ibeos", 1},
                                                      {"ibwrt", 1},
                                                      {"ibrd", 1},
                                                      {"ibonl", 1},
                                                      {"RegisterGpibGlobalsForThread", 1},
                                                      {"UnregisterGpibGlobalsForThread", 1}}));
  EXPECT_EQ(bus_.loads, (Names{L"Gpib-32.dll"}));
  table.ibeos(7, 1034);
  table.ibonl(7, 0);
  EXPECT_EQ(bus_.heard, (std::vector<std::string>{"ibeos(7,1034)", "ibonl(7,0)"}));
}

TEST_F(GpibBindingTest, FileMissing_SaysWhich) {
  bus_.load_errors[L"Gpib-32.dll"] = 126;
  EXPECT_EQ(Refusal(),
            (Raised{53, L"[source]", L"File not found: Gpib-32.dll (the GPIB driver is not installed)"}));
  EXPECT_TRUE(bus_.lookups.empty());
}

TEST_F(GpibBindingTest, SeveralNames_FirstThatIsThereIsTaken) {
  bus_.file_names = {L"Gpib-32.dll", L"ni4882.dll"};
  bus_.load_errors[L"Gpib-32.dll"] = 126;
  BindGpibDriver(bus_, L"[source]");
  EXPECT_EQ(bus_.loads, (Names{L"Gpib-32.dll", L"ni4882.dll"}));
  bus_.loads.clear();
  bus_.load_errors.clear();
  BindGpibDriver(bus_, L"[source]");
  EXPECT_EQ(bus_.loads, (Names{L"Gpib-32.dll"}));
}

TEST_F(GpibBindingTest, SeveralNamesAndNoneIsThere_SaysAll) {
  bus_.file_names = {L"Gpib-32.dll", L"ni4882.dll"};
  bus_.load_errors = {{L"Gpib-32.dll", 126}, {L"ni4882.dll", 126}};
  EXPECT_EQ(Refusal(),
            (Raised{53, L"[source]",
                    L"File not found: Gpib-32.dll or ni4882.dll (the GPIB driver is not installed)"}));
}

TEST_F(GpibBindingTest, FolderOfTheLibrary_IsLast) {
  bus_.file_names = {L"Gpib-32.dll", L"ni4882.dll"};
  bus_.load_errors = {{L"Gpib-32.dll", 126}, {L"ni4882.dll", 126}};
  bus_.beside[L"ni4882.dll"] = 0;
  BindGpibDriver(bus_, L"[source]");
  EXPECT_EQ(bus_.loads, (Names{L"Gpib-32.dll", L"ni4882.dll", L"beside Gpib-32.dll", L"beside ni4882.dll"}));
  bus_.beside[L"Gpib-32.dll"] = 193;
  EXPECT_EQ(Refusal().number, 48);
}

TEST_F(GpibBindingTest, FileCannotBeLoaded_SaysWhyAndTriesNoOther) {
  bus_.file_names = {L"Gpib-32.dll", L"ni4882.dll"};
  bus_.load_errors[L"Gpib-32.dll"] = 193;  // not an image of this width
  EXPECT_EQ(Refusal(),
            (Raised{48, L"[source]", L"Error in loading the GPIB driver Gpib-32.dll (system error 193)"}));
  EXPECT_EQ(bus_.loads, (Names{L"Gpib-32.dll"}));
}

TEST_F(GpibBindingTest, FileLacksAnotherDll_SaysSo) {
  bus_.load_errors[L"Gpib-32.dll"] = kGpibLibraryNeedsAnother;
  EXPECT_EQ(Refusal(),
            (Raised{48, L"[source]",
                    L"Error in loading the GPIB driver Gpib-32.dll (a DLL that it needs is missing)"}));
}

class MissingEntryPointTest : public GpibBindingTest, public testing::WithParamInterface<const char*> {};

TEST_P(MissingEntryPointTest, IsNamed) {
  const std::string name = GetParam();
  bus_.missing = {name};
  EXPECT_EQ(Refusal(), (Raised{453, L"[source]",
                               L"Can't find the entry point " + std::wstring(name.begin(), name.end()) +
                                   L" in the GPIB driver Gpib-32.dll"}));
  EXPECT_EQ(bus_.unloads, 1);
}

INSTANTIATE_TEST_SUITE_P(All, MissingEntryPointTest,
                         testing::Values("ibdev", "ibclr", "ibeos", "ibwrt", "ibrd", "ibonl",
                                         "RegisterGpibGlobalsForThread", "UnregisterGpibGlobalsForThread"),
                         [](const testing::TestParamInfo<const char*>& info) { return info.param; });

}  // namespace
}  // namespace kesp
