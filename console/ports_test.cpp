// The list of COM ports, and what is known of the adapters.
#include "console/ports.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "console/machine_fake.h"
#include "console/port_identity.h"

namespace kesp::console {
namespace {

PortIdentity Identity(const std::string& instance) {
  PortDevice port;
  port.instance = instance;
  return IdentityOf(port);
}

PortDevice Named(const std::string& name) {
  for (const PortDevice& port : SomePorts())
    if (port.name == name) return port;
  ADD_FAILURE() << name;
  return {};
}

std::vector<ListedPort> Listed() {
  std::vector<ListedPort> listed;
  for (const PortDevice& port : InNaturalOrder(SomePorts())) listed.push_back({port, PortUse::kNotTried});
  return listed;
}

TEST(IdentityOf, Ftdi_SerialNumberIsWithoutTheChannel) {
  const PortIdentity identity = IdentityOf(Named("COM10"));
  EXPECT_EQ(identity, (PortIdentity{"USB", "FTDI", "FT232R", "0403:6001", "A50285BI", "A"}));
  EXPECT_TRUE(IsFtdi(Named("COM10")));
  EXPECT_FALSE(IsFtdi(Named("COM2")));
}

TEST(IdentityOf, NameThatWindowsMadeUp_IsNoSerialNumber) {
  EXPECT_EQ(IdentityOf(Named("COM2")), (PortIdentity{"USB", "Prolific", "PL2303", "067B:2303", "", ""}));
  EXPECT_EQ(IdentityOf(Named("COM9")).product, "CH340");
  EXPECT_EQ(Identity(R"(FTDIBUS\VID_0403+PID_6001+5&2C2CDAC4&0&3\0000)").serial, "");
  EXPECT_EQ(Identity(R"(USB\VID_2341&PID_0043\85430353831351C0B1D2)").serial, "85430353831351C0B1D2");
}

TEST(IdentityOf, FunctionOfADevice_HasTheSerialNumberOfTheWhole) {
  EXPECT_EQ(IdentityOf(Named("COM11")),
            (PortIdentity{"USB", "Silicon Labs", "CP2105", "10C4:EA70", "0123AB", ""}));
}

TEST(IsFunctionOf, TheSameVendorAndProduct_AndNoBusButUsb) {
  const std::string device = R"(USB\VID_10C4&PID_EA70\0123ab)";
  EXPECT_TRUE(IsFunctionOf(R"(USB\vid_10c4&PID_EA70&MI_00\6&3A2B3C&0&0000)", device));
  EXPECT_FALSE(
      IsFunctionOf(R"(USB\VID_10C4&PID_EA70&MI_00\6&3A2B3C&0&0000)", R"(USB\VID_0424&PID_2514\HUB)"));
  EXPECT_FALSE(IsFunctionOf(device, device));
  EXPECT_FALSE(IsFunctionOf(R"(ACPI\PNP0501\1)", device));
  EXPECT_FALSE(IsFunctionOf("", device));
}

TEST(AddPortsWithoutDevice, PortThatOnlyARememberedDeviceHad_IsAdded) {
  std::vector<PortDevice> ports = {Named("COM10"), Named("COM7")};
  AddPortsWithoutDevice({"COM10", "COM7", "COM33", "LPT1"}, ports);
  ASSERT_EQ(ports.size(), 4U);
  EXPECT_EQ(ports[2].name, "COM7");
  EXPECT_TRUE(ports[2].present);
  EXPECT_EQ(ports[3].name, "COM33");
}

TEST(IdentityOf, Bluetooth_HasItsAddressUnlessOthersCall) {
  EXPECT_EQ(IdentityOf(Named("COM12")), (PortIdentity{"Bluetooth", "", "Standard Serial over Bluetooth link",
                                                      "", "00:11:22:33:44:55", ""}));
  EXPECT_EQ(
      Identity(R"(BTHENUM\{00001101-0000-1000-8000-00805F9B34FB}_LOCALMFG&0000\7&1&0&000000000000_00000001)")
          .serial,
      "");
}

TEST(IdentityOf, OtherDevices_AreNamedAfterTheirBus) {
  EXPECT_EQ(IdentityOf(Named("COM1")),
            (PortIdentity{"ACPI", "(Standard port types)", "Communications Port", "", "", ""}));
  EXPECT_EQ(Identity("").bus, "");
  EXPECT_EQ(Identity(R"(USB\odd)").bus, "USB");
}

TEST(IdentityOf, NamesOfTheDevice_GoBeforeThoseThatAreKnownHere) {
  PortDevice port = Named("COM10");
  port.reported_name = "Balance 3";
  port.manufacturer = "Somebody";
  EXPECT_EQ(IdentityOf(port).product, "Balance 3");
  EXPECT_EQ(IdentityOf(port).vendor, "FTDI");
  port.instance = R"(USB\VID_0999&PID_0001\X1)";
  port.manufacturer = "@oem12.inf,%maker%;Somebody";
  EXPECT_EQ(IdentityOf(port).vendor, "Somebody");
}

TEST(HasSerial, TakesTheChannelAndAnyCase) {
  const PortIdentity identity = IdentityOf(Named("COM10"));
  for (const char* serial : {"A50285BI", "a50285bi", "A50285BIA"}) EXPECT_TRUE(HasSerial(identity, serial));
  for (const char* serial : {"A50285B", "A50285BIB", ""}) EXPECT_FALSE(HasSerial(identity, serial)) << serial;
  EXPECT_FALSE(HasSerial(IdentityOf(Named("COM2")), ""));
}

TEST(InNaturalOrder, Com2_ComesBeforeCom10) {
  std::string names;
  for (const PortDevice& port : InNaturalOrder(SomePorts())) names += port.name + " ";
  EXPECT_EQ(names, "COM1 COM2 COM7 COM9 COM10 COM11 COM12 ");
}

TEST(InNaturalOrder, OneThatIsThere_ComesBeforeOneThatIsNot) {
  std::vector<PortDevice> ports(2);
  ports[0].name = ports[1].name = "COM3";
  ports[1].present = true;
  EXPECT_TRUE(InNaturalOrder(ports)[0].present);
}

TEST(StateOf, EachOutcome_HasItsWord) {
  PortDevice here;
  here.present = true;
  EXPECT_EQ(StateOf({here, PortUse::kNotTried}), "here");
  EXPECT_EQ(StateOf({here, PortUse::kFree}), "free");
  EXPECT_EQ(StateOf({here, PortUse::kInUse}), "in use");
  EXPECT_EQ(StateOf({here, PortUse::kCannotBeOpened}), "cannot be opened");
  EXPECT_EQ(StateOf({PortDevice(), PortUse::kNotTried}), "not there");
}

TEST(PortTable, EachPort_HasALine) {
  const std::string table = PortTable(Listed());
  EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 8);
  EXPECT_NE(table.find("COM10  here       USB Serial Port (COM10)"), std::string::npos) << table;
  EXPECT_NE(table.find("COM7   not there  USB"), std::string::npos) << table;
  EXPECT_EQ(PortTable({}), "");
}

TEST(PortsAsJson, EachPort_IsAnObject) {
  const auto list = nlohmann::json::parse(PortsAsJson(Listed()));
  ASSERT_EQ(list.size(), 7U);
  EXPECT_EQ(list[4]["port"], "COM10");
  EXPECT_EQ(list[4]["serial"], "A50285BI");
  EXPECT_EQ(list[4]["latency_ms"], 16);
  EXPECT_EQ(list[2]["present"], false);
  EXPECT_FALSE(list[0].contains("latency_ms"));
  EXPECT_EQ(PortsAsJson({}), "[]\n");
}

}  // namespace
}  // namespace kesp::console
