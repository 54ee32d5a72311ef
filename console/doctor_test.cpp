// The doctor's rules about all that is not the library.
#include "console/broadcast_adapter.h"
#include "console/doctor_fixture.h"
#include "console/finding_text.h"

namespace kesp::console {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class DoctorTest : public testing::Test {
 protected:
  static std::vector<std::string> Of(const Findings& findings) {
    ExpectRemedies(findings);
    return Lines(findings);
  }

  static NetworkAdapter Adapter(const std::string& name) {
    NetworkAdapter adapter;
    adapter.index = 7;
    adapter.name = name;
    adapter.device = "Gigabit";
    adapter.metric = 25;
    adapter.addresses = {"192.168.0.10"};
    return adapter;
  }

  MachineFake machine_;
};

TEST_F(DoctorTest, Gpib_NoDriver) {
  EXPECT_THAT(
      Of(GpibFindings(machine_, 64)),
      ElementsAre(
          "WARN 64-bit GPIB driver: no driver found: Gpib-32.dll or ni4882.dll -> for IEEE-488 install "
          "the driver of the board's maker, for 64-bit programs; nothing is to be done without "
          "IEEE-488"));
  EXPECT_THAT(Of(GpibFindings(machine_, 32)), ElementsAre(HasSubstr("no driver found: Gpib-32.dll -> ")));
}

TEST_F(DoctorTest, Gpib_TheFirstFileIsTaken) {
  machine_.gpib_files[64] = {{"C:\\a\\Gpib-32.dll", 64, "21.0", {}}, {"C:\\b\\ni4882.dll", 64, "", {}}};
  EXPECT_THAT(
      Of(GpibFindings(machine_, 64)),
      ElementsAre("OK 64-bit GPIB driver: C:\\a\\Gpib-32.dll 21.0 has each of the 8 entry points; not taken: "
                  "C:\\b\\ni4882.dll"));
}

TEST_F(DoctorTest, Gpib_FileOfTheOtherWidthOrWithoutAnEntryPoint_IsAFault) {
  machine_.gpib_files[64] = {{"C:\\a\\Gpib-32.dll", 32, "", {}}};
  EXPECT_THAT(
      Of(GpibFindings(machine_, 64)),
      ElementsAre(StartsWith("FAIL 64-bit GPIB driver: C:\\a\\Gpib-32.dll is no 64-bit library -> ")));
  machine_.gpib_files[64] = {{"C:\\a\\Gpib-32.dll", 64, "1.0", {"ibeos", "ibrd"}}};
  EXPECT_THAT(
      Of(GpibFindings(machine_, 64)),
      ElementsAre(StartsWith("FAIL 64-bit GPIB driver: C:\\a\\Gpib-32.dll 1.0 lacks ibeos, ibrd -> ")));
}

TEST_F(DoctorTest, Gpib_FileThatIsNoProgram) {
  const GpibFile file = GpibFileOf("C:\\a\\Gpib-32.dll", "text");
  EXPECT_EQ(file.bits, 0);
  machine_.gpib_files[32] = {file};
  EXPECT_THAT(Of(GpibFindings(machine_, 32)), ElementsAre(HasSubstr("is no 32-bit library")));
}

TEST_F(DoctorTest, Ports_LongLatencyIsPointedOut) {
  machine_.ports = SomePorts();
  const auto lines = Of(PortFindings(machine_));
  EXPECT_EQ(lines.size(), 7U);
  EXPECT_THAT(lines, testing::Contains(
                         StartsWith("WARN COM10: here, USB Serial Port (COM10), FTDI, FT232R, A50285BI; "
                                    "the adapter holds back the end of each reply for up to 16 ms -> ")));
  EXPECT_THAT(lines, testing::Contains(
                         HasSubstr(R"(Enum\FTDIBUS\VID_0403+PID_6001+A50285BIA\0000\Device Parameters")")));
  EXPECT_THAT(lines, testing::Contains(StartsWith("OK COM7: not there, ")));
  machine_.ports[0].latency_ms = 1;
  EXPECT_EQ(Count(PortFindings(machine_), Level::kWarn), 0);
}

TEST_F(DoctorTest, Ports_NumberThatTheLibraryDoesNotTake) {
  machine_.ports = SomePorts();
  machine_.ports.resize(2);
  machine_.ports[0].name = "COM256";
  machine_.ports[0].latency_ms.reset();
  EXPECT_EQ(Count(PortFindings(machine_), Level::kWarn), 0);
  machine_.ports[0].name = "COM257";
  EXPECT_THAT(Of(PortFindings(machine_))[1], HasSubstr("; the library takes COM1 to COM256 -> "));
  machine_.ports.clear();
  EXPECT_THAT(Of(PortFindings(machine_)), ElementsAre("OK COM ports: there are none"));
}

TEST_F(DoctorTest, Network_OneAdapter) {
  machine_.adapters = {Adapter("Ethernet")};
  machine_.adapters[0].takes_broadcast = true;
  machine_.adapters[0].firewall = true;
  machine_.adapters[0].profile = "private";
  EXPECT_THAT(
      Of(NetworkFindings(machine_)),
      ElementsAre(
          "OK Network adapter: Ethernet, Gigabit, index 7, metric 25, 192.168.0.10, firewall on (private "
          "network); takes the broadcast that looks for instruments"));
}

TEST_F(DoctorTest, Network_FirewallThatKeepsOutTheReplies) {
  machine_.adapters = {Adapter("Ethernet")};
  machine_.adapters[0].replies_blocked = true;
  machine_.adapters[0].firewall = true;
  EXPECT_EQ(NetworkFindings(machine_)[0].level, Level::kOk) << "the broadcast does not leave here";
  machine_.adapters[0].takes_broadcast = true;
  machine_.adapters[0].profile = "private";
  EXPECT_THAT(Of(NetworkFindings(machine_)),
              ElementsAre(HasSubstr("; the firewall keeps out the replies -> as administrator: netsh "
                                    "advfirewall set privateprofile settings ")));
  machine_.adapters[0].by_policy = true;
  EXPECT_THAT(Of(NetworkFindings(machine_)),
              ElementsAre(HasSubstr("; the firewall keeps out the replies, as a policy says -> ask ")));
  machine_.adapters[0].firewall = false;
  EXPECT_EQ(NetworkFindings(machine_)[0].level, Level::kOk);
}

TEST_F(DoctorTest, Network_SeveralAdaptersOrNone) {
  machine_.adapters = {Adapter("Ethernet"), Adapter("Wi-Fi")};
  machine_.adapters[1].takes_broadcast = true;
  EXPECT_THAT(Of(NetworkFindings(machine_)),
              ElementsAre(HasSubstr("firewall not known"), StartsWith("OK Network adapter: Wi-Fi"),
                          StartsWith("WARN Broadcast: leaves by Wi-Fi only; ")));
  machine_.adapters.clear();
  EXPECT_THAT(Of(NetworkFindings(machine_)),
              ElementsAre(StartsWith("WARN Broadcast: no network adapter takes it")));
}

TEST_F(DoctorTest, BroadcastAdapterAmong_TheOneThatTakesIt) {
  std::vector<NetworkAdapter> adapters = {Adapter("Ethernet"), Adapter("Wi-Fi")};
  EXPECT_FALSE(BroadcastAdapterAmong(adapters));
  adapters[1].takes_broadcast = true;
  ASSERT_TRUE(BroadcastAdapterAmong(adapters));
  EXPECT_EQ(BroadcastAdapterAmong(adapters)->name, "Wi-Fi");
  EXPECT_EQ(BroadcastAdapterAmong(adapters)->address, "192.168.0.10");
}

TEST_F(DoctorTest, System_IsTold) {
  machine_.system.windows = "Windows 11 Pro, build 26100";
  machine_.system.processor = "Ryzen";
  machine_.system.architecture = "x64";
  EXPECT_THAT(Of(SystemFindings(machine_)),
              ElementsAre("OK Windows: Windows 11 Pro, build 26100, 64-bit", "OK Processor: Ryzen, x64",
                          "OK This program: 64-bit, runs with the rights of an ordinary user"));
}

TEST_F(DoctorTest, System_Windows11IsTenInTheRegistry) {
  EXPECT_EQ(WindowsName("Windows 10 Pro", "24H2", 26100), "Windows 11 Pro 24H2, build 26100");
  EXPECT_EQ(WindowsName("Windows 10 Pro", "", 19045), "Windows 10 Pro, build 19045");
}

TEST_F(DoctorTest, VbScript_MayBeMissing) {
  machine_.vbscript = {64};
  EXPECT_THAT(Of(ScriptFindings(machine_, 64)), ElementsAre("OK 64-bit VBScript: is installed"));
  EXPECT_THAT(
      Of(ScriptFindings(machine_, 32)),
      ElementsAre(HasSubstr(
          "WARN 32-bit VBScript: is not installed: .vbs files do not run -> Windows 11 24H2 and later, ")));
}

TEST_F(DoctorTest, Office_NeedsTheLibraryOfItsWidth) {
  EXPECT_THAT(Of(OfficeFindings(machine_)), ElementsAre("OK Office: is not installed"));
  machine_.office = Office{"16.0", 32};
  machine_.Register(64, Hive::kAllUsers, "C:\\x.dll");
  EXPECT_THAT(
      Of(OfficeFindings(machine_)),
      ElementsAre(StartsWith("WARN Office: 16.0, 32-bit; its VBA needs the 32-bit library, which is not "
                             R"(registered -> as administrator: C:\Windows\SysWOW64\regsvr32.exe)")));
  machine_.delivered[32] = "";
  EXPECT_THAT(Of(OfficeFindings(machine_)), ElementsAre(HasSubstr("-> install the library")));
  machine_.Register(32, Hive::kAllUsers, "C:\\x.dll");
  EXPECT_THAT(Of(OfficeFindings(machine_)),
              ElementsAre("OK Office: 16.0, 32-bit; its VBA uses the 32-bit library"));
}

TEST_F(DoctorTest, OtherWidth_TellsWhatItsProgramAnswered) {
  const Findings answer = {Fault("32-bit clients", "x", "y")};
  machine_.other = {"C:\\kesp\\win32\\kesp.exe", true, JsonOf(answer)};
  EXPECT_EQ(OtherWidth(machine_), answer);
}

TEST_F(DoctorTest, OtherWidth_WithoutItsProgramTellsWhatIsSeenFromHere) {
  machine_.other.path = "C:\\kesp\\win32\\kesp.exe";
  const auto lines = Of(OtherWidth(machine_));
  EXPECT_THAT(lines, ElementsAre(StartsWith("FAIL 32-bit clients: "),
                                 StartsWith("WARN 32-bit kesp: C:\\kesp\\win32\\kesp.exe is not there"),
                                 StartsWith("WARN 32-bit GPIB"), StartsWith("OK 32-bit VBScript"),
                                 StartsWith("OK 32-bit default trace")));
  machine_.other.found = true;
  EXPECT_THAT(Of(OtherWidth(machine_))[1],
              HasSubstr(R"(did not answer: the 32-bit library was not tried out -> run it by hand: )"
                        R"("C:\kesp\win32\kesp.exe" doctor --this-width-only)"));
}

TEST_F(DoctorTest, OtherWidth_WindowsOfOneWidthHasNone) {
  machine_.system.both_widths = false;
  EXPECT_EQ(OtherWidth(machine_), Findings());
}

}  // namespace
}  // namespace kesp::console
