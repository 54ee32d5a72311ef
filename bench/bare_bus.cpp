// Open, write, read, close.
#include "bench/bare_bus.h"

#include <array>
#include <stdexcept>

namespace kesp::bench {

namespace {

// Bits of the status word, and a time-out code of the driver.
constexpr int kError = 0x8000;
constexpr int kEnd = 0x2000;
constexpr int kOneSecond = 11;
// REOS and the first character of the library's EOSChar.
constexpr int kEndReadAt = 0x400 | '1';

void Check(int status, const char* what) {
  if ((status & kError) == 0) return;
  throw std::runtime_error(std::string(what) + " failed: status " + std::to_string(status));
}

}  // namespace

BareBus::BareBus() : module_(LoadLibraryExW(L"Gpib-32.dll", nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS)) {
  if (module_ == nullptr) throw std::runtime_error("Gpib-32.dll does not load; tools/bench puts it there");
  Find(ibdev_, "ibdev");
  Find(ibclr_, "ibclr");
  Find(ibeos_, "ibeos");
  Find(ibwrt_, "ibwrt");
  Find(ibrd_, "ibrd");
  Find(ibonl_, "ibonl");
  Find(load_, "KespSimulationLoad");
}

template <class Function>
void BareBus::Find(Function& place, const char* name) const {
  place = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
  if (place == nullptr) throw std::runtime_error(std::string("Gpib-32.dll has no ") + name);
}

void BareBus::Load(const std::string& description) const {
  std::array<char, 256> message{};
  if (load_(description.c_str(), message.data(), static_cast<long>(message.size())) != 0)
    throw std::runtime_error(message.data());
}

int BareBus::Open(int primary_address) const {
  const int device = ibdev_(0, primary_address, 0, kOneSecond, 1, 0);
  if (device < 0) throw std::runtime_error("ibdev failed");
  Check(ibclr_(device), "ibclr");
  Check(ibeos_(device, kEndReadAt), "ibeos");
  return device;
}

void BareBus::Close(int device) const {
  Check(ibonl_(device, 0), "ibonl of the device");
  Check(ibonl_(0, 0), "ibonl of the board");
}

bool BareBus::Write(int device, const std::string& bytes) const {
  return (ibwrt_(device, bytes.data(), static_cast<long>(bytes.size())) & kError) == 0;
}

void BareBus::Read(int device) const {
  std::array<char, 50> buffer;
  const int status = ibrd_(device, buffer.data(), static_cast<long>(buffer.size()));
  Check(status, "ibrd");
  if ((status & kEnd) == 0) throw std::runtime_error("the reply is longer than a read");
}

}  // namespace kesp::bench
