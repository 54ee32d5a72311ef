// The connection to the wire, and its thread.
#include "tests/clients/serial_wire.h"

#include <ws2tcpip.h>

#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace kesp::clients {

namespace {

constexpr std::string_view kReady = "ready\n";
constexpr SerialWire::Milliseconds kPoll{10};

std::string Setting(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr)
    throw std::runtime_error(std::string(name) + " is not set: run this with tools/with-serial-line");
  return value;
}

SOCKET ConnectedToWire() {
  const SOCKET connected = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<u_short>(std::stoi(Setting("KESP_INSTRUMENT_PORT"))));
  address.sin_addr.s_addr = inet_addr(Setting("KESP_INSTRUMENT_HOST").c_str());
  if (connect(connected, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    closesocket(connected);
    throw std::runtime_error("the wire cannot be reached");
  }
  const BOOL at_once = TRUE;
  setsockopt(connected, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&at_once), sizeof at_once);
  const DWORD deadline = static_cast<DWORD>(SerialWire::kDeadline.count());
  setsockopt(connected, SOL_SOCKET, SO_SNDTIMEO, reinterpret_cast<const char*>(&deadline), sizeof deadline);
  return connected;
}

bool WaitReadable(SOCKET socket, SerialWire::Milliseconds time) {
  fd_set readable;
  FD_ZERO(&readable);
  FD_SET(socket, &readable);
  const auto milliseconds = static_cast<long>(time.count());
  timeval limit{milliseconds / 1000, milliseconds % 1000 * 1000};
  return select(0, &readable, nullptr, nullptr, &limit) == 1;
}

// Byte by byte, since what follows is the line's.
void AwaitReady(SOCKET socket) {
  for (const char expected : kReady) {
    char byte = 0;
    if (!WaitReadable(socket, SerialWire::kDeadline) || recv(socket, &byte, 1, 0) != 1 || byte != expected) {
      throw std::runtime_error("the wire did not become ready");
    }
  }
}

// Whether a port of that name can be found, though somebody may have it open.
bool PortExists() {
  HANDLE port = CreateFileW(SerialWire::PortName().c_str(), 0, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  if (port == INVALID_HANDLE_VALUE) return GetLastError() != ERROR_FILE_NOT_FOUND;
  CloseHandle(port);
  return true;
}

}  // namespace

SerialWire::Answer& SerialWire::Answer::Reply(std::string bytes) {
  const std::lock_guard locked(mutex_);
  pieces_.push_back({std::move(bytes), Milliseconds(0)});
  return *this;
}

SerialWire::Answer& SerialWire::Answer::After(Milliseconds delay) {
  const std::lock_guard locked(mutex_);
  pieces_.back().delay = delay;
  return *this;
}

SerialWire::SerialWire() {
  WSADATA data;
  WSAStartup(MAKEWORD(2, 2), &data);
  Connect();
}

SerialWire::~SerialWire() {
  Disconnect();
  WSACleanup();
}

int SerialWire::PortNumber() {
  return std::stoi(Setting("KESP_SERIAL_PORT"));
}

std::wstring SerialWire::PortName() {
  return LR"(\\.\COM)" + std::to_wstring(PortNumber());
}

void SerialWire::Send(std::string_view bytes) {
  if (!SendAll(bytes)) throw std::runtime_error("the wire took no more bytes");
}

std::string SerialWire::Receive(std::size_t count, Milliseconds deadline) {
  std::unique_lock locked(mutex_);
  arrived_.wait_for(locked, deadline, [&] { return untaken_.size() >= count; });
  std::string taken = untaken_.substr(0, count);
  untaken_.erase(0, taken.size());
  return taken;
}

std::string SerialWire::ReceiveUntilQuiet(Milliseconds quiet) {
  std::unique_lock locked(mutex_);
  std::size_t seen = 0;
  do {
    seen = untaken_.size();
  } while (arrived_.wait_for(locked, quiet, [&] { return untaken_.size() > seen; }));
  return std::exchange(untaken_, {});
}

SerialWire::Answer& SerialWire::OnBytes(std::string bytes) {
  const std::lock_guard locked(mutex_);
  answers_.push_back(Answer(mutex_, std::move(bytes)));
  return answers_.back();
}

void SerialWire::Pull() {
  Disconnect();
  const Clock::time_point deadline = Clock::now() + kDeadline;
  while (PortExists()) {
    if (Clock::now() > deadline) throw std::runtime_error("the port did not vanish");
    std::this_thread::sleep_for(kPoll);
  }
}

void SerialWire::Reconnect() {
  Connect();
}

void SerialWire::Connect() {
  socket_ = ConnectedToWire();
  AwaitReady(socket_);
  untaken_.clear();
  unanswered_.clear();
  due_.clear();
  ending_ = false;
  thread_ = std::thread([this] { Run(); });
}

void SerialWire::Disconnect() {
  ending_ = true;
  if (thread_.joinable()) thread_.join();
  if (socket_ != INVALID_SOCKET) closesocket(socket_);
  socket_ = INVALID_SOCKET;
}

void SerialWire::Run() {
  std::string piece(65536, '\0');
  while (!ending_ && SendWhatIsDue()) {
    if (!reading_) {
      std::this_thread::sleep_for(kPoll);
      continue;
    }
    if (!WaitReadable(socket_, Milliseconds(1))) continue;
    const int count = recv(socket_, piece.data(), static_cast<int>(piece.size()), 0);
    if (count <= 0) return;
    Take(std::string_view(piece).substr(0, static_cast<std::size_t>(count)));
  }
}

void SerialWire::Take(std::string_view bytes) {
  const std::lock_guard locked(mutex_);
  untaken_ += bytes;
  for (const char byte : bytes) {
    unanswered_ += byte;
    ScheduleAnswers();
  }
  arrived_.notify_all();
}

void SerialWire::ScheduleAnswers() {
  for (const Answer& answer : answers_) {
    if (!unanswered_.ends_with(answer.trigger_)) continue;
    unanswered_.clear();
    Clock::time_point time = Clock::now();
    for (const Answer::Piece& piece : answer.pieces_) {
      time += piece.delay;
      due_.push_back({time, piece.bytes});
    }
    return;
  }
}

bool SerialWire::SendWhatIsDue() {
  std::string bytes;
  {
    const std::lock_guard locked(mutex_);
    // In the order in which they were called for, as on any line.
    while (!due_.empty() && due_.front().time <= Clock::now()) {
      bytes += due_.front().bytes;
      due_.pop_front();
    }
  }
  return SendAll(bytes);
}

bool SerialWire::SendAll(std::string_view bytes) const {
  while (!bytes.empty()) {
    const int count = send(socket_, bytes.data(), static_cast<int>(bytes.size()), 0);
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace kesp::clients
