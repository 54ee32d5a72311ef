// What each byte lets the GPIB driver answer.
#include "tests/fuzz/conversation_driver.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace kesp {

namespace {

constexpr int kErrorBit = 0x8000;

template <typename Function>
GpibEntryPoint AsEntryPoint(Function function) {
  return reinterpret_cast<GpibEntryPoint>(function);
}

}  // namespace

ConversationDriver* ConversationDriver::current_ = nullptr;

ConversationDriver::ConversationDriver(FuzzInput& input) : input_(input) {
  current_ = this;
}

ConversationDriver::~ConversationDriver() {
  current_ = nullptr;
}

void ConversationDriver::BeGood(std::string reply) {
  good_ = true;
  damage_ = 0;
  reply_ = std::move(reply);
}

std::vector<ConversationDriver::Call> ConversationDriver::TakeCalls() {
  return std::exchange(calls_, {});
}

std::uint32_t ConversationDriver::Load(const std::wstring& file_name, GpibPlace place) {
  Require(!loaded_, "a driver is loaded once");
  const bool is_first = place == GpibPlace::kWindowsFolders && file_name == L"Gpib-32.dll";
  if (damage_ == 1) return kGpibLibraryNotFound;
  if (damage_ == 2) return kGpibLibraryNeedsAnother;
  if (damage_ == 3 && is_first) return kGpibLibraryNotFound;
  loaded_ = true;
  return 0;
}

void ConversationDriver::Unload() {
  Require(loaded_, "a driver is given up that was loaded");
  loaded_ = false;
}

GpibEntryPoint ConversationDriver::Find(const char* name) {
  static constexpr std::pair<std::string_view, GpibEntryPoint (*)()> kEntryPoints[] = {
      {"ibdev", [] { return AsEntryPoint(&Ibdev); }},
      {"ibclr", [] { return AsEntryPoint(&Ibclr); }},
      {"ibeos", [] { return AsEntryPoint(&Ibeos); }},
      {"ibwrt", [] { return AsEntryPoint(&Ibwrt); }},
      {"ibrd", [] { return AsEntryPoint(&Ibrd); }},
      {"ibonl", [] { return AsEntryPoint(&Ibonl); }},
      {"RegisterGpibGlobalsForThread", [] { return AsEntryPoint(&Register); }},
      {"UnregisterGpibGlobalsForThread", [] { return AsEntryPoint(&Unregister); }}};
  const auto* const found = std::find_if(std::begin(kEntryPoints), std::end(kEntryPoints),
                                         [name](const auto& entry) { return entry.first == name; });
  Require(found != std::end(kEntryPoints), "only functions are looked for that the interface has");
  const std::ptrdiff_t at = found - std::begin(kEntryPoints);
  return damage_ >= 8 && damage_ % 8 == at ? nullptr : found->second();
}

ConversationDriver::Outcome ConversationDriver::Decide(std::int32_t count) {
  Outcome outcome{.count = count};
  if (good_ || !input_.HasMore()) return outcome;
  const std::uint8_t what = input_.Byte();
  if (what < 0x90) return outcome;
  if (what < 0xC0) {
    outcome.status = kErrorBit | 0x0100;
    outcome.error = what % 24;
    outcome.count = what % 2 == 0 ? 0 : count;
  } else if (what < 0xE0) {
    outcome.status = input_.Word();
    outcome.error = input_.Byte() * 512;
    outcome.count = input_.Long();
  } else {
    outcome.writes_cells = false;
    outcome.status = what < 0xF0 ? 0x0100 : kErrorBit;
  }
  return outcome;
}

int ConversationDriver::Report(Call call, const Outcome& outcome) {
  const Cells& cells = threads_[present_].cells;
  const bool writes = outcome.writes_cells && cells.status != nullptr;
  if (writes) {
    *cells.status = outcome.status;
    *cells.error = outcome.error;
    *cells.count = outcome.count;
    *cells.long_count = outcome.count;
  }
  const bool is_device = call.name == "ibdev";
  call.failed = !writes && is_device ? call.result < 0 : (outcome.status & kErrorBit) != 0;
  call.error = writes ? static_cast<std::int16_t>(outcome.error) : 0;
  call.count = outcome.count;
  if (!writes && call.name == "ibrd") {
    // Its count is not known.
    call.failed = true;
    call.count = 0;
  }
  if (call.name == "ibonl") {
    open_.erase(call.descriptor);
    if (call.failed) closing_failed_ = true;
  }
  const int result = is_device ? call.result : outcome.status;
  calls_.push_back(std::move(call));
  return result;
}

