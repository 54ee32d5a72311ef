// An instrument's address as users write it: "tcp:192.168.0.10:10001", "com3@9600,8N1", "gpib:5,eos=10".
#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kesp::console {

// Codes of characters, as in "eos=13+10"; empty where nothing is said.
using CharacterCodes = std::vector<unsigned char>;

// "tcp:HOST[:PORT][,eos=CODE[+CODE]][,any]"
struct TcpAddress {
  std::string host;
  int port = 10001;      // 1 to 32767, as the library takes it
  CharacterCodes eos{};  // what ends a reply; empty: a carriage return
  bool any = false;      // any arrival ends a reply
  bool operator==(const TcpAddress&) const = default;
};

// What can stand behind "com3" and "usb:SERIAL": "@BAUD,8N1" and more.
struct LineOptions {
  std::optional<int> baud;                 // bits per second; nothing: not said
  int data_bits = 8;                       // 4 to 8
  char parity = 'N';                       // N, E, O, M, S
  std::string stop_bits = "1";             // "1", "1.5", "2"
  bool frame_said = false;                 // otherwise the kind of controller decides about the three above
  std::optional<std::string> omega;        // the address of an Omega controller: CS_OMEGA
  bool precidia = false;                   // CS_PRECIDIA
  std::optional<int> modem;                // the instrument behind a radio modem: UseRFModem, InstrAddr
  std::optional<std::string> port_switch;  // the port of the switch: UseSmartSwitch, SSPort
  int switch_ports = 6;                    // how many it has, 4, 6 or 8: Style
  bool infrared = false;                   // UseIRDongle
  bool cr = false;                         // a lone CR ends a reply: UseRedirector
  bool operator==(const LineOptions&) const = default;
};

// "com3[@BAUD][,8N1][,omega=01][,precidia][,modem=5][,switch=B[/4]][,ir][,cr]"
struct ComAddress {
  int port = 1;  // 1 to 256
  LineOptions line{};
  bool operator==(const ComAddress&) const = default;
};

// "usb:SERIAL[...]": the COM port of the adapter with that serial number.
struct UsbAddress {
  std::string serial;
  LineOptions line{};
  bool operator==(const UsbAddress&) const = default;
};

// "gpib:[PRIMARY[/SECONDARY]][,eos=CODE][,noclear]"; without a primary address for a search.
struct GpibAddress {
  std::optional<int> primary{};  // 1 to 30
  int secondary = 0;             // 0 (none) to 30
  int eos = 10;                  // the code of the character behind a command
  bool clear = true;             // the device is cleared when it is opened
  bool operator==(const GpibAddress&) const = default;
};

using Address = std::variant<TcpAddress, ComAddress, UsbAddress, GpibAddress>;

// A mistake in an address: what() is the whole message, three lines with a caret under the place:
//   com3@9601,8N1
//        ^
//   9601 is not a bit rate: 150, 300, ... or 921600
class AddressError : public std::runtime_error {
 public:
  AddressError(std::string_view address, std::size_t place, const std::string& expected);
  std::size_t place() const { return place_; }  // in bytes, from 0

 private:
  std::size_t place_;
};

// Throws AddressError. Case of the words does not matter.
Address ParseAddress(std::string_view text);

// The shortest text that ParseAddress reads as this.
std::string TextOf(const Address& address);

}  // namespace kesp::console
