// Calls of the simulated GPIB driver's own exports.
#include "tests/clients/simulated_driver.h"

#include <gtest/gtest.h>

#include <array>
#include <set>
#include <sstream>

namespace kesp::clients {

namespace {

constexpr DWORD kPatience = 10000;
constexpr std::size_t kMostLines = 60;

using Load = int __stdcall(const char* json, char* message, long size);
using Hold = int __stdcall(const char* call);
using Record = long __stdcall(char* text, long size);
using OpenDescriptors = int __stdcall();

// "1 ibclr(1) = 256 sta ..." without the thread and what came of it; empty for what is no call of the bus.
std::string CallOf(const std::string& line) {
  const std::size_t begin = line.find(' ') + 1;
  if (line.compare(begin, 2, "ib") != 0) return {};
  const std::size_t end = line.find(") = ");
  return line.substr(begin, end + 1 - begin);
}

// Whether a thread is still registered, or has ended so.
bool IsAnyRegistered(const CallLines& record) {
  std::set<std::string> registered;
  for (const std::string& line : record) {
    if (line.ends_with("ended, registered")) return true;
    const std::string thread = line.substr(0, line.find(' '));
    if (line.ends_with(" UnregisterGpibGlobalsForThread() = 0")) registered.erase(thread);
    const bool is_registration = line.find(" RegisterGpibGlobalsForThread(") != std::string::npos;
    if (is_registration && line.ends_with(") = 0")) registered.insert(thread);
  }
  return !registered.empty();
}

}  // namespace

SimulatedDriver::SimulatedDriver()
    : module_(LoadLibraryExW(L"Gpib-32.dll", nullptr, LOAD_LIBRARY_SEARCH_APPLICATION_DIR)) {
  EXPECT_NE(module_, nullptr) << "no driver beside the program: run this with tools/wine-run --driver";
}

SimulatedDriver::~SimulatedDriver() {
  if (module_ != nullptr) FreeLibrary(module_);
}

void SimulatedDriver::Load(const std::string& description) const {
  std::array<char, 1024> message{};
  const auto load = Find<clients::Load>("KespSimulationLoad");
  if (load == nullptr) return;
  EXPECT_EQ(load(description.c_str(), message.data(), static_cast<long>(message.size())), 0)
      << message.data() << "\n"
      << description;
}

void SimulatedDriver::Hold(const char* call) const {
  const auto hold = Find<clients::Hold>("KespSimulationHold");
  EXPECT_TRUE(hold == nullptr || hold(call) == 0);
}

CallLines SimulatedDriver::Record() const {
  const auto record = Find<clients::Record>("KespSimulationRecord");
  if (record == nullptr) return {};
  std::string text(static_cast<std::size_t>(record(nullptr, 0)), '\0');
  record(text.data(), static_cast<long>(text.size()));
  text.pop_back();
  CallLines lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

CallLines SimulatedDriver::Calls() const {
  CallLines calls;
  for (const std::string& line : Record()) {
    if (std::string call = CallOf(line); !call.empty()) calls.push_back(std::move(call));
  }
  return calls;
}

std::string SimulatedDriver::RecordText() const {
  const CallLines record = Record();
  std::string text;
  const std::size_t first = record.size() > kMostLines ? record.size() - kMostLines : 0;
  for (std::size_t i = first; i < record.size(); ++i) text += record[i] + "\n";
  return text;
}

int SimulatedDriver::OpenDescriptors() const {
  const auto open_descriptors = Find<clients::OpenDescriptors>("KespSimulationOpenDescriptors");
  return open_descriptors == nullptr ? -1 : open_descriptors();
}

void SimulatedDriver::ExpectNothingLeft() const {
  // COM keeps a thread for objects of others until some time after the last of those has left its apartment.
  const DWORD start = GetTickCount();
  while (IsAnyRegistered(Record()) && GetTickCount() - start < kPatience) Sleep(1);
  EXPECT_FALSE(IsAnyRegistered(Record())) << RecordText();
  EXPECT_EQ(OpenDescriptors(), 0) << RecordText();
}

template <class Function>
Function* SimulatedDriver::Find(const char* name) const {
  if (module_ == nullptr) return nullptr;
  const FARPROC found = GetProcAddress(module_, name);
  EXPECT_NE(found, nullptr) << name;
  // Through a pointer to nothing in particular: the compiler distrusts a cast between function types.
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(found));
}

}  // namespace kesp::clients
