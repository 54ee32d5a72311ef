// COM ports by the serial number of the adapter.
#include "console/usb_address.h"

#include <gtest/gtest.h>

#include "console/machine_fake.h"

namespace kesp::console {
namespace {

UsbAddress Usb(const std::string& serial) {
  UsbAddress address;
  address.serial = serial;
  address.line.baud = 19200;
  return address;
}

std::string Refusal(const std::string& serial, const std::vector<PortDevice>& ports) {
  try {
    return "COM" + std::to_string(ComAddressOf(Usb(serial), ports).port);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

// Two ports of one adapter.
std::vector<PortDevice> TwoChannels() {
  std::vector<PortDevice> ports(2);
  ports[0].name = "COM21";
  ports[0].instance = R"(FTDIBUS\VID_0403+PID_6010+FT12A\0000)";
  ports[1].name = "COM22";
  ports[1].instance = R"(FTDIBUS\VID_0403+PID_6010+FT12B\0000)";
  for (PortDevice& port : ports) port.present = true;
  return ports;
}

TEST(ComAddressOf, AdapterThatIsThere_GivesItsPortWithTheSameSettings) {
  const ComAddress com = ComAddressOf(Usb("a50285bi"), SomePorts());
  EXPECT_EQ(com.port, 10);
  EXPECT_EQ(com.line, Usb("").line);
  EXPECT_EQ(ComAddressOf(Usb("0123AB"), SomePorts()).port, 11);
}

TEST(ComAddressOf, UnknownSerialNumber_IsRefusedWithThosePluggedIn) {
  EXPECT_EQ(Refusal("XX", SomePorts()),
            "no USB adapter has the serial number XX; plugged in are COM10 (A50285BIA), COM11 (0123AB)");
  EXPECT_EQ(Refusal("XX", {}),
            "no USB adapter has the serial number XX; no USB adapter with a serial number is plugged in");
}

TEST(ComAddressOf, AdapterThatIsNotPluggedIn_IsRefusedWithItsFormerPort) {
  EXPECT_EQ(
      Refusal("FTGHOST", SomePorts()),
      "the USB adapter with the serial number FTGHOST is not plugged in (it was COM7); plugged in are COM10 "
      "(A50285BIA), COM11 (0123AB)");
}

TEST(ComAddressOf, SamePortRememberedTwice_TakesTheOneThatIsThere) {
  std::vector<PortDevice> ports = SomePorts();
  ports[6].instance = ports[0].instance;
  EXPECT_EQ(Refusal("A50285BI", ports), "COM10");
}

TEST(ComAddressOf, SeveralPorts_NeedTheChannel) {
  EXPECT_EQ(Refusal("FT12", TwoChannels()),
            "several ports have the serial number FT12: COM21 (FT12A), COM22 (FT12B); name one of them");
  EXPECT_EQ(Refusal("FT12B", TwoChannels()), "COM22");
}

TEST(WithPort, OtherAddresses_StayAsTheyAre) {
  MachineFake machine;
  machine.ports = SomePorts();
  EXPECT_EQ(WithPort(Usb("A50285BI"), machine), Address(ComAddressOf(Usb("A50285BI"), machine.ports)));
  ComAddress com;
  com.port = 5;
  EXPECT_EQ(WithPort(com, machine), Address(com));
}

}  // namespace
}  // namespace kesp::console
