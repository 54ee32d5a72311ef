// What is around a transport in a conversation: a clock that only the conversation moves, and the other
// seams.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "support/environment.h"
#include "tests/fuzz/require.h"

namespace kesp {

// Time passes where the world lets it pass: in the pump and at the looks of the fakes below. So a model
// beside the transport sees the times that the transport sees. A loop that does nothing but read the clock
// moves it, too.
class ConversationClock final : public Clock {
 public:
  std::int32_t TickCount() override {
    IdleReading();
    return static_cast<std::int32_t>(start_ + static_cast<std::uint32_t>(now_ms_));
  }
  std::int64_t Microseconds() override {
    IdleReading();
    return now_ms_ * 1000;
  }
  int MillisecondOfSecond() override { return static_cast<int>((phase_ + now_ms_) % 1000); }
  CalendarDate Today() override { return {2024, 5, 17 + static_cast<int>(now_ms_ / kLongDayMs % 10)}; }
  std::wstring DateTimeText() override { return L"17/05/2024 12:34:56"; }

  // The tick counter and the millisecond of the calendar second at the beginning.
  void Begin(std::uint32_t tick, std::uint32_t phase) {
    start_ = tick;
    phase_ = phase % 1000;
  }
  void Advance(std::uint32_t milliseconds) {
    now_ms_ += milliseconds;
    EndIdling();
  }
  // The next few readings do not move it.
  void EndIdling() { idle_readings_ = 0; }
  // What the tick counter shows, without a reading.
  std::int32_t Tick() const {
    return static_cast<std::int32_t>(start_ + static_cast<std::uint32_t>(now_ms_));
  }
  std::int64_t now_ms() const { return now_ms_; }
  // The number of calendar seconds that have begun.
  std::int64_t Second() const { return (phase_ + now_ms_) / 1000; }

 private:
  static constexpr std::int64_t kLongDayMs = 60'000;
  static constexpr int kMostReadings = 8;
  static constexpr int kLongestStepMs = 32;

  // In larger and larger steps, because some waits are long.
  void IdleReading() { now_ms_ += std::min(++idle_readings_ / kMostReadings, kLongestStepMs); }

  std::uint32_t start_ = 0;
  std::int64_t phase_ = 0;
  std::int64_t now_ms_ = 0;
  int idle_readings_ = 0;
};

// Each pumping is the conversation's.
class ConversationPump final : public MessagePump {
 public:
  void PumpOnce() override { on_pump(); }
  std::function<void()> on_pump = [] {};
};

// Looks at each line of a log, and keeps the last ones.
class ConversationFiles final : public Files {
 public:
  bool Exists(const std::wstring&) override { return lines_ > 0; }
  std::optional<CalendarDate> LastModified(const std::wstring&) override { return modified; }
  bool Append(const std::wstring& path, std::string_view bytes) override;
  bool Rename(const std::wstring&, const std::wstring&) override { return renames; }
  std::wstring TemporaryFolder() override { return temporary_folder; }
  std::wstring LibraryFile() override { return L"C:\\Kesp\\KespCommObj.dll"; }

  // Told the message of each line.
  std::function<void(std::string_view)> on_line;
  std::optional<CalendarDate> modified;
  std::wstring temporary_folder = L"C:\\Temp\\";
  bool appends = true;
  bool renames = true;

 private:
  int lines_ = 0;
};

class ConversationSettings final : public SettingsFiles {
 public:
  std::wstring Read(const std::wstring&, const std::wstring& section, const std::wstring&,
                    const std::wstring& otherwise) override {
    const auto found = values.find(section);
    return found == values.end() ? otherwise : found->second;
  }
  bool Write(const std::wstring&, const std::wstring& section, const std::wstring&,
             const std::wstring& value) override {
    values[section] = value;
    return true;
  }
  std::map<std::wstring, std::wstring> values;
};

class ConversationGuids final : public GuidSource {
 public:
  std::optional<GuidFields> NewGuid() override { return GuidFields{++count_, 0, 0, {}}; }

 private:
  std::uint32_t count_ = 0;
};

// A user who answers each box with OK.
class ConversationUser final : public UserSurface {
 public:
  int ShowMessageBox(const MessageBoxRequest& request) override;
  void SetPointer(MousePointer value) noexcept override { pointer = value; }
  void SetHelpFile(const std::wstring&) override {}
  bool CallHelp(std::uint32_t, std::uint32_t) override { return true; }
  std::optional<bool> CallOwnHelp(std::uint32_t) override { return std::nullopt; }
  wchar_t DecimalSeparator() override { return L'.'; }

  int boxes = 0;
  MousePointer pointer = MousePointer::kDefault;
};

struct ConversationWorld {
  ConversationClock clock;
  ConversationPump pump;
  ConversationFiles files;
  ConversationSettings settings;
  ConversationGuids guids;
  ConversationUser user;
  Environment environment{clock, pump, files, settings, guids, user};

  ConversationWorld() = default;
  ConversationWorld(const ConversationWorld&) = delete;
  ConversationWorld& operator=(const ConversationWorld&) = delete;
};

}  // namespace kesp
