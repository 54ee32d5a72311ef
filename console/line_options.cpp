// The settings of a serial line in an address.
#include "console/line_options.h"

#include "console/baud_rates.h"

namespace kesp::console {
namespace {

constexpr char kParities[] = "NEOMS";

int TakeBaudRate(AddressReader& reader) {
  std::string expected = "a bit rate: ";
  for (const int rate : kBaudRates) {
    expected += std::to_string(rate);
    if (rate != kBaudRates.back()) expected += rate == kBaudRates[kBaudRates.size() - 2] ? " or " : ", ";
  }
  const std::size_t begin = reader.place();
  const int rate = reader.TakeNumber(kBaudRates.front(), kBaudRates.back(), expected);
  if (BaudRateNumber(rate) < 0) reader.FailAt(begin, "expected here: " + expected);
  return rate;
}

char TakeParity(AddressReader& reader) {
  for (const char parity : std::string_view(kParities))
    if (reader.Take(std::string(1, parity))) return parity;
  reader.Fail("expected here: a parity: N (none), E (even), O (odd), M (mark) or S (space)");
}

std::string TakeStopBits(AddressReader& reader) {
  for (const char* bits : {"1.5", "1", "2"})
    if (reader.Take(bits)) return bits;
  reader.Fail("expected here: the stop bits: 1, 1.5 or 2");
}

void TakeFrame(AddressReader& reader, LineOptions& line) {
  line.frame_said = true;
  line.data_bits = reader.TakeNumber(4, 8, "the data bits: 4 to 8");
  line.parity = TakeParity(reader);
  line.stop_bits = TakeStopBits(reader);
}

void TakeSwitch(AddressReader& reader, LineOptions& line) {
  line.port_switch = reader.TakeName("the port of the switch, such as B");
  if (!reader.Take("/")) return;
  const std::size_t begin = reader.place();
  const std::string expected = "how many ports the switch has: 4, 6 or 8";
  line.switch_ports = reader.TakeNumber(4, 8, expected);
  if (line.switch_ports % 2 != 0) reader.FailAt(begin, "expected here: " + expected);
}

}  // namespace

LineOptions ReadLineOptions(AddressReader& reader) {
  LineOptions line;
  if (reader.Take("@")) line.baud = TakeBaudRate(reader);
  const auto omega = [&line](AddressReader& behind) {
    line.omega = behind.TakeName("the controller's address, such as 01");
  };
  const auto precidia = [&line](AddressReader&) { line.precidia = true; };
  const auto modem = [&line](AddressReader& behind) {
    line.modem = behind.TakeNumber(0, 32767, "the address of the instrument behind the modem: 0 to 32767");
  };
  ReadOptions(reader,
              {{"", "8N1 (data bits, parity, stop bits)",
                [&line](AddressReader& behind) { TakeFrame(behind, line); }},
               {"omega=", "omega=ADDRESS", omega, "precidia"},
               {"precidia", "precidia", precidia, "omega="},
               {"modem=", "modem=NUMBER", modem},
               {"switch=", "switch=PORT", [&line](AddressReader& behind) { TakeSwitch(behind, line); }},
               {"ir", "ir", [&line](AddressReader&) { line.infrared = true; }},
               {"cr", "cr", [&line](AddressReader&) { line.cr = true; }}});
  return line;
}

std::string TextOf(const LineOptions& line) {
  std::string text;
  if (line.baud) text += "@" + std::to_string(*line.baud);
  if (line.frame_said) text += "," + std::to_string(line.data_bits) + line.parity + line.stop_bits;
  if (line.omega) text += ",omega=" + *line.omega;
  if (line.precidia) text += ",precidia";
  if (line.modem) text += ",modem=" + std::to_string(*line.modem);
  if (line.port_switch) text += ",switch=" + *line.port_switch;
  if (line.port_switch && line.switch_ports != 6) text += "/" + std::to_string(line.switch_ports);
  if (line.infrared) text += ",ir";
  if (line.cr) text += ",cr";
  return text;
}

}  // namespace kesp::console
