// Tests of the file seam on the real file system.
#include "support/files_win.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/clock_win.h"
#include "support/guid_source_win.h"
#include "support/lines_fixture.h"
#include "support/object_key.h"

namespace kesp {
namespace {

std::wstring ProgramFile() {
  std::array<wchar_t, MAX_PATH> path{};
  GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
  return path.data();
}

// Each case has an empty folder of its own, gone with everything in it afterwards.
class FilesWinTest : public testing::Test {
 protected:
  FilesWinTest() {
    GuidSourceWin guids;
    folder = files.TemporaryFolder() + NewGuidText(guids) + L"\\";
    std::filesystem::create_directory(folder);
  }

  ~FilesWinTest() override { std::filesystem::remove_all(folder); }

  // The files in the folder.
  Lines Names() const {
    Lines names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      names.push_back(entry.path().filename().wstring());
    }
    return names;
  }

  static HANDLE Open(const std::wstring& path, DWORD access, DWORD share) {
    return CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING, 0, nullptr);
  }

  static std::string Content(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  FilesWin files;
  std::wstring folder;
};

TEST_F(FilesWinTest, Append_MakesTheFileThenAddsAtItsEnd) {
  const std::wstring path = folder + L"a.log";
  EXPECT_FALSE(files.Exists(path));
  EXPECT_TRUE(files.Append(path, "first\r\n"));
  EXPECT_TRUE(files.Exists(path));
  EXPECT_TRUE(files.Append(path, std::string_view("b\0c", 3)));
  EXPECT_EQ(Content(path), std::string("first\r\nb\0c", 10));
}

TEST_F(FilesWinTest, Append_NameOutsideTheCodePage_IsTheNameOnDisk) {
  EXPECT_TRUE(files.Append(folder + L"\u0416\u4E2D.log", "x"));
  EXPECT_EQ(Names(), Lines{L"\u0416\u4E2D.log"});
}

TEST_F(FilesWinTest, Append_AnotherProgramReadsAndWritesTheFile_Succeeds) {
  const std::wstring path = folder + L"a.log";
  files.Append(path, "first");
  HANDLE other =
      Open(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
  EXPECT_TRUE(files.Append(path, "second"));
  CloseHandle(other);
  EXPECT_EQ(Content(path), "firstsecond");
}

// Which another program can have only when nobody else has it open.
TEST_F(FilesWinTest, Append_AnotherProgramHasTheFileToItself_Fails) {
  const std::wstring path = folder + L"a.log";
  files.Append(path, "first");
  HANDLE other = Open(path, GENERIC_READ, 0);
  EXPECT_NE(other, INVALID_HANDLE_VALUE);
  EXPECT_FALSE(files.Append(path, "second"));
  CloseHandle(other);
  EXPECT_EQ(Content(path), "first");
}

TEST_F(FilesWinTest, BareName_LiesInTheCurrentDirectoryAndCanBeRenamed) {
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder);
  EXPECT_TRUE(files.Append(L"bare.log", "x"));
  EXPECT_TRUE(files.Rename(L"bare.log", L"bare.log 2013-01-10"));
  std::filesystem::current_path(before);
  EXPECT_EQ(Names(), Lines{L"bare.log 2013-01-10"});
}

TEST_F(FilesWinTest, Append_PathCannotBeWritten_FailsAndMakesNothing) {
  const std::wstring paths[] = {
      L"",
      folder,
      folder + L"missing\\a.log",
      L"\\\\?\\no such place\\a.log",
      folder + L"a" + std::wstring(1, L'\0') + L".log",
      folder + std::wstring(5000, L'x'),
      L"NUL",
  };
  for (const std::wstring& path : paths)
    EXPECT_FALSE(files.Append(path, "x")) << testing::PrintToString(path);
  EXPECT_TRUE(Names().empty());
}

// Somebody waits at the other end, who has not asked for a log.
TEST_F(FilesWinTest, Append_PathNamesAPipe_FailsAndWritesNothing) {
  const std::wstring path = L"\\\\.\\pipe\\" + folder.substr(folder.size() - 33, 32);
  HANDLE server = CreateNamedPipeW(path.c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE | PIPE_NOWAIT, 1, 256,
                                   256, 0, nullptr);
  ASSERT_NE(server, INVALID_HANDLE_VALUE);
  EXPECT_FALSE(files.Append(path, "x"));
  DWORD waiting = 0;
  PeekNamedPipe(server, nullptr, 0, nullptr, &waiting, nullptr);
  EXPECT_EQ(waiting, 0U);
  CloseHandle(server);
}

TEST_F(FilesWinTest, FolderOrNothing_DoesNotExistAndHasNoDate) {
  for (const std::wstring& path : {folder, folder + L"nothing", std::wstring()}) {
    EXPECT_FALSE(files.Exists(path)) << testing::PrintToString(path);
    EXPECT_FALSE(files.LastModified(path).has_value()) << testing::PrintToString(path);
  }
  EXPECT_FALSE(files.Rename(folder + L"nothing", folder + L"b.log"));
}

TEST_F(FilesWinTest, LastModified_NewFile_IsToday) {
  const CalendarDate before = ClockWin().Today();
  files.Append(folder + L"a.log", "x");
  const auto modified = files.LastModified(folder + L"a.log");
  EXPECT_TRUE(modified == before || modified == ClockWin().Today());
}

TEST_F(FilesWinTest, LastModified_OldFile_IsItsLocalDate) {
  const std::wstring path = folder + L"a.log";
  files.Append(path, "x");
  // The first and the last second of a local day.
  for (const SYSTEMTIME local :
       {SYSTEMTIME{2013, 1, 0, 10, 0, 0, 0, 0}, SYSTEMTIME{2013, 1, 0, 10, 23, 59, 59, 0}}) {
    SYSTEMTIME universal{};
    FILETIME time{};
    ASSERT_TRUE(TzSpecificLocalTimeToSystemTime(nullptr, &local, &universal));
    ASSERT_TRUE(SystemTimeToFileTime(&universal, &time));
    HANDLE file = Open(path, FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE);
    ASSERT_TRUE(SetFileTime(file, nullptr, nullptr, &time));
    CloseHandle(file);
    EXPECT_EQ(files.LastModified(path), (CalendarDate{2013, 1, 10}));
  }
}

TEST_F(FilesWinTest, Rename_TargetExists_FailsAndChangesNothing) {
  files.Append(folder + L"a.log", "a");
  files.Append(folder + L"b.log", "b");
  EXPECT_FALSE(files.Rename(folder + L"a.log", folder + L"b.log"));
  EXPECT_EQ(Content(folder + L"a.log"), "a");
  EXPECT_EQ(Content(folder + L"b.log"), "b");
}

TEST_F(FilesWinTest, TemporaryFolder_IsThereAndEndsInABackslash) {
  const std::wstring temporary = files.TemporaryFolder();
  ASSERT_FALSE(temporary.empty());
  EXPECT_EQ(temporary.back(), L'\\');
  EXPECT_NE(GetFileAttributesW(temporary.c_str()) & FILE_ATTRIBUTE_DIRECTORY, 0U);
}

TEST_F(FilesWinTest, LibraryFile_LinkedIntoAProgram_IsTheProgram) {
  EXPECT_EQ(files.LibraryFile(), ProgramFile());
}

TEST_F(FilesWinTest, LibraryFile_LinkedIntoADll_IsTheDllAndNotItsHost) {
  const std::wstring program = ProgramFile();
  const std::wstring dll = program.substr(0, program.rfind(L'\\') + 1) + L"library_file_probe.dll";
  HMODULE module = LoadLibraryW(dll.c_str());
  ASSERT_NE(module, nullptr);
  const auto copy_library_file = reinterpret_cast<void (*)(wchar_t*, std::size_t)>(
      reinterpret_cast<void*>(GetProcAddress(module, "CopyLibraryFile")));
  ASSERT_NE(copy_library_file, nullptr);
  std::array<wchar_t, 1024> path{};
  copy_library_file(path.data(), path.size());
  FreeLibrary(module);
  EXPECT_EQ(lstrcmpiW(path.data(), dll.c_str()), 0) << testing::PrintToString(path.data());
}

}  // namespace
}  // namespace kesp
