// Addresses read and written, and their mistakes.
#include "console/address.h"

#include <gtest/gtest.h>

namespace kesp::console {
namespace {

LineOptions Line(const std::function<void(LineOptions&)>& set) {
  LineOptions line;
  set(line);
  return line;
}

Address Com(int port, const std::function<void(LineOptions&)>& set) {
  return ComAddress{.port = port, .line = Line(set)};
}

void SetFrame(LineOptions& line, int data_bits, char parity, const char* stop_bits) {
  line.frame_said = true;
  line.data_bits = data_bits;
  line.parity = parity;
  line.stop_bits = stop_bits;
}

// Each with the shortest text for the same.
struct Form {
  const char* text;
  Address address;
  const char* shortest;
};

const std::vector<Form>& Forms() {
  static const std::vector<Form> forms = {
      {"tcp:192.168.0.10", TcpAddress{.host = "192.168.0.10"}, "tcp:192.168.0.10"},
      {"tcp:192.168.0.10:10001", TcpAddress{.host = "192.168.0.10"}, "tcp:192.168.0.10"},
      {"TCP:Bench-3_a.lab:32767", TcpAddress{.host = "Bench-3_a.lab", .port = 32767},
       "tcp:Bench-3_a.lab:32767"},
      {"tcp:m\u00FCller:1", TcpAddress{.host = "m\u00FCller", .port = 1}, "tcp:m\u00FCller:1"},
      {"tcp:a,eos=10", TcpAddress{.host = "a", .eos = {10}}, "tcp:a,eos=10"},
      {"tcp:a:99,EOS=013+10+255", TcpAddress{.host = "a", .port = 99, .eos = {13, 10, 255}},
       "tcp:a:99,eos=13+10+255"},
      {"tcp:a,ANY", TcpAddress{.host = "a", .any = true}, "tcp:a,any"},
      {"com3", ComAddress{.port = 3}, "com3"},
      {"COM256", ComAddress{.port = 256}, "com256"},
      {"com03", ComAddress{.port = 3}, "com3"},
      {"com3@9600,8N1", Com(3, [](LineOptions& line) { line.baud = 9600, SetFrame(line, 8, 'N', "1"); }),
       "com3@9600,8N1"},
      {"com3,4s1.5", Com(3, [](LineOptions& line) { SetFrame(line, 4, 'S', "1.5"); }), "com3,4S1.5"},
      {"com3,7o2", Com(3, [](LineOptions& line) { SetFrame(line, 7, 'O', "2"); }), "com3,7O2"},
      {"com3,8M1", Com(3, [](LineOptions& line) { SetFrame(line, 8, 'M', "1"); }), "com3,8M1"},
      {"com3@19200,omega=01,7E1",
       Com(3, [](LineOptions& line) { line.baud = 19200, line.omega = "01", SetFrame(line, 7, 'E', "1"); }),
       "com3@19200,7E1,omega=01"},
      {"com1,precidia", Com(1, [](LineOptions& line) { line.precidia = true; }), "com1,precidia"},
      {"com1,Modem=32767", Com(1, [](LineOptions& line) { line.modem = 32767; }), "com1,modem=32767"},
      {"com1,modem=0", Com(1, [](LineOptions& line) { line.modem = 0; }), "com1,modem=0"},
      {"com1,switch=B", Com(1, [](LineOptions& line) { line.port_switch = "B"; }), "com1,switch=B"},
      {"com1,switch=02/6", Com(1, [](LineOptions& line) { line.port_switch = "02"; }), "com1,switch=02"},
      {"com1,switch=b/4", Com(1, [](LineOptions& line) { line.port_switch = "b", line.switch_ports = 4; }),
       "com1,switch=b/4"},
      {"com1,IR,Cr", Com(1, [](LineOptions& line) { line.infrared = line.cr = true; }), "com1,ir,cr"},
      {"com9@150,cr,ir,switch=1/8,modem=5,omega=1a,5E2",
       Com(9,
           [](LineOptions& line) {
             line.baud = 150, line.cr = line.infrared = true, line.port_switch = "1", line.switch_ports = 8;
             line.modem = 5, line.omega = "1a", SetFrame(line, 5, 'E', "2");
           }),
       "com9@150,5E2,omega=1a,modem=5,switch=1/8,ir,cr"},
      {"usb:A50285BI", UsbAddress{.serial = "A50285BI"}, "usb:A50285BI"},
      {"USB:5&2b:x/1@921600,cr", UsbAddress{.serial = "5&2b:x/1", .line = Line([](LineOptions& line) {
                                                                    line.baud = 921600, line.cr = true;
                                                                  })},
       "usb:5&2b:x/1@921600,cr"},
      {"gpib:5", GpibAddress{.primary = 5}, "gpib:5"},
      {"GPIB:30/30,EOS=13,NoClear", GpibAddress{.primary = 30, .secondary = 30, .eos = 13, .clear = false},
       "gpib:30/30,eos=13,noclear"},
      {"gpib:1/0,eos=10", GpibAddress{.primary = 1}, "gpib:1"},
      {"gpib:", GpibAddress{}, "gpib:"},
      {"gpib:,eos=0", GpibAddress{.eos = 0}, "gpib:,eos=0"},
  };
  return forms;
}

TEST(ParseAddress, EachForm_IsReadAndWrittenInTheShortestWay) {
  for (const auto& [text, address, shortest] : Forms()) {
    EXPECT_TRUE(ParseAddress(text) == address) << text;
    EXPECT_EQ(TextOf(address), shortest);
    EXPECT_TRUE(ParseAddress(shortest) == address) << shortest;
  }
}

constexpr char kBeginning[] =
    "expected here: tcp:HOST, com3, usb:SERIAL or gpib:5; \"kesp --help\" tells more";
constexpr char kHost[] = "expected here: a host name, or an address such as 192.168.0.10";
constexpr char kTcpPort[] = "expected here: a port: 1 to 32767";
constexpr char kTcpOptions[] = "expected here: eos=CODE or any";
constexpr char kTcpRest[] = "expected here: the end, or a comma and eos=CODE or any";
constexpr char kCode[] = "expected here: the code of a character: 0 to 255, such as 13";
constexpr char kComPort[] = "expected here: the number of a COM port: 1 to 256";
constexpr char kBaud[] =
    "expected here: a bit rate: 150, 300, 600, 1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200, 230400, "
    "460800 or 921600";
constexpr char kComOptions[] =
    "expected here: 8N1 (data bits, parity, stop bits), omega=ADDRESS, precidia, modem=NUMBER, switch=PORT, "
    "ir "
    "or cr";
constexpr char kComRest[] =
    "expected here: the end, or a comma and 8N1 (data bits, parity, stop bits), omega=ADDRESS, precidia, "
    "modem=NUMBER, switch=PORT, ir or cr";
constexpr char kDataBits[] = "expected here: the data bits: 4 to 8";
constexpr char kParity[] = "expected here: a parity: N (none), E (even), O (odd), M (mark) or S (space)";
constexpr char kStopBits[] = "expected here: the stop bits: 1, 1.5 or 2";
constexpr char kOmega[] = "expected here: the controller's address, such as 01";
constexpr char kModem[] = "expected here: the address of the instrument behind the modem: 0 to 32767";
constexpr char kSwitch[] = "expected here: the port of the switch, such as B";
constexpr char kSwitchPorts[] = "expected here: how many ports the switch has: 4, 6 or 8";
constexpr char kTwice[] = "this stands there already";
constexpr char kSerial[] = "expected here: the serial number of an adapter; \"kesp ports\" lists them";
constexpr char kPrimary[] = "expected here: a primary address: 1 to 30";
constexpr char kSecondary[] = "expected here: a secondary address: 1 to 30, or 0 for none";
constexpr char kGpibOptions[] = "expected here: eos=CODE or noclear";
constexpr char kGpibRest[] = "expected here: the end, or a comma and eos=CODE or noclear";

struct Mistake {
  const char* text;
  std::size_t place;
  const char* expected;
};

constexpr Mistake kMistakes[] = {
    {"", 0, kBeginning},
    {" com3", 0, kBeginning},
    {"tcp", 0, kBeginning},
    {"192.168.0.10", 0, kBeginning},
    {"tcp:", 4, kHost},
    {"tcp:,any", 4, kHost},
    {"tcp://host", 4, kHost},
    {"tcp:host:", 9, kTcpPort},
    {"tcp:host:0", 9, kTcpPort},
    {"tcp:host:32768", 9, kTcpPort},
    {"tcp:host:99999999999", 9, kTcpPort},
    {"tcp:host:http", 9, kTcpPort},
    {"tcp:host:-1", 9, kTcpPort},
    {"tcp:host:80:1", 11, kTcpRest},
    {"tcp:host any", 8, kTcpRest},
    {"tcp:host,", 9, kTcpOptions},
    {"tcp:host,,any", 9, kTcpOptions},
    {"tcp:host,cr", 9, kTcpOptions},
    {"tcp:host,eos", 9, kTcpOptions},
    {"tcp:host,any=1", 9, kTcpOptions},
    {"tcp:host,eos=", 13, kCode},
    {"tcp:host,eos=256", 13, kCode},
    {"tcp:host,eos=13+", 16, kCode},
    {"tcp:host,eos=13+cr", 16, kCode},
    {"tcp:host,eos=1 3", 14, kTcpRest},
    {"tcp:host,any,any", 13, kTwice},
    {"tcp:host,eos=1,EOS=2", 15, kTwice},
    {"tcp:host,any,eos=13", 13, "this cannot stand beside any"},
    {"tcp:host,eos=13,any", 16, "this cannot stand beside eos="},
    {"com", 3, kComPort},
    {"com0", 3, kComPort},
    {"com257", 3, kComPort},
    {"com3:9600", 4, kComRest},
    {"com3 ", 4, kComRest},
    {"com3@", 5, kBaud},
    {"com3@9601,8N1", 5, kBaud},
    {"com3@1000000", 5, kBaud},
    {"com3@9600@9600", 9, kComRest},
    {"com3,", 5, kComOptions},
    {"com3,N81", 5, kComOptions},
    {"com3,omega", 5, kComOptions},
    {"com3,3N1", 5, kDataBits},
    {"com3,9N1", 5, kDataBits},
    {"com3,8", 6, kParity},
    {"com3,8X1", 6, kParity},
    {"com3,8N", 7, kStopBits},
    {"com3,8N3", 7, kStopBits},
    {"com3,8N1.7", 8, kComRest},
    {"com3,8N1,7E1", 9, kTwice},
    {"com3,omega=", 11, kOmega},
    {"com3,omega=01,precidia", 14, "this cannot stand beside omega="},
    {"com3,precidia,omega=01", 14, "this cannot stand beside precidia"},
    {"com3,precidia=1", 5, kComOptions},
    {"com3,modem=", 11, kModem},
    {"com3,modem=32768", 11, kModem},
    {"com3,switch=", 12, kSwitch},
    {"com3,switch=A/", 14, kSwitchPorts},
    {"com3,switch=A/5", 14, kSwitchPorts},
    {"com3,switch=A/9", 14, kSwitchPorts},
    {"com3,cr,cr", 8, kTwice},
    {"usb:", 4, kSerial},
    {"usb:@9600", 4, kSerial},
    {"usb:A1@9600,x", 12, kComOptions},
    {"gpib:0", 5, kPrimary},
    {"gpib:31", 5, kPrimary},
    {"gpib:five", 5, kPrimary},
    {"gpib:/2", 5, kPrimary},
    {"gpib:5/", 7, kSecondary},
    {"gpib:5/31", 7, kSecondary},
    {"gpib:5.2", 6, kGpibRest},
    {"gpib:5,eos=13+10", 13, kGpibRest},
    {"gpib:5,eos=256", 11, kCode},
    {"gpib:5,cr", 7, kGpibOptions},
};

TEST(ParseAddress, EachMistake_IsShownAtItsPlaceWithWhatWasExpected) {
  for (const auto& [text, place, expected] : kMistakes) {
    SCOPED_TRACE(text);
    try {
      ParseAddress(text);
      ADD_FAILURE() << "no mistake was found";
    } catch (const AddressError& error) {
      EXPECT_EQ(error.place(), place);
      EXPECT_EQ(error.what(),
                std::string("  ") + text + "\n  " + std::string(place, ' ') + "^\n  " + expected);
    }
  }
}

TEST(ParseAddress, Caret_StandsBelowItsPlaceBehindCharactersOfSeveralBytes) {
  try {
    ParseAddress("tcp:m\u00FCller:x");
    ADD_FAILURE() << "no mistake was found";
  } catch (const AddressError& error) {
    EXPECT_EQ(error.place(), 12U);
    EXPECT_EQ(error.what(), std::string("  tcp:m\u00FCller:x\n             ^\n  ") + kTcpPort);
  }
}

}  // namespace
}  // namespace kesp::console
