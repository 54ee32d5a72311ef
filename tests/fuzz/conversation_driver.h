// A GPIB driver whose answers are the bytes of a fuzzer.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "gpib/gpib_driver.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/require.h"

namespace kesp {

// There is one at a time, since entry points know nothing but their arguments. It is used by several threads,
// of which one at a time is the present one; they never run at once. Status words, error numbers and counts
// may be any; cells may be left as they are, registrations refused, entry points missing.
class ConversationDriver final : public GpibLibrary, public GpibThreads {
 public:
  static constexpr std::size_t kThreads = 3;

  // One call that the transport has made, and what it can know of its outcome.
  struct Call {
    std::string_view name;  // "refused" where the thread could not be registered
    int descriptor = 0;
    int argument = 0;
    std::string bytes{};  // written, or what the buffer of a read held afterwards
    bool failed = false;
    int error = 0;
    std::int32_t count = 0;
    int result = 0;  // ibdev's
  };

  explicit ConversationDriver(FuzzInput& input);
  ~ConversationDriver() override;
  ConversationDriver(const ConversationDriver&) = delete;
  ConversationDriver& operator=(const ConversationDriver&) = delete;

  // From now on everything succeeds, and each read finds that.
  void BeGood(std::string reply);

  // The calls since the last look.
  std::vector<Call> TakeCalls();
  // Devices that the driver has handed out and that nobody has tried to close since.
  const std::set<int>& open() const { return open_; }
  // Whether some call that closes failed, or did not reach the driver.
  bool closing_failed() const { return closing_failed_; }
  // Makes a library that is not whole, or whole again.
  void Damage(int how) { damage_ = how; }
  bool is_damaged() const { return damage_ != 0; }

  // Makes that thread the present one; returns which was.
  std::size_t Switch(std::size_t thread) { return std::exchange(present_, thread); }
  // The present thread ends, and a new one takes its place.
  void EndThread();
  void EndThreads();

  // GpibLibrary
  std::vector<std::wstring> FileNames() const override { return {L"Gpib-32.dll", L"ni4882.dll"}; }
  std::uint32_t Load(const std::wstring& file_name, GpibPlace place) override;
  void Unload() override;
  GpibEntryPoint Find(const char* name) override;

  // GpibThreads
  GpibThread& Current() override { return *threads_[present_].binding; }

 private:
  struct Cells {
    std::int32_t* status = nullptr;
    std::int32_t* error = nullptr;
    std::int32_t* count = nullptr;
    std::int32_t* long_count = nullptr;
  };
  // A thread, and what the driver knows of it.
  struct Thread {
    std::optional<GpibThread> binding{std::in_place};
    Cells cells;
    int last_registration = 0;
    bool is_refused = false;
  };
  // What the driver says.
  struct Outcome {
    int status = 0x0100;
    int error = 0;
    std::int32_t count = 0;
    bool writes_cells = true;
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

  Outcome Decide(std::int32_t count);
  // Tells the transport, and notes what it can know.
  int Report(Call call, const Outcome& outcome);

  static ConversationDriver* current_;
  FuzzInput& input_;
  bool good_ = false;
  std::string reply_;
  int damage_ = 0;
  bool loaded_ = false;
  std::array<Thread, kThreads> threads_;
  std::size_t present_ = 0;
  std::vector<Call> calls_;
  std::set<int> open_;
  bool closing_failed_ = false;
  int next_descriptor_ = 1;
};

}  // namespace kesp
