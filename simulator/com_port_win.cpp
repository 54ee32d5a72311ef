// A COM port as the carrier of a conversation.
#include "simulator/com_port_win.h"

#include <windows.h>

#include <asio/steady_timer.hpp>
#include <asio/write.hpp>
#include <system_error>

#include "simulator/carrier_stream.h"

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
    : name_(name), settings_(SettingsFor(line.value_or(LineRule()))), port_(io, name), input_(kInputLength) {
  Set(port_.native_handle(), settings_);
}

std::string ComPortCarrier::Opening() const {
  return "opened " + name_;
}

asio::awaitable<Arrival> ComPortCarrier::Receive(std::chrono::milliseconds patience) {
  return ReceiveFrom(port_, input_, patience);
}

asio::awaitable<void> ComPortCarrier::Send(std::string_view bytes) {
  co_await asio::async_write(port_, asio::buffer(bytes), asio::use_awaitable);
}

asio::awaitable<std::size_t> ComPortCarrier::SendEndlessly(std::string_view block,
                                                           std::chrono::milliseconds length) {
  // A client that does not read may hold up a write past the end.
  asio::steady_timer timer(port_.get_executor(), length);
  bool time_is_up = false;
  timer.async_wait([this, &time_is_up](const asio::error_code& error) {
    if (error) return;
    time_is_up = true;
    asio::error_code ignored;
    port_.cancel(ignored);
  });
  std::size_t total = 0;
  asio::error_code error;
  while (!time_is_up && !error) {
    const std::string_view rest = block.substr(total % block.size(), kInputLength);
    total +=
        co_await port_.async_write_some(asio::buffer(rest), asio::redirect_error(asio::use_awaitable, error));
  }
  co_return total;
}

asio::awaitable<void> ComPortCarrier::Pause(std::chrono::milliseconds length) {
  asio::steady_timer timer(port_.get_executor(), length);
  co_await timer.async_wait(asio::use_awaitable);
}

void ComPortCarrier::End(Ending /*ending*/) {
  asio::error_code ignored;  // it may be closed already
  port_.close(ignored);
}

std::optional<LineSettings> ComPortCarrier::Line() const {
  if (!port_.is_open()) return std::nullopt;
  return settings_;
}

}  // namespace kesp::simulator
