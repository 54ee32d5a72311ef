// The doctor's rules about the registry.
#include "console/doctor_fixture.h"
#include "console/width_text.h"

namespace kesp::console {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kBeside = R"(C:\kesp\win64\KespCommObj.dll)";
constexpr const char* kOther = R"(C:\old\KespCommObj.dll)";

class DoctorRegistrationTest : public testing::Test {
 protected:
  std::vector<std::string> Of(int bits) {
    const Findings findings = RegistrationFindings(machine_, bits);
    ExpectRemedies(findings);
    return Lines(findings);
  }

  MachineFake machine_;
};

TEST_F(DoctorRegistrationTest, NothingRegistered_IsAFault) {
  machine_.system.windows_folder = R"(D:\WinNT\)";
  EXPECT_THAT(
      Of(64),
      ElementsAre(R"(FAIL 64-bit clients: get "class not registered" (80040154; 429 in Visual Basic): )"
                  R"(no 64-bit library is registered -> as administrator: )"
                  R"(D:\WinNT\System32\regsvr32.exe "C:\kesp\win64\KespCommObj.dll")"));
}

TEST_F(DoctorRegistrationTest, OnlyTheOtherWidth_IsExplained) {
  machine_.Register(64, Hive::kAllUsers, kBeside);
  EXPECT_THAT(Of(32),
              ElementsAre(HasSubstr(
                  "the 64-bit one serves 64-bit programs only -> "
                  R"(as administrator: C:\Windows\SysWOW64\regsvr32.exe "C:\kesp\win32\KespCommObj.dll")")));
  EXPECT_THAT(Of(32), ElementsAre(StartsWith("WARN ")));
}

TEST_F(DoctorRegistrationTest, LibraryThatIsNotDelivered_IsInstalled) {
  machine_.delivered[64] = "";
  EXPECT_THAT(Of(64), ElementsAre(HasSubstr("-> install the library with its setup program")));
}

TEST_F(DoctorRegistrationTest, LibraryInTheFolderOfOneUser_IsNotRegisteredForAll) {
  machine_.system.user_folders = {R"(c:\KESP)"};
  const char* for_user = R"(install the library with its setup program; for this user alone: )"
                         R"(C:\Windows\System32\regsvr32.exe /n /i:user "C:\kesp\win64\KespCommObj.dll")";
  EXPECT_THAT(Of(64), ElementsAre(testing::EndsWith(std::string(" -> ") + for_user)));
  machine_.system.user_folders = {R"(C:\kes)", R"(C:\kesp\win64\KespCommObj.dll)", ""};
  EXPECT_THAT(Of(64), ElementsAre(HasSubstr(" -> as administrator: ")));
}

TEST_F(DoctorRegistrationTest, RegisteredBeside_IsWell) {
  machine_.Register(64, Hive::kAllUsers, R"(c:\KESP\win64\KespCommObj.dll)");
  machine_.files[R"(c:\KESP\win64\KespCommObj.dll)"] = machine_.files[kBeside];
  EXPECT_THAT(Of(64),
              ElementsAre(R"(OK 64-bit clients: load c:\KESP\win64\KespCommObj.dll 1.0.0, registered for )"
                          "all users; it was delivered with this kesp",
                          "OK 64-bit clients as administrator: load the same",
                          "OK 64-bit type library: is registered from the same file"));
}

TEST_F(DoctorRegistrationTest, ACopy_IsWellWhenItIsTheSame) {
  machine_.Register(64, Hive::kAllUsers, kOther);
  machine_.files[kOther] = machine_.files[kBeside];
  EXPECT_THAT(Of(64)[0], HasSubstr("; the same as delivered with this kesp"));
  machine_.files[kOther] = {64, "0.9.0", "older"};
  EXPECT_THAT(Of(64)[0],
              StartsWith(R"(WARN 64-bit clients: load C:\old\KespCommObj.dll 0.9.0, registered for all )"
                         "users; not the one delivered with this kesp, 1.0.0 -> as administrator: "));
  for (const char* version : {"1.0.0", "1.0.0.1", "1.1.0"}) {
    machine_.files[kOther] = {64, version, "no older one"};
    EXPECT_THAT(Of(64)[0],
                HasSubstr("1.0.0 -> to try what clients get, use the kesp.exe beside that library"));
  }
}

TEST_F(DoctorRegistrationTest, FileThatIsGoneOrOfTheOtherWidth_IsAFault) {
  machine_.Register(64, Hive::kAllUsers, kOther);
  EXPECT_THAT(Of(64)[0],
              StartsWith(R"(FAIL 64-bit clients: C:\old\KespCommObj.dll is registered, but there is no )"));
  machine_.files[kOther] = {32, "1.0.0", "two"};
  EXPECT_THAT(Of(64)[0],
              StartsWith(R"(FAIL 64-bit clients: C:\old\KespCommObj.dll is registered, but is no 64-bit )"));
}

TEST_F(DoctorRegistrationTest, ForOneUser_ProgramsAsAdministratorDoNotSeeIt) {
  machine_.Register(64, Hive::kThisUser, kBeside);
  EXPECT_THAT(Of(64),
              ElementsAre(HasSubstr("registered for this user; it was"),
                          StartsWith(R"(WARN 64-bit clients as administrator: get "class not registered")"),
                          StartsWith("OK ")));
}

TEST_F(DoctorRegistrationTest, ForBoth_TheUsersGoesFirst) {
  machine_.Register(64, Hive::kAllUsers, kOther);
  machine_.Register(64, Hive::kThisUser, kBeside);
  machine_.files[kOther] = machine_.files[kBeside];
  EXPECT_THAT(Of(64), ElementsAre(HasSubstr("registered for this user"),
                                  StartsWith("WARN 64-bit clients as administrator: load another library: "
                                             R"(C:\old\KespCommObj.dll, registered for all users)"),
                                  StartsWith("OK ")));
  machine_.registrations[64] = {};
  machine_.Register(64, Hive::kAllUsers, kBeside);
  machine_.Register(64, Hive::kThisUser, kBeside);
  EXPECT_THAT(Of(64)[1], HasSubstr("OK 64-bit clients as administrator: load C:"));
}

TEST_F(DoctorRegistrationTest, UsersOwnRegistration_IsMendedForTheUser) {
  machine_.Register(64, Hive::kThisUser, kOther);
  machine_.files[kOther] = {64, "0.9.10", "older"};
  EXPECT_THAT(Of(64)[0], testing::EndsWith(R"(regsvr32.exe /n /i:user "C:\kesp\win64\KespCommObj.dll")"));
}

TEST_F(DoctorRegistrationTest, InPartOrFromSeveralFiles_IsAFault) {
  machine_.Register(64, Hive::kAllUsers, kBeside);
  machine_.registrations[64].classes[2].library = kOther;
  EXPECT_THAT(Of(64)[0],
              StartsWith(R"(FAIL 64-bit clients: get their classes from several files: C:\kesp\win64\)"
                         R"(KespCommObj.dll, C:\old\KespCommObj.dll -> )"));
  machine_.registrations[64].classes.erase(machine_.registrations[64].classes.begin() + 2);
  EXPECT_THAT(Of(64)[0], HasSubstr("is registered in part; missing: CKespTCP"));
}

TEST_F(DoctorRegistrationTest, TypeLibrary_IsRegisteredFromTheSameFile) {
  machine_.Register(64, Hive::kAllUsers, kBeside);
  machine_.registrations[64].type_library = "";
  EXPECT_THAT(Of(64)[2], StartsWith("FAIL 64-bit type library: is not registered"));
  machine_.registrations[64].type_library = kOther;
  EXPECT_THAT(Of(64)[2], StartsWith("WARN 64-bit type library: is registered from another file: C:\\old"));
}

TEST_F(DoctorRegistrationTest, TypeLibrary_IsMendedByTheLibraryAndTheHiveOfClients) {
  machine_.Register(64, Hive::kThisUser, kOther);
  machine_.registrations[64].type_library = "";
  machine_.files[kOther] = {64, "1.0.0", "one"};
  EXPECT_THAT(Of(64)[2], testing::EndsWith(R"(regsvr32.exe /n /i:user "C:\old\KespCommObj.dll")"));
  machine_.files.erase(kOther);
  EXPECT_THAT(Of(64)[2], testing::EndsWith(R"(regsvr32.exe /n /i:user "C:\kesp\win64\KespCommObj.dll")"));
}

TEST(IsNewer, ComparesNumbers) {
  EXPECT_TRUE(IsNewer("1.10.0", "1.9.0"));
  EXPECT_TRUE(IsNewer("1.0.0.1", "1.0.0"));
  EXPECT_FALSE(IsNewer("1.0.0", "1.0.0"));
  EXPECT_FALSE(IsNewer("", "1.0.0"));
}

TEST(FolderBeside, TheLastNameIsReplaced) {
  EXPECT_EQ(FolderBeside(R"(C:\kesp\win64\)", "win32"), R"(C:\kesp\win32\)");
  EXPECT_EQ(FolderBeside(R"(C:\win64\)", "win32"), R"(C:\win32\)");
  EXPECT_EQ(FolderBeside(R"(C:\)", "win32"), "");
  EXPECT_EQ(FolderBeside("", "win32"), "");
}

TEST_F(DoctorRegistrationTest, WindowsOf32Bit_HasOneSystemFolder) {
  machine_.system.windows_bits = 32;
  machine_.system.both_widths = false;
  machine_.Register(64, Hive::kAllUsers, kBeside);  // is not looked at
  EXPECT_THAT(Of(32),
              ElementsAre(HasSubstr(
                  R"(no 32-bit library is registered -> as administrator: C:\Windows\System32\regsvr32)")));
}

}  // namespace
}  // namespace kesp::console
