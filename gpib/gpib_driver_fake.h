// A GPIB driver for unit tests: entry points that write down their calls and answer from a script, with the
// DLL and the threads around them.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "gpib/gpib_driver.h"
#include "support/failing_call_fake.h"

namespace kesp {

// What a call of the driver comes to.
struct GpibOutcome {
  std::int32_t status = 0x0100;  // CMPL
  std::int32_t error = 0;
  std::int32_t count = 0;
  int result = 0;                            // ibdev's descriptor
  std::optional<std::int32_t> long_count{};  // the same count where it is not set

  static GpibOutcome Failure(std::int32_t error);
  static GpibOutcome TimeOut();
};

// There is one at a time, since entry points know nothing but their arguments. Calls may come from several
// threads.
class GpibDriverFake final : public GpibLibrary {
 public:
  GpibDriverFake();
  ~GpibDriverFake() override;
  GpibDriverFake(const GpibDriverFake&) = delete;
  GpibDriverFake& operator=(const GpibDriverFake&) = delete;

  // GpibLibrary
  std::vector<std::wstring> FileNames() const override;
  std::uint32_t Load(const std::wstring& file_name, GpibPlace place) override;
  void Unload() override;
  GpibEntryPoint Find(const char* name) override;

  // The DLL.
  std::vector<std::wstring> file_names = {L"Gpib-32.dll"};
  std::map<std::wstring, std::uint32_t> load_errors;  // in the folders of Windows; others are there
  std::map<std::wstring, std::uint32_t> beside;       // in this library's folder; others are not there
  std::set<std::string> missing;
  std::vector<std::wstring> loads;        // "beside " before those of this library's folder
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
  // The bus calls, of which a failing one fails with error 14.
  FailingCallFake faults;
  // Loading the DLL and looking up its functions, and registering a thread, all of which a failing call
  // refuses.
  FailingCallFake loading;
  FailingCallFake registering;
  // Results of RegisterGpibGlobalsForThread, then 0.
  std::vector<int> registration_results;
  // Whether descriptors that are not open fail with error 0, the system error.
  bool knows_descriptors = false;
  std::set<int> open;
  std::set<int> kept_open;  // those that a failing ibonl has left open
  // Whether calls that succeed leave the thread's cells as they are.
  bool reports_failures_only = false;
  // What the last ibrd's buffer held before it was filled.
  std::string buffer_on_entry;

  // What happens when the host program registers cells of its own for the calling thread: others are refused
  // with 1 until it is unregistered.
  void GiveCellsToTheHost();
  // The threads that are registered.
  std::set<std::thread::id> Registered();

 private:
  struct Cells {
    std::int32_t* status;
    std::int32_t* error;
    std::int32_t* count;
    std::int32_t* long_count;
  };

  static int Ibdev(int board, int primary, int secondary, int time_out, int end_of_transfer,
                   int end_of_string);
  static int Ibclr(int descriptor);
  static int Ibeos(int descriptor, int mode);
  static int Ibonl(int descriptor, int online);
  static int Ibwrt(int descriptor, const void* bytes, GpibLength length);
  static int Ibrd(int descriptor, void* buffer, GpibLength length);
  static int Register(std::int32_t* status, std::int32_t* error, std::int32_t* count,
                      std::int32_t* long_count);
  static int Unregister();

  static int OnDevice(const std::string& name, int descriptor, const std::string& arguments,
                      const GpibOutcome& otherwise = {});

  GpibOutcome IfOpen(int descriptor, const GpibOutcome& otherwise) const;

  GpibOutcome Answer(const std::string& name, const std::string& call, const GpibOutcome& otherwise);
  const GpibOutcome& Report(const GpibOutcome& outcome);

  static GpibDriverFake* current_;
  std::mutex mutex_;
  std::map<std::thread::id, Cells> cells_;
  std::set<std::thread::id> hosts_;  // threads with cells of the host program's
  int next_descriptor_ = 7;
};

// Each thread's data until EndThread or the end of this object.
class GpibThreadsFake final : public GpibThreads {
 public:
  GpibThreadsFake();
  ~GpibThreadsFake() override;

  GpibThread& Current() override;

  // What happens on the calling thread when it ends.
  void EndThread();

 private:
  std::mutex mutex_;
  std::map<std::thread::id, std::unique_ptr<GpibThread>> threads_;
};

}  // namespace kesp
