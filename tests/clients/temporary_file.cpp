// Temporary files and the logs in them.
#include "tests/clients/temporary_file.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <cwchar>
#include <regex>

namespace kesp::clients {

TemporaryFile::TemporaryFile() {
  static int count = 0;
  std::array<wchar_t, MAX_PATH> folder{};
  GetTempPathW(MAX_PATH, folder.data());
  path_ = std::wstring(folder.data()) + L"kesp client test " + std::to_wstring(GetCurrentProcessId()) + L"-" +
          std::to_wstring(++count) + L".log";
  DeleteFileW(path_.c_str());
}

TemporaryFile::TemporaryFile(const std::wstring& path) : path_(path) {
  DeleteFileW(path_.c_str());
}

TemporaryFile::~TemporaryFile() {
  DeleteFileW(path_.c_str());
}

bool TemporaryFile::Exists() const {
  return GetFileAttributesW(path_.c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::wstring TemporaryFile::WriteDaysAgo(int days, const std::string& content) const {
  // Noon, so that no change of the clock for summer makes another day of it.
  SYSTEMTIME day{};
  GetLocalTime(&day);
  day.wHour = 12;
  FILETIME local{};
  SystemTimeToFileTime(&day, &local);
  ULARGE_INTEGER ticks{};
  ticks.LowPart = local.dwLowDateTime;
  ticks.HighPart = local.dwHighDateTime;
  constexpr ULONGLONG kTicksPerDay = 24ULL * 60 * 60 * 10'000'000;
  ticks.QuadPart -= static_cast<ULONGLONG>(days) * kTicksPerDay;
  local.dwLowDateTime = ticks.LowPart;
  local.dwHighDateTime = ticks.HighPart;
  FileTimeToSystemTime(&local, &day);
  FILETIME changed{};
  LocalFileTimeToFileTime(&local, &changed);

  HANDLE file = CreateFileW(path_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  DWORD written = 0;
  WriteFile(file, content.data(), static_cast<DWORD>(content.size()), &written, nullptr);
  EXPECT_NE(SetFileTime(file, nullptr, nullptr, &changed), FALSE);
  CloseHandle(file);
  std::array<wchar_t, 11> date{};
  swprintf(date.data(), date.size(), L"%04d-%02d-%02d", day.wYear, day.wMonth, day.wDay);
  return date.data();
}

std::string TemporaryFile::Content() const {
  HANDLE file = CreateFileW(path_.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                            OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return {};
  std::string content(GetFileSize(file, nullptr), '\0');
  DWORD read = 0;
  ReadFile(file, content.data(), static_cast<DWORD>(content.size()), &read, nullptr);
  CloseHandle(file);
  content.resize(read);
  return content;
}

Lines TemporaryFile::Messages() const {
  static const std::regex form("[^\t]+\t-?[0-9]+\t");
  std::vector<std::wstring> messages;
  const std::string content = Content();
  std::size_t begin = 0;
  for (std::size_t end = 0; (end = content.find("\r\n", begin)) != std::string::npos; begin = end + 2) {
    const std::string line = content.substr(begin, end - begin);
    // Only the head is matched: on long texts the matcher would run out of stack.
    const std::size_t head = line.find('\t', line.find('\t') + 1) + 1;
    EXPECT_TRUE(std::regex_match(line.substr(0, head), form)) << line;
    const std::string message = line.substr(head);
    messages.emplace_back(message.begin(), message.end());
  }
  EXPECT_EQ(begin, content.size()) << "the last line has no line break";
  return messages;
}

}  // namespace kesp::clients