int ConversationDriver::Ibdev(int board, int primary, int secondary, int time_out, int end_of_transfer,
                              int end_of_string) {
  Require(board == 0 && primary >= 1 && primary <= 30 && secondary >= 0 && secondary <= 30,
          "an address is one");
  Require(end_of_transfer == 1 && end_of_string == 0, "a device is opened with END and without a terminator");
  ConversationDriver& driver = *current_;
  const Outcome outcome = driver.Decide(0);
  const bool failed = (outcome.status & kErrorBit) != 0;
  int descriptor = failed ? -1 : driver.next_descriptor_++;
  if (!driver.good_ && driver.input_.HasMore()) {
    constexpr int kOdd[] = {0, -1, 40'000, 70'000, 32'767, 5};
    const std::uint8_t which = driver.input_.Byte();
    if (which >= 0xE0) descriptor = kOdd[which % 6];
  }
  if (descriptor > 0) driver.open_.insert(descriptor);
  return driver.Report(
      {.name = "ibdev", .descriptor = primary, .argument = time_out, .bytes = {}, .result = descriptor},
      outcome);
}

int ConversationDriver::Ibclr(int descriptor) {
  return current_->Report({.name = "ibclr", .descriptor = descriptor, .bytes = {}}, current_->Decide(0));
}

int ConversationDriver::Ibeos(int descriptor, int mode) {
  return current_->Report({.name = "ibeos", .descriptor = descriptor, .argument = mode, .bytes = {}},
                          current_->Decide(0));
}

int ConversationDriver::Ibonl(int descriptor, int online) {
  Require(online == 0, "devices and boards are taken offline only");
  return current_->Report({.name = "ibonl", .descriptor = descriptor, .bytes = {}}, current_->Decide(0));
}

int ConversationDriver::Ibwrt(int descriptor, const void* bytes, GpibLength length) {
  std::string written(static_cast<const char*>(bytes), static_cast<std::size_t>(length));
  return current_->Report({.name = "ibwrt", .descriptor = descriptor, .bytes = std::move(written)},
                          current_->Decide(static_cast<std::int32_t>(length)));
}

int ConversationDriver::Ibrd(int descriptor, void* buffer, GpibLength length) {
  Require(length == 50, "a read takes 50 characters");
  ConversationDriver& driver = *current_;
  std::string reply = driver.reply_;
  if (!driver.good_) reply = driver.input_.Bytes(driver.input_.Byte() % 64U);
  reply.resize(std::min<std::size_t>(reply.size(), 50));
  auto* const characters = static_cast<char*>(buffer);
  std::memcpy(characters, reply.data(), reply.size());
  const Outcome outcome = driver.Decide(static_cast<std::int32_t>(reply.size()));
  return driver.Report({.name = "ibrd", .descriptor = descriptor, .bytes = std::string(characters, 50)},
                       outcome);
}

int ConversationDriver::Register(std::int32_t* status, std::int32_t* error, std::int32_t* count,
                                 std::int32_t* long_count) {
  ConversationDriver& driver = *current_;
  Thread& thread = driver.threads_[driver.present_];
  for (const Thread& other : driver.threads_) {
    Require(&other == &thread || other.cells.status != status, "each thread has cells of its own");
  }
  int result = 0;
  if (!driver.good_ && driver.input_.HasMore()) {
    const std::uint8_t which = driver.input_.Byte();
    if (which >= 0xC0) result = which % 5;
  }
  thread.is_refused = result != 0;
  if (result == 0) thread.cells = {status, error, count, long_count};
  // What the second registration comes to is not looked at.
  const bool is_second = std::exchange(thread.last_registration, result) == 1;
  if (is_second) thread.last_registration = 0;
  if (result > 1 && !is_second) {
    driver.calls_.push_back({.name = "refused", .bytes = {}, .failed = true});
    driver.closing_failed_ = true;
  }
  return result;
}

int ConversationDriver::Unregister() {
  current_->threads_[current_->present_].cells = {};
  return 0;
}

void ConversationDriver::EndThread() {
  Thread& thread = threads_[present_];
  thread.binding.emplace();
  Require(thread.cells.status == nullptr || thread.is_refused, "a thread takes its cells along when it ends");
  thread.cells = {};
  thread.last_registration = 0;
}

void ConversationDriver::EndThreads() {
  for (present_ = 0; present_ < kThreads; ++present_) EndThread();
  present_ = 0;
}

}  // namespace kesp
