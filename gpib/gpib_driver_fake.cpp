// The GPIB driver for unit tests: its entry points, and the threads around them.
#include "gpib/gpib_driver_fake.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "support/failing_allocation_fake.h"

namespace kesp {

namespace {

constexpr std::uint32_t kAccessDenied = 5;
constexpr int kOtherRefusal = 4;  // of a registration, none of the published ones

// What holds while an entry point runs. A driver is written in C: no exception leaves it.
struct EntryPoint {
  explicit EntryPoint(std::mutex& mutex) : lock(mutex) {}

  std::lock_guard<std::mutex> lock;
  PassingAllocations passing;
};

template <typename Function>
GpibEntryPoint AsEntryPoint(Function function) {
  return reinterpret_cast<GpibEntryPoint>(function);
}

}  // namespace

GpibDriverFake* GpibDriverFake::current_ = nullptr;

GpibOutcome GpibOutcome::Failure(std::int32_t error) {
  return {.status = 0x8100, .error = error, .result = -1};
}

GpibOutcome GpibOutcome::TimeOut() {
  return {.status = 0xC100, .error = 6};
}

GpibDriverFake::GpibDriverFake() {
  current_ = this;
}

GpibDriverFake::~GpibDriverFake() {
  current_ = nullptr;
}

std::vector<std::wstring> GpibDriverFake::FileNames() const {
  return file_names;
}

std::uint32_t GpibDriverFake::Load(const std::wstring& file_name, GpibPlace place) {
  if (loading.IsFailing()) return kAccessDenied;
  if (place == GpibPlace::kFolderOfThisLibrary) {
    loads.push_back(L"beside " + file_name);
    const auto found = beside.find(file_name);
    return found == beside.end() ? kGpibLibraryNotFound : found->second;
  }
  loads.push_back(file_name);
  std::exchange(on_load, [] {})();
  const auto found = load_errors.find(file_name);
  return found == load_errors.end() ? 0 : found->second;
}

void GpibDriverFake::Unload() {
  ++unloads;
}

GpibEntryPoint GpibDriverFake::Find(const char* name) {
  ++lookups[name];
  if (loading.IsFailing() || missing.contains(name)) return nullptr;
  static const std::map<std::string, GpibEntryPoint> kEntryPoints = {
      {"ibdev", AsEntryPoint(&Ibdev)},
      {"ibclr", AsEntryPoint(&Ibclr)},
      {"ibeos", AsEntryPoint(&Ibeos)},
      {"ibwrt", AsEntryPoint(&Ibwrt)},
      {"ibrd", AsEntryPoint(&Ibrd)},
      {"ibonl", AsEntryPoint(&Ibonl)},
      {"RegisterGpibGlobalsForThread", AsEntryPoint(&Register)},
      {"UnregisterGpibGlobalsForThread", AsEntryPoint(&Unregister)}};
  const auto found = kEntryPoints.find(name);
  return found == kEntryPoints.end() ? nullptr : found->second;
}

void GpibDriverFake::GiveCellsToTheHost() {
  const std::lock_guard lock(mutex_);
  cells_.erase(std::this_thread::get_id());
  hosts_.insert(std::this_thread::get_id());
}

std::set<std::thread::id> GpibDriverFake::Registered() {
  const std::lock_guard lock(mutex_);
  std::set<std::thread::id> threads;
  for (const auto& [thread, cells] : cells_) threads.insert(thread);
  return threads;
}

int GpibDriverFake::Ibdev(int board, int primary, int secondary, int time_out, int end_of_transfer,
                          int end_of_string) {
  const EntryPoint entry(current_->mutex_);
  std::string text = "ibdev(";
  for (int argument : {board, primary, secondary, time_out, end_of_transfer}) {
    text += std::to_string(argument) + ",";
  }
  const GpibOutcome outcome = current_->Answer("ibdev", text + std::to_string(end_of_string) + ")",
                                               {.result = current_->next_descriptor_});
  if (outcome.result == current_->next_descriptor_) ++current_->next_descriptor_;
  if (outcome.status < 0x8000) current_->open.insert(outcome.result);
  return current_->Report(outcome).result;
}

int GpibDriverFake::Ibclr(int descriptor) {
  return OnDevice("ibclr", descriptor, "");
}

int GpibDriverFake::Ibeos(int descriptor, int mode) {
  return OnDevice("ibeos", descriptor, "," + std::to_string(mode));
}

int GpibDriverFake::Ibonl(int descriptor, int online) {
  return OnDevice("ibonl", descriptor, "," + std::to_string(online));
}

int GpibDriverFake::Ibwrt(int descriptor, const void* bytes, GpibLength length) {
  const PassingAllocations passing;
  const std::string written(static_cast<const char*>(bytes), static_cast<std::size_t>(length));
  return OnDevice("ibwrt", descriptor, "," + written, {.count = static_cast<std::int32_t>(length)});
}

int GpibDriverFake::Ibrd(int descriptor, void* buffer, GpibLength length) {
  const EntryPoint entry(current_->mutex_);
  auto* characters = static_cast<char*>(buffer);
  const auto size = static_cast<std::size_t>(length);
  current_->buffer_on_entry.assign(characters, size);
  const std::string text = "ibrd(" + std::to_string(descriptor) + "," + std::to_string(length) + ")";
  const auto available = static_cast<std::int32_t>(std::min(size, current_->waiting.size()));
  const GpibOutcome otherwise = available == 0 ? GpibOutcome::TimeOut() : GpibOutcome{.count = available};
  const GpibOutcome outcome = current_->Answer("ibrd", text, current_->IfOpen(descriptor, otherwise));
  const auto count = static_cast<std::size_t>(outcome.count);
  if (count <= current_->waiting.size()) {
    std::memcpy(characters, current_->waiting.data(), count);
    current_->waiting.erase(0, count);
  }
  return current_->Report(outcome).status;
}

int GpibDriverFake::Register(std::int32_t* status, std::int32_t* error, std::int32_t* count,
                             std::int32_t* long_count) {
  const EntryPoint entry(current_->mutex_);
  current_->registrations.emplace_back("register");
  int result = current_->hosts_.contains(std::this_thread::get_id()) ? 1 : 0;
  if (current_->registering.IsFailing()) result = kOtherRefusal;
  if (!current_->registration_results.empty()) {
    result = current_->registration_results.front();
    current_->registration_results.erase(current_->registration_results.begin());
  }
  if (result == 0) current_->cells_[std::this_thread::get_id()] = {status, error, count, long_count};
  return result;
}

int GpibDriverFake::Unregister() {
  const EntryPoint entry(current_->mutex_);
  current_->registrations.emplace_back("unregister");
  const std::thread::id thread = std::this_thread::get_id();
  return current_->cells_.erase(thread) + current_->hosts_.erase(thread) != 0 ? 0 : 1;
}

int GpibDriverFake::OnDevice(const std::string& name, int descriptor, const std::string& arguments,
                             const GpibOutcome& otherwise) {
  const EntryPoint entry(current_->mutex_);
  const std::string call = name + "(" + std::to_string(descriptor) + arguments + ")";
  const bool is_board = name == "ibonl" && descriptor == 0;
  const GpibOutcome outcome =
      current_->Answer(name, call, is_board ? otherwise : current_->IfOpen(descriptor, otherwise));
  if (name == "ibonl" && outcome.status < 0x8000) {
    current_->open.erase(descriptor);
    current_->kept_open.erase(descriptor);
  } else if (name == "ibonl" && current_->open.contains(descriptor)) {
    current_->kept_open.insert(descriptor);
  }
  return current_->Report(outcome).status;
}

GpibOutcome GpibDriverFake::IfOpen(int descriptor, const GpibOutcome& otherwise) const {
  return !knows_descriptors || open.contains(descriptor) ? otherwise : GpibOutcome::Failure(0);
}

GpibOutcome GpibDriverFake::Answer(const std::string& name, const std::string& call,
                                   const GpibOutcome& otherwise) {
  heard.push_back(call);
  on_call(call);
  if (faults.IsFailing()) return GpibOutcome::Failure(14);
  const auto found = answers.find(name);
  return found == answers.end() ? otherwise : found->second();
}

const GpibOutcome& GpibDriverFake::Report(const GpibOutcome& outcome) {
  const auto found = cells_.find(std::this_thread::get_id());
  if (found != cells_.end() && (outcome.status >= 0x8000 || !reports_failures_only)) {
    *found->second.status = outcome.status;
    *found->second.error = outcome.error;
    *found->second.count = outcome.count;
    *found->second.long_count = outcome.long_count.value_or(outcome.count);
  }
  return outcome;
}

GpibThreadsFake::GpibThreadsFake() = default;

GpibThreadsFake::~GpibThreadsFake() = default;

GpibThread& GpibThreadsFake::Current() {
  const std::lock_guard lock(mutex_);
  std::unique_ptr<GpibThread>& thread = threads_[std::this_thread::get_id()];
  if (thread == nullptr) thread = std::make_unique<GpibThread>();
  return *thread;
}

void GpibThreadsFake::EndThread() {
  const std::lock_guard lock(mutex_);
  threads_.erase(std::this_thread::get_id());
}

}  // namespace kesp
