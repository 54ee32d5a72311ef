// A GPIB driver for unit tests: entry points that write down their calls and answer from a script, with the
// DLL and the threads around them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "gpib/gpib_driver.h"

namespace kesp {

// What a call of the driver comes to.
struct GpibOutcome {
  std::int32_t status = 0x0100;  // CMPL
  std::int32_t error = 0;
  std::int32_t count = 0;
  int result = 0;                            // ibdev's descriptor
  std::optional<std::int32_t> long_count{};  // the same count where it is not set

  static GpibOutcome Failure(std::int32_t error) { return {.status = 0x8100, .error = error, .result = -1}; }
  static GpibOutcome TimeOut() { return {.status = 0xC100, .error = 6}; }
};

// There is one at a time, since entry points know nothing but their arguments. Calls may come from several
// threads.
class GpibDriverFake final : public GpibLibrary {
 public:
  GpibDriverFake() { current_ = this; }
  ~GpibDriverFake() override { current_ = nullptr; }
  GpibDriverFake(const GpibDriverFake&) = delete;
  GpibDriverFake& operator=(const GpibDriverFake&) = delete;

  // GpibLibrary
  std::vector<std::wstring> FileNames() const override { return file_names; }
  std::uint32_t Load(const std::wstring& file_name) override {
    loads.push_back(file_name);
    std::exchange(on_load, [] {})();
    const auto found = load_errors.find(file_name);
    return found == load_errors.end() ? 0 : found->second;
  }
  void Unload() override { ++unloads; }
  GpibEntryPoint Find(const char* name) override {
    ++lookups[name];
    if (missing.contains(name)) return nullptr;
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

  // The DLL.
  std::vector<std::wstring> file_names = {L"Gpib-32.dll"};
  std::map<std::wstring, std::uint32_t> load_errors;
  std::set<std::string> missing;
  std::vector<std::wstring> loads;
  std::function<void()> on_load = [] {};  // run in the next Load
  std::map<std::string, int> lookups;
  int unloads = 0;

  // The bus calls so far, for example "ibwrt(7,*IDN?\n)"; registrations stand apart.
  std::vector<std::string> heard;
  std::vector<std::string> registrations;
  // Told each bus call before it is answered.
  std::function<void(const std::string&)> on_call = [](const std::string&) {};
  // Answers calls by the entry point's name; others succeed. ibdev hands out 7, 8 and so on by itself.
  std::map<std::string, std::function<GpibOutcome()>> answers;
  // What an ibrd finds; taken from the front, a time-out when there is nothing.
  std::string waiting;
  // The bus call (1 is the first) that fails with error 14; 0 for none.
  int failing_call = 0;
  int calls = 0;
  // Results of RegisterGpibGlobalsForThread, then 0.
  std::vector<int> registration_results;
  // Whether descriptors that are not open fail with error 0, the system error.
  bool knows_descriptors = false;
  std::set<int> open;
  // What the last ibrd's buffer held before it was filled.
  std::string buffer_on_entry;

  // What happens when the host program registers cells of its own for the calling thread.
  void GiveCellsToTheHost() {
    const std::lock_guard lock(mutex_);
    cells_.erase(std::this_thread::get_id());
  }
  // The threads that are registered.
  std::set<std::thread::id> Registered() {
    const std::lock_guard lock(mutex_);
    std::set<std::thread::id> threads;
    for (const auto& [thread, cells] : cells_) threads.insert(thread);
    return threads;
  }

 private:
  struct Cells {
    std::int32_t* status;
    std::int32_t* error;
    std::int32_t* count;
    std::int32_t* long_count;
  };

  template <typename Function>
  static GpibEntryPoint AsEntryPoint(Function function) {
    return reinterpret_cast<GpibEntryPoint>(function);
  }

  static int Ibdev(int board, int primary, int secondary, int time_out, int end_of_transfer,
                   int end_of_string) {
    std::string text = "ibdev(";
    for (int argument : {board, primary, secondary, time_out, end_of_transfer}) {
      text += std::to_string(argument) + ",";
    }
    const std::lock_guard lock(current_->mutex_);
    const GpibOutcome outcome = current_->Answer("ibdev", text + std::to_string(end_of_string) + ")",
                                                 {.result = current_->next_descriptor_});
    if (outcome.result == current_->next_descriptor_) ++current_->next_descriptor_;
    if (outcome.status < 0x8000) current_->open.insert(outcome.result);
    return current_->Report(outcome).result;
  }
  static int Ibclr(int descriptor) { return OnDevice("ibclr", descriptor, ""); }
  static int Ibeos(int descriptor, int mode) {
    return OnDevice("ibeos", descriptor, "," + std::to_string(mode));
  }
  static int Ibonl(int descriptor, int online) {
    return OnDevice("ibonl", descriptor, "," + std::to_string(online));
  }
  static int Ibwrt(int descriptor, const void* bytes, GpibLength length) {
    const std::string written(static_cast<const char*>(bytes), static_cast<std::size_t>(length));
    return OnDevice("ibwrt", descriptor, "," + written, {.count = static_cast<std::int32_t>(length)});
  }
  static int Ibrd(int descriptor, void* buffer, GpibLength length) {
    const std::lock_guard lock(current_->mutex_);
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
  static int Register(std::int32_t* status, std::int32_t* error, std::int32_t* count,
                      std::int32_t* long_count) {
    const std::lock_guard lock(current_->mutex_);
    current_->registrations.emplace_back("register");
    int result = 0;
    if (!current_->registration_results.empty()) {
      result = current_->registration_results.front();
      current_->registration_results.erase(current_->registration_results.begin());
    }
    if (result == 0) current_->cells_[std::this_thread::get_id()] = {status, error, count, long_count};
    return result;
  }
  static int Unregister() {
    const std::lock_guard lock(current_->mutex_);
    current_->registrations.emplace_back("unregister");
    return current_->cells_.erase(std::this_thread::get_id()) == 1 ? 0 : 1;
  }

  static int OnDevice(const std::string& name, int descriptor, const std::string& arguments,
                      const GpibOutcome& otherwise = {}) {
    const std::lock_guard lock(current_->mutex_);
    const std::string call = name + "(" + std::to_string(descriptor) + arguments + ")";
    const bool is_board = name == "ibonl" && descriptor == 0;
    const GpibOutcome outcome =
        current_->Answer(name, call, is_board ? otherwise : current_->IfOpen(descriptor, otherwise));
    if (name == "ibonl" && outcome.status < 0x8000) current_->open.erase(descriptor);
    return current_->Report(outcome).status;
  }

  GpibOutcome IfOpen(int descriptor, const GpibOutcome& otherwise) const {
    return !knows_descriptors || open.contains(descriptor) ? otherwise : GpibOutcome::Failure(0);
  }

  GpibOutcome Answer(const std::string& name, const std::string& call, const GpibOutcome& otherwise) {
    heard.push_back(call);
    on_call(call);
    if (++calls == failing_call) return GpibOutcome::Failure(14);
    const auto found = answers.find(name);
    return found == answers.end() ? otherwise : found->second();
  }
  const GpibOutcome& Report(const GpibOutcome& outcome) {
    const auto found = cells_.find(std::this_thread::get_id());
    if (found != cells_.end()) {
      *found->second.status = outcome.status;
      *found->second.error = outcome.error;
      *found->second.count = outcome.count;
      *found->second.long_count = outcome.long_count.value_or(outcome.count);
    }
    return outcome;
  }

  inline static GpibDriverFake* current_ = nullptr;
  std::mutex mutex_;
  std::map<std::thread::id, Cells> cells_;
  int next_descriptor_ = 7;
};

// Each thread's data until EndThread or the end of this object.
class GpibThreadsFake final : public GpibThreads {
 public:
  GpibThread& Current() override {
    const std::lock_guard lock(mutex_);
    std::unique_ptr<GpibThread>& thread = threads_[std::this_thread::get_id()];
    if (thread == nullptr) thread = std::make_unique<GpibThread>();
    return *thread;
  }

  // What happens on the calling thread when it ends.
  void EndThread() {
    const std::lock_guard lock(mutex_);
    threads_.erase(std::this_thread::get_id());
  }

 private:
  std::mutex mutex_;
  std::map<std::thread::id, std::unique_ptr<GpibThread>> threads_;
};

}  // namespace kesp
