// The texts of a serial line: its settings, hexadecimal numbers, commands in their frames.
#include <charconv>
#include <cmath>
#include <cstdio>
#include <set>
#include <string>

#include "console/hexadecimal.h"
#include "serial/baud_rate.h"
#include "serial/command_frame.h"
#include "serial/hexadecimal.h"
#include "serial/line_settings.h"
#include "simulator/bytes_text.h"
#include "simulator/omega_controller.h"
#include "support/failure.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/require.h"

namespace kesp {
namespace {

std::set<std::wstring> AllSettings() {
  std::set<std::wstring> all;
  for (int rate = 0; rate <= 13; ++rate) {
    for (const wchar_t parity : L"NOEMS") {
      for (int bits = 4; parity != 0 && bits <= 8; ++bits) {
        for (const wchar_t* stop : {L"1", L"1.5", L"2"}) {
          all.insert(BaudRateName(static_cast<EKespBaudRate3>(rate)) + L"," + parity + L"," +
                     std::to_wstring(bits) + L"," + stop);
        }
      }
    }
  }
  return all;
}

void ReadSettings(const std::wstring& text) {
  static const std::set<std::wstring> kAll = AllSettings();
  const std::optional<LineSettings> read = ReadLineSettings(text);
  Require(read.has_value() == kAll.contains(text), "settings are read exactly where they are settings");
  if (!read) return;
  Require(text.starts_with(std::to_wstring(read->bits_per_second) + L","), "the rate is that of the text");
  Require(text.find(L"," + std::to_wstring(read->data_bits) + L",") != std::wstring::npos, "so are the bits");
}

void ReadRate(std::int32_t value) {
  const auto rate = static_cast<EKespBaudRate3>(value);
  Require(IsBaudRate(rate) == (value >= -1 && value <= 13), "the rates are brNone to br921600");
  const bool is_unknown = BaudRateName(rate) == L"<unknown>";
  Require(is_unknown == (value < 0 || value > 13), "each rate has a name");
}

void ReadHexadecimal(const std::string& bytes) {
  const std::wstring text(bytes.begin(), bytes.end());
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(bytes.data(), bytes.data() + bytes.size(), number, 16);
  const bool is_number = error == std::errc() && end == bytes.data() + bytes.size() && bytes.size() <= 8;
  bool was_read = true;
  try {
    Require(FromHexadecimal(text) == static_cast<std::int64_t>(number), "a number is read");
  } catch (const Failure& failure) {
    Require(failure.number() == 13, "no number is a wrong type");
    was_read = false;
  }
  Require(was_read == is_number, "a number is read where there is one");
  const std::optional<std::uint32_t> simulated = simulator::FromHexadecimal(bytes);
  Require(!is_number || simulated == static_cast<std::uint32_t>(number), "the simulator reads the same");
  Require(simulator::BytesFromHex(console::HexadecimalOf(bytes)) == bytes || bytes.empty(),
          "bytes written in hexadecimal are read again");
}

void WriteHexadecimal(FuzzInput& input) {
  const auto word = static_cast<std::int16_t>(input.Word());
  Require(FromHexadecimal(ToHexadecimal(word)) == static_cast<std::uint16_t>(word), "16 bits come back");
  const double number = input.Long() / std::ldexp(1.0, static_cast<int>(input.Below(40)) - 4);
  bool is_written = true;
  try {
    const std::wstring text = ToHexadecimal(number);
    Require(static_cast<double>(FromHexadecimal(text)) == std::rint(number), "a number comes back rounded");
    const std::string narrow(text.begin(), text.end());
    Require(narrow == simulator::Hexadecimal(static_cast<std::uint32_t>(std::rint(number))), "in capitals");
  } catch (const Failure& failure) {
    Require(failure.number() == 6, "a number out of range is an overflow");
    is_written = false;
  }
  Require(is_written == (std::rint(number) >= 0 && std::rint(number) <= 4294967295.0), "32 bits are written");
}

// Characters of a command or a value; no blanks at the ends, as the transport has it.
std::string Printable(std::string_view bytes) {
  std::string text(bytes);
  for (char& c : text) {
    if (static_cast<unsigned char>(c) < 0x21 || c == 0x7F) c = 'x';
  }
  return text;
}

std::string Exchanged(simulator::OmegaController& controller, const std::string& frame) {
  controller.Take(frame, simulator::Moment(0));
  const std::optional<simulator::Deed> deed = controller.Next(simulator::Moment(0));
  return deed ? deed->step.bytes : std::string();
}

// A controller of the simulator understands the frames, and its answers tell the value.
void FrameCommand(FuzzInput& input) {
  constexpr auto kOmega = EKespControllerStyle3::CS_OMEGA;
  const std::string address = std::to_string(input.Below(100));
  const std::string command = Printable(input.Bytes(1 + input.Below(40)));
  const std::string value = Printable(input.Bytes(1 + input.Below(60)));
  Require(CommandFrame(EKespControllerStyle3::CS_KESP, command, address, value) == command + "\r",
          "a plain command ends with a carriage return");
  Require(!CommandFrame(kOmega, command, "", value), "an Omega controller has an address");
  if (command.empty() || value.empty()) return;
  simulator::OmegaController controller(address, {{command, "before"}}, {});
  const std::string read = CommandFrame(kOmega, command, address, "").value();
  const std::string write = CommandFrame(kOmega, command, address, value).value();
  std::string block = command + "before\x03";
  Require(Exchanged(controller, read) == '\x02' + block + simulator::BlockCheck(block) + "\r\n",
          "a controller understands what reads");
  Require(Exchanged(controller, write) == "\x06\r\n", "a controller understands what writes");
  block = command + value + "\x03";
  Require(Exchanged(controller, read) == '\x02' + block + simulator::BlockCheck(block) + "\r\n",
          "a controller has taken the value");
}

}  // namespace
}  // namespace kesp

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesp::FuzzInput input(data, size);
  switch (input.Below(5)) {
    case 0:
      kesp::ReadRate(input.Flag() ? input.Long() : static_cast<std::int8_t>(input.Byte()));
      break;
    case 1:
      kesp::ReadHexadecimal(std::string(input.Rest()));
      break;
    case 2:
      kesp::WriteHexadecimal(input);
      break;
    case 3:
      kesp::FrameCommand(input);
      break;
    default:
      kesp::ReadSettings(kesp::WideText(input.Rest()));
  }
  return 0;
}
