// Registering and unregistering for the machine and for one user. Runs alone: it takes the registration away.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "tests/clients/library_module.h"
#include "tests/clients/public_classes.h"
#include "tests/clients/registry_view.h"

namespace kesp::clients {
namespace {

using Names = std::set<std::wstring>;
using Values = std::map<std::wstring, std::wstring>;

Names Difference(const Names& more, const Names& less) {
  Names difference;
  std::set_difference(more.begin(), more.end(), less.begin(), less.end(),
                      std::inserter(difference, difference.end()));
  return difference;
}

// Begins with a library that is registered for the machine, which is how it is left again.
class RegistrationTest : public testing::Test {
 protected:
  RegistrationTest() {
    EXPECT_EQ(module_.UnregisterServer(), S_OK);
    EXPECT_EQ(module_.Install(FALSE, L"user"), S_OK);
    machine_ = RegisteredNames(Hive::kMachine);
    user_ = RegisteredNames(Hive::kUser);
  }
  ~RegistrationTest() override {
    EXPECT_EQ(module_.Install(FALSE, L"user"), S_OK);
    EXPECT_EQ(module_.RegisterServer(), S_OK);
  }

  // Every key that a registration adds.
  static Names OwnNames() {
    Names names = {L"\\TypeLib\\" + GuidText(LIBID_KespCommObj)};
    for (const PublicClass& one : kPublicClasses) {
      names.insert(L"\\Interface\\" + GuidText(one.default_interface));
      if (one.events != nullptr) names.insert(L"\\Interface\\" + GuidText(*one.events));
      if (!one.is_creatable()) continue;
      names.insert(L"\\CLSID\\" + GuidText(one.clsid));
      names.insert(std::wstring(L"\\KespCommObj.") + one.name);
      names.insert(std::wstring(L"\\KespCommObj.") + one.name + L".1");
    }
    return names;
  }

  static bool CanCreate() {
    const Apartment apartment;
    ComPtr<IUnknown> object;
    return CoCreateInstance(__uuidof(CKespCommObj), nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                            reinterpret_cast<void**>(object.GetAddressOf())) == S_OK;
  }

