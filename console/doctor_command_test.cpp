// "kesp doctor".
#include "console/command_fixture.h"
#include "console/doctor_fixture.h"
#include "console/finding_text.h"

namespace kesp::console {
namespace {

class DoctorCommandTest : public CommandFixture {};

TEST_F(DoctorCommandTest, ExitCode_IsTheNumberOfFails) {
  EXPECT_EQ(Run(DoctorOptions{}), 2) << "neither width is registered";
  EXPECT_NE(console_.output.find(" 2 FAIL\n"), std::string::npos) << console_.output;
  machine_.Register(64, Hive::kAllUsers, R"(C:\kesp\win64\KespCommObj.dll)");
  EXPECT_EQ(Run(DoctorOptions{}), 0);
}

TEST_F(DoctorCommandTest, Json_HoldsWhatThePageShows) {
  Run(DoctorOptions{.json = true, .this_width_only = false});
  const auto findings = FindingsOf(console_.output);
  ASSERT_TRUE(findings);
  EXPECT_EQ(*findings, Everything(machine_));
  ExpectRemedies(*findings);
}

TEST_F(DoctorCommandTest, ThisWidthOnly_IsSilentAboutTheOther) {
  EXPECT_EQ(Run(DoctorOptions{.json = false, .this_width_only = true}), 1);
  EXPECT_EQ(console_.output.find("32-bit"), std::string::npos) << console_.output;
  EXPECT_EQ(console_.output.find("Windows "), std::string::npos);
  EXPECT_NE(console_.output.find("64-bit clients"), std::string::npos);
}

TEST_F(DoctorCommandTest, NameOfTheUser_IsNotShown) {
  machine_.system.user_folders = {R"(C:\Users\Jo)"};
  machine_.Register(64, Hive::kThisUser, R"(C:\Users\Jo\kesp\KespCommObj.dll)");
  Run(DoctorOptions{});
  EXPECT_EQ(console_.output.find("load C:\\Users\\Jo\\"), std::string::npos) << console_.output;
  EXPECT_NE(console_.output.find(R"(%USERPROFILE%\kesp\KespCommObj.dll)"), std::string::npos)
      << console_.output;
}

}  // namespace
}  // namespace kesp::console
