// Composes the lines of the logs, appends them, and rolls a log over from day to day.
#include "support/log.h"

#include "support/ansi_text.h"

namespace kesp {

namespace {

// number in decimal, with zeros on the left up to that many digits.
std::wstring Padded(int number, std::size_t digits) {
  std::wstring text = std::to_wstring(number);
  if (text.size() < digits) text.insert(0, digits - text.size(), L'0');
  return text;
}

std::wstring IsoDate(const CalendarDate& date) {
  return Padded(date.year, 4) + L"-" + Padded(date.month, 2) + L"-" + Padded(date.day, 2);
}

}  // namespace

void LogWriter::Write(const std::wstring& path, const std::wstring& message) noexcept {
  try {
    const std::wstring line =
        clock_.DateTimeText() + L"\t" + std::to_wstring(clock_.TickCount()) + L"\t" + message + L"\r\n";
    files_.Append(path, ToAnsi(line));
  } catch (...) {
    // A log must never disturb what it reports on: the line is lost.
  }
}

void LogWriter::WriteWithDailyRollover(const std::wstring& path, const std::wstring& message) noexcept {
  try {
    RollOver(path);
  } catch (...) {
    // As when the rename fails, the line goes into the old file.
  }
  Write(path, message);
}

void LogWriter::RollOver(const std::wstring& path) {
  const std::optional<CalendarDate> changed = files_.LastModified(path);
  if (!changed || *changed == clock_.Today()) return;
  files_.Rename(path, path + L" " + IsoDate(*changed));
}

}  // namespace kesp
