// A COM port as the carrier of a talk.
#include "simulator/com_port_win.h"

#include <windows.h>

#include <algorithm>
#include <system_error>

namespace kesp::simulator {
namespace {

constexpr std::size_t kInputLength = 4096;

BYTE ParityOf(char parity) {
  switch (parity) {
    case 'E':
      return EVENPARITY;
    case 'O':
      return ODDPARITY;
    case 'M':
      return MARKPARITY;
    case 'S':
      return SPACEPARITY;
    default:
      return NOPARITY;
  }
}

LineSettings SettingsFor(const LineRule& line) {
  LineSettings settings;
  settings.baud = line.baud;
  settings.parity = line.parity.value_or(settings.parity);
  settings.data_bits = line.data_bits.value_or(settings.data_bits);
  settings.stop_bits = line.stop_bits.value_or(settings.stop_bits);
  return settings;
}

void Set(HANDLE port, const LineSettings& line) {
  DCB settings{};
  settings.DCBlength = sizeof settings;
  bool done = GetCommState(port, &settings) != 0;
  settings.BaudRate = line.baud;
  settings.Parity = ParityOf(line.parity);
  settings.fParity = settings.Parity != NOPARITY;
  settings.ByteSize = static_cast<BYTE>(line.data_bits);
  settings.StopBits = line.stop_bits == 2 ? TWOSTOPBITS : ONESTOPBIT;
  settings.fDtrControl = DTR_CONTROL_ENABLE;
  settings.fRtsControl = RTS_CONTROL_ENABLE;
  done = done && SetCommState(port, &settings) != 0;
  if (!done) throw std::system_error(static_cast<int>(GetLastError()), std::system_category());
}

}  // namespace

ComPortCarrier::ComPortCarrier(asio::io_context& io, const std::string& name,
                               const std::optional<LineRule>& line)
    : StreamCarrier(asio::serial_port(io, name), kInputLength),
      name_(name),
      settings_(SettingsFor(line.value_or(LineRule()))) {
  Set(stream_.native_handle(), settings_);
}

std::string ComPortCarrier::Opening() const {
  return "opened " + name_;
}

void ComPortCarrier::End(Ending /*ending*/) {
  asio::error_code ignored;  // it may be closed already
  stream_.close(ignored);
}

std::optional<LineSettings> ComPortCarrier::Line() const {
  if (!stream_.is_open()) return std::nullopt;
  return settings_;
}

// A read that is under way takes what comes; only without one there is something left.
std::string ComPortCarrier::Rest() {
  COMSTAT status{};
  DWORD faults = 0;
  if (!stream_.is_open() || !ClearCommError(stream_.native_handle(), &faults, &status)) return {};
  std::string rest(std::min<std::size_t>(status.cbInQue, kInputLength), '\0');
  asio::error_code error;
  if (!rest.empty()) rest.resize(stream_.read_some(asio::buffer(rest), error));
  return rest;
}

}  // namespace kesp::simulator