  const std::wstring path_ = RegisteredPath();
  LibraryModule module_;
  // Without the library.
  Names machine_;
  Names user_;
};

TEST_F(RegistrationTest, Unregistered_NothingOfTheLibraryIsLeft) {
  const Names own = OwnNames();
  for (const Hive hive : {Hive::kMachine, Hive::kUser}) {
    const Names names = RegisteredNames(hive);
    Names left;
    std::set_intersection(names.begin(), names.end(), own.begin(), own.end(),
                          std::inserter(left, left.end()));
    EXPECT_EQ(left, Names());
    for (const std::wstring& name : names) EXPECT_EQ(name.find(L"Kesp"), std::wstring::npos);
  }
  EXPECT_FALSE(CanCreate());
}

TEST_F(RegistrationTest, Registered_AddsItsKeysForTheMachineAndTakesThemAwayAgain) {
  EXPECT_EQ(module_.RegisterServer(), S_OK);
  EXPECT_EQ(Difference(RegisteredNames(Hive::kMachine), machine_), OwnNames());
  EXPECT_EQ(RegisteredNames(Hive::kUser), user_);
  EXPECT_TRUE(CanCreate());
  EXPECT_EQ(module_.UnregisterServer(), S_OK);
  EXPECT_EQ(RegisteredNames(Hive::kMachine), machine_);
  EXPECT_FALSE(CanCreate());
}

TEST_F(RegistrationTest, RegisteredTwice_IsRegisteredOnce) {
  EXPECT_EQ(module_.RegisterServer(), S_OK);
  const Values values = ValuesBelow(Hive::kMachine, L"CLSID\\" + GuidText(__uuidof(CKespTCP)));
  EXPECT_EQ(module_.RegisterServer(), S_OK);
  EXPECT_EQ(ValuesBelow(Hive::kMachine, L"CLSID\\" + GuidText(__uuidof(CKespTCP))), values);
  EXPECT_EQ(module_.UnregisterServer(), S_OK);
  EXPECT_EQ(module_.UnregisterServer(), S_OK) << "nothing to do";
  EXPECT_EQ(RegisteredNames(Hive::kMachine), machine_);
}

TEST_F(RegistrationTest, ClassEntries_NameTheServerItsThreadingAndItsProgIds) {
  EXPECT_EQ(module_.RegisterServer(), S_OK);
  for (const PublicClass& one : kPublicClasses) {
    if (!one.is_creatable()) continue;
    const std::wstring key = L"CLSID\\" + GuidText(one.clsid);
    Values values = ValuesBelow(Hive::kMachine, key);
    const std::wstring prog_id = std::wstring(L"KespCommObj.") + one.name;
    EXPECT_EQ(values[key + L"\\InprocServer32"], path_);
    EXPECT_EQ(values[key + L"\\InprocServer32\\ThreadingModel"], L"Apartment");
    EXPECT_EQ(values[key + L"\\ProgID"], prog_id + L".1");
    EXPECT_EQ(values[key + L"\\VersionIndependentProgID"], prog_id);
    EXPECT_EQ(values[key + L"\\TypeLib"], GuidText(LIBID_KespCommObj));
    EXPECT_TRUE(values.contains(key + L"\\Programmable"));
    EXPECT_NE(values[key], L"");
    Values program = ValuesBelow(Hive::kMachine, prog_id);
    EXPECT_EQ(program[prog_id + L"\\CLSID"], GuidText(one.clsid));
    EXPECT_EQ(program[prog_id + L"\\CurVer"], prog_id + L".1");
    EXPECT_EQ(ValuesBelow(Hive::kMachine, prog_id + L".1")[prog_id + L".1\\CLSID"], GuidText(one.clsid));
  }
}

TEST_F(RegistrationTest, LibraryAndInterfaces_AreThereForTheMarshaler) {
  EXPECT_EQ(module_.RegisterServer(), S_OK);
  const std::wstring library = GuidText(LIBID_KespCommObj);
  Values values = ValuesBelow(Hive::kMachine, L"TypeLib\\" + library);
  const std::wstring version = L"TypeLib\\" + library + L"\\1.0";
  EXPECT_EQ(values[version], L"Kesp Communication Object Library");
  EXPECT_EQ(values[version + (sizeof(void*) == 8 ? L"\\0\\win64" : L"\\0\\win32")], path_);
  EXPECT_EQ(values[version + L"\\HELPDIR"] + L"\\KespCommObj.dll", path_);
  for (const PublicClass& one : kPublicClasses) {
    const std::wstring key = L"Interface\\" + GuidText(one.default_interface);
    Values entry = ValuesBelow(Hive::kMachine, key);
    EXPECT_EQ(entry[key], one.interface_name);
    EXPECT_EQ(entry[key + L"\\ProxyStubClsid32"], L"{00020424-0000-0000-C000-000000000046}");
    EXPECT_EQ(entry[key + L"\\TypeLib"], library);
    EXPECT_EQ(entry[key + L"\\TypeLib\\Version"], L"1.0");
  }
}

TEST_F(RegistrationTest, InstalledForTheUser_TouchesTheUsersKeysOnly) {
  EXPECT_EQ(module_.Install(TRUE, L"user"), S_OK);
  EXPECT_EQ(Difference(RegisteredNames(Hive::kUser), user_), OwnNames());
  EXPECT_EQ(RegisteredNames(Hive::kMachine), machine_);
  const std::wstring key = L"CLSID\\" + GuidText(__uuidof(CKespTCP));
  EXPECT_EQ(ValuesBelow(Hive::kUser, key)[key + L"\\InprocServer32"], path_);
  // Windows creates objects of the user's classes now; Wine's COM looks at those of the machine only.
  EXPECT_EQ(module_.Install(FALSE, L"USER"), S_OK) << "the word has no case";
  EXPECT_EQ(RegisteredNames(Hive::kUser), user_);
}

TEST_F(RegistrationTest, InstalledForBoth_EachIsTakenAwayAlone) {
  EXPECT_EQ(module_.Install(TRUE, L"user"), S_OK);
  EXPECT_EQ(module_.Install(TRUE, nullptr), S_OK);
  EXPECT_EQ(module_.Install(FALSE, L"user"), S_OK);
  EXPECT_EQ(Difference(RegisteredNames(Hive::kMachine), machine_), OwnNames());
  EXPECT_TRUE(CanCreate());
  EXPECT_EQ(module_.Install(TRUE, L"user"), S_OK);
  EXPECT_EQ(module_.Install(FALSE, L""), S_OK);
  EXPECT_EQ(RegisteredNames(Hive::kMachine), machine_);
  EXPECT_TRUE(RegisteredNames(Hive::kUser).contains(L"\\CLSID\\" + GuidText(__uuidof(CKespTCP))));
}

TEST_F(RegistrationTest, InstalledForTheSurrogate_ClassesNameAnApplicationThatLeavesWithThem) {
  EXPECT_EQ(module_.Install(TRUE, L"Surrogate"), S_OK);
  std::wstring application;
  for (const PublicClass& one : kPublicClasses) {
    if (!one.is_creatable()) continue;
    const std::wstring key = L"CLSID\\" + GuidText(one.clsid);
    application = L"AppID\\" + ValuesBelow(Hive::kMachine, key)[key + L"\\AppID"];
    const Values values = ValuesBelow(Hive::kMachine, application);
    EXPECT_EQ(values, (Values{{application, L"Kesp Communication Object Library"},
                              {application + L"\\DllSurrogate", L""}}));
  }
  EXPECT_EQ(module_.Install(FALSE, L"surrogate"), S_OK);
  EXPECT_EQ(ValuesBelow(Hive::kMachine, application), Values());
  EXPECT_EQ(RegisteredNames(Hive::kMachine), machine_);
}

// A library of the other width that is registered, too.
TEST_F(RegistrationTest, Unregistered_HelpFolderIsThatOfTheLibraryThatStays) {
  const std::wstring version = L"TypeLib\\" + GuidText(LIBID_KespCommObj) + L"\\1.0";
  const std::wstring other =
      L"Software\\Classes\\" + version + (sizeof(void*) == 8 ? L"\\0\\win32" : L"\\0\\win64");
  const std::wstring library = L"C:\\elsewhere\\KespCommObj.dll";
  EXPECT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, other.c_str(), nullptr, REG_SZ, library.c_str(),
                            static_cast<DWORD>((library.size() + 1) * sizeof(wchar_t))),
            ERROR_SUCCESS);
  EXPECT_EQ(module_.RegisterServer(), S_OK);
  EXPECT_EQ(ValuesBelow(Hive::kMachine, version)[version + L"\\HELPDIR"] + L"\\KespCommObj.dll", path_);
  EXPECT_EQ(module_.UnregisterServer(), S_OK);
  EXPECT_EQ(ValuesBelow(Hive::kMachine, version)[version + L"\\HELPDIR"], L"C:\\elsewhere");
  EXPECT_EQ(RegDeleteTreeW(HKEY_LOCAL_MACHINE, other.c_str()), ERROR_SUCCESS);
  EXPECT_EQ(module_.UnregisterServer(), S_OK) << "takes the rest away";
  EXPECT_EQ(RegisteredNames(Hive::kMachine), machine_);
}

TEST_F(RegistrationTest, InstallWithAnotherText_IsRefusedAndChangesNothing) {
  for (const wchar_t* text : {L"machine", L"users", L" ", L"user ", L"surrogate,user", L"user,surrogate"}) {
    EXPECT_EQ(module_.Install(TRUE, text), E_INVALIDARG) << testing::PrintToString(std::wstring(text));
    EXPECT_EQ(module_.Install(FALSE, text), E_INVALIDARG) << testing::PrintToString(std::wstring(text));
  }
  EXPECT_EQ(RegisteredNames(Hive::kMachine), machine_);
  EXPECT_EQ(RegisteredNames(Hive::kUser), user_);
}

}  // namespace
}  // namespace kesp::clients
