// Addresses read and written.
#include "console/address.h"

#include "console/address_reader.h"
#include "console/line_options.h"
#include "console/utf8_character.h"

namespace kesp::console {
namespace {

constexpr char kCode[] = "the code of a character: 0 to 255, such as 13";

unsigned char TakeCode(AddressReader& reader) {
  return static_cast<unsigned char>(reader.TakeNumber(0, 255, kCode));
}

TcpAddress ReadTcp(AddressReader& reader) {
  TcpAddress address;
  address.host = reader.TakeName("a host name, or an address such as 192.168.0.10");
  if (reader.Take(":")) address.port = reader.TakeNumber(1, 32767, "a port: 1 to 32767");
  const auto eos = [&address](AddressReader& behind) {
    do address.eos.push_back(TakeCode(behind));
    while (behind.Take("+"));
  };
  const auto any = [&address](AddressReader&) { address.any = true; };
  ReadOptions(reader, {{"eos=", "eos=CODE", eos, "any"}, {"any", "any", any, "eos="}});
  return address;
}

ComAddress ReadCom(AddressReader& reader) {
  ComAddress address;
  address.port = reader.TakeNumber(1, 256, "the number of a COM port: 1 to 256");
  address.line = ReadLineOptions(reader);
  return address;
}

UsbAddress ReadUsb(AddressReader& reader) {
  UsbAddress address;
  address.serial = reader.TakeUntil("@,");
  if (address.serial.empty())
    reader.Fail("expected here: the serial number of an adapter; \"kesp ports\" lists them");
  address.line = ReadLineOptions(reader);
  return address;
}

GpibAddress ReadGpib(AddressReader& reader) {
  GpibAddress address;
  if (!reader.AtEnd() && reader.Next() != ',') {
    address.primary = reader.TakeNumber(1, 30, "a primary address: 1 to 30");
    if (reader.Take("/"))
      address.secondary = reader.TakeNumber(0, 30, "a secondary address: 1 to 30, or 0 for none");
  }
  ReadOptions(reader,
              {{"eos=", "eos=CODE", [&address](AddressReader& behind) { address.eos = TakeCode(behind); }},
               {"noclear", "noclear", [&address](AddressReader&) { address.clear = false; }}});
  return address;
}

std::string Text(const TcpAddress& address) {
  std::string text = "tcp:" + address.host;
  if (address.port != TcpAddress().port) text += ":" + std::to_string(address.port);
  for (const unsigned char& code : address.eos)
    text += (&code == &address.eos.front() ? ",eos=" : "+") + std::to_string(code);
  if (address.any) text += ",any";
  return text;
}

std::string Text(const ComAddress& address) {
  return "com" + std::to_string(address.port) + TextOf(address.line);
}

std::string Text(const UsbAddress& address) {
  return "usb:" + address.serial + TextOf(address.line);
}

std::string Text(const GpibAddress& address) {
  std::string text = "gpib:";
  if (address.primary) text += std::to_string(*address.primary);
  if (address.secondary != 0) text += "/" + std::to_string(address.secondary);
  if (address.eos != GpibAddress().eos) text += ",eos=" + std::to_string(address.eos);
  if (!address.clear) text += ",noclear";
  return text;
}

std::string Blanks(std::string_view text) {
  return std::string().append(CharactersIn(text), ' ');
}

}  // namespace

AddressError::AddressError(std::string_view address, std::size_t place, const std::string& expected)
    : std::runtime_error("  " + std::string(address) + "\n  " + Blanks(address.substr(0, place)) + "^\n  " +
                         expected),
      place_(place) {}

Address ParseAddress(std::string_view text) {
  AddressReader reader(text);
  if (reader.Take("tcp:")) return ReadTcp(reader);
  if (reader.Take("gpib:")) return ReadGpib(reader);
  if (reader.Take("usb:")) return ReadUsb(reader);
  if (reader.Take("com")) return ReadCom(reader);
  reader.Fail("expected here: tcp:HOST, com3, usb:SERIAL or gpib:5; \"kesp --help\" tells more");
}

std::string TextOf(const Address& address) {
  return std::visit([](const auto& each) { return Text(each); }, address);
}

}  // namespace kesp::console
