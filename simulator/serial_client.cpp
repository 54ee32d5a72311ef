// A client of a serial line for tests, with a deadline on every wait.
#include "simulator/serial_client.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

namespace kesp::simulator {
namespace {

constexpr int kDeadlineMilliseconds = 10'000;

[[noreturn]] void Fail(int error) {
  throw std::system_error(error, std::generic_category());
}

}  // namespace

SerialClient::SerialClient(const std::string& path)
    : line_(::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
  if (line_ < 0) Fail(errno);
}

SerialClient::~SerialClient() {
  ::close(line_);
}

void SerialClient::Set(unsigned rate, unsigned stop_bits) const {
  termios settings{};
  if (::tcgetattr(line_, &settings) != 0) Fail(errno);
  ::cfmakeraw(&settings);
  ::cfsetspeed(&settings, rate);
  if (stop_bits == 2) settings.c_cflag |= CSTOPB;
  if (::tcsetattr(line_, TCSANOW, &settings) != 0) Fail(errno);
}

void SerialClient::Send(std::string_view bytes) const {
  while (!bytes.empty()) {
    pollfd wait{line_, POLLOUT, 0};
    if (::poll(&wait, 1, kDeadlineMilliseconds) == 0) Fail(ETIMEDOUT);
    const ssize_t count = ::write(line_, bytes.data(), bytes.size());
    if (count < 0 && errno != EAGAIN) Fail(errno);
    if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

std::size_t SerialClient::Fill() const {
  const std::string block(4096, 'x');
  std::size_t total = 0;
  for (;;) {
    pollfd wait{line_, POLLOUT, 0};
    if (::poll(&wait, 1, 500) == 0) return total;
    const ssize_t count = ::write(line_, block.data(), block.size());
    if (count < 0 && errno != EAGAIN) Fail(errno);
    if (count > 0) total += static_cast<std::size_t>(count);
  }
}

std::string SerialClient::ReadTo(std::string_view terminator, std::chrono::milliseconds deadline) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point end = Clock::now() + deadline;
  for (;;) {
    const std::size_t found = buffer_.find(terminator);
    if (found != std::string::npos) {
      std::string reply = buffer_.substr(0, found + terminator.size());
      buffer_.erase(0, reply.size());
      return reply;
    }
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    pollfd wait{line_, POLLIN, 0};
    if (left <= 0 || ::poll(&wait, 1, static_cast<int>(left)) == 0) break;
    std::array<char, 4096> piece;
    const ssize_t count = ::read(line_, piece.data(), piece.size());
    if (count <= 0) break;
    buffer_.append(piece.data(), static_cast<std::size_t>(count));
  }
  return std::exchange(buffer_, std::string());
}

bool SerialClient::IsGone() const {
  pollfd wait{line_, 0, 0};
  return ::poll(&wait, 1, kDeadlineMilliseconds) == 1 && (wait.revents & POLLHUP) != 0;
}

std::string SerialClient::Ask(std::string_view command) {
  Send(std::string(command) + "\r");
  std::string reply = ReadTo("\r");
  if (!reply.empty() && reply.back() == '\r') reply.pop_back();
  return reply;
}

}  // namespace kesp::simulator
