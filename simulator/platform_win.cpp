// What the program needs of the system, on Windows.
#include <shellapi.h>
#include <windows.h>
#include <winsock2.h>

#include <asio/detail/socket_option.hpp>
#include <csignal>

#include "simulator/com_port_win.h"
#include "simulator/platform.h"

namespace kesp::simulator {
namespace {

std::string Utf8(const wchar_t* text) {
  const int length = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<std::size_t>(length), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), length, nullptr, nullptr);
  utf8.resize(utf8.size() - 1);
  return utf8;
}

}  // namespace

// Not those of main, which are in the code page of the machine and have their wildcards replaced.
std::vector<std::string> BeginProgram(int /*argc*/, char** /*argv*/) {
  int count = 0;
  wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(Utf8(words[i]));
  LocalFree(words);
  return arguments;
}

// SIGBREAK stands for Ctrl-Break, and for a console that is closed.
void AddEndingSignals(asio::signal_set& signals) {
  signals.add(SIGINT);
  signals.add(SIGTERM);
  signals.add(SIGBREAK);
}

const int kAddressNotAvailable = WSAEADDRNOTAVAIL;

std::tm LocalTime(std::time_t seconds) {
  std::tm local{};
  localtime_s(&local, &seconds);
  return local;
}

// The system's own rule frees a port at once; to share it would let another program take its clients.
void PrepareToListen(asio::ip::tcp::acceptor& acceptor, asio::error_code& error) {
  acceptor.set_option(asio::detail::socket_option::boolean<SOL_SOCKET, SO_EXCLUSIVEADDRUSE>(true), error);
}

std::unique_ptr<Carrier> OpenSerialLine(asio::io_context& io, const std::string& name,
                                        const std::optional<LineRule>& line) {
  return std::make_unique<ComPortCarrier>(io, name, line);
}

}  // namespace kesp::simulator
