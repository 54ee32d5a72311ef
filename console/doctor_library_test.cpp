// The doctor's rules about the library that was tried out, and its trace.
#include "console/doctor_fixture.h"

namespace kesp::console {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

class DoctorLibraryTest : public testing::Test {
 protected:
  DoctorLibraryTest() {
    for (const std::string& name : PublicClasses()) machine_.beside.classes.push_back({name, ""});
    machine_.registered = machine_.beside;
  }

  std::vector<std::string> Of(const Findings& findings) {
    ExpectRemedies(findings);
    return Lines(findings);
  }

  MachineFake machine_;
};

TEST_F(DoctorLibraryTest, NotRegistered_OnlyTheOneBesideIsTriedOut) {
  EXPECT_THAT(Of(LibraryFindings(machine_)),
              ElementsAre("OK 64-bit library beside kesp: each of its 6 classes was created",
                          "OK 64-bit library beside kesp: its type library was loaded, and is its own",
                          "OK 64-bit library beside kesp: events were connected"));
  EXPECT_THAT(machine_.examined, ElementsAre(R"(C:\kesp\win64\KespCommObj.dll)"));
}

TEST_F(DoctorLibraryTest, Registered_IsTriedOutAsWell) {
  machine_.Register(64, Hive::kAllUsers, "C:\\x.dll");
  machine_.registered.classes[1].error = "80070005, access is denied";
  machine_.registered.event = {"__CKespTCP", "80040200"};
  EXPECT_THAT(
      Of(LibraryFindings(machine_)),
      testing::IsSupersetOf(
          {StartsWith("FAIL 64-bit registered library: CKespCOMPort3 cannot be created: 80070005, access is "
                      "denied -> as administrator: C:"),
           StartsWith("OK 64-bit registered library: its type library"),
           StartsWith("FAIL 64-bit registered library: __CKespTCP: 80040200 -> ")}));
}

TEST_F(DoctorLibraryTest, AsAdministrator_TheUsersOwnRegistrationIsNone) {
  machine_.Register(64, Hive::kThisUser, "C:\\x.dll");
  machine_.system.elevated = true;
  EXPECT_EQ(LibraryFindings(machine_).size(), 3U);
  machine_.system.elevated = false;
  EXPECT_EQ(LibraryFindings(machine_).size(), 6U);
}

TEST_F(DoctorLibraryTest, LibraryThatIsMissingOrDoesNotLoad_IsAFault) {
  machine_.beside.error = "126, a DLL is missing";
  EXPECT_THAT(Of(LibraryFindings(machine_)),
              ElementsAre(StartsWith(
                  "FAIL 64-bit library beside kesp: cannot be loaded: 126, a DLL is missing -> ")));
  machine_.delivered[64] = "";
  EXPECT_THAT(
      Of(LibraryFindings(machine_)),
      ElementsAre(StartsWith("FAIL 64-bit library beside kesp: KespCommObj.dll is not beside kesp.exe -> ")));
}

TEST_F(DoctorLibraryTest, Trace_LiesBesideTheLibraryThatClientsGet) {
  EXPECT_THAT(
      Of(TraceFindings(machine_, 32)),
      ElementsAre(R"(OK 32-bit default trace: C:\kesp\win32\commobjout.log can be written by this user)"));
  machine_.Register(32, Hive::kAllUsers, R"(C:\Program Files\k\KespCommObj.dll)");
  machine_.can_write = false;
  EXPECT_THAT(
      Of(TraceFindings(machine_, 32)),
      ElementsAre(R"(WARN 32-bit default trace: C:\Program Files\k\commobjout.log cannot be written by this )"
                  "user -> set DebugFilename to a file in a folder of your own; with kesp, --trace FILE"));
}

TEST_F(DoctorLibraryTest, Trace_NoLibraryNoFinding) {
  machine_.delivered[64] = "";
  EXPECT_EQ(TraceFindings(machine_, 64), Findings());
}

}  // namespace
}  // namespace kesp::console
