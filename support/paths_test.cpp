// Tests of the operations on path texts.
#include "support/paths.h"

#include <gtest/gtest.h>

namespace kesp {
namespace {

TEST(Paths, JoinPath_PutsOneSeparatorBetween) {
  struct Case {
    const wchar_t* folder;
    const wchar_t* name;
    const wchar_t* path;
  };
  const Case cases[] = {
      {L"C:\\a", L"b.log", L"C:\\a\\b.log"},
      {L"C:\\a\\", L"b.log", L"C:\\a\\b.log"},
      {L"C:\\a", L"\\b.log", L"C:\\a\\b.log"},
      {L"C:\\a\\", L"\\b.log", L"C:\\a\\b.log"},
      {L"C:/a/", L"b.log", L"C:/a/b.log"},
      {L"C:\\", L"b.log", L"C:\\b.log"},
      {L"C:", L"b.log", L"C:b.log"},
      {L"", L"b.log", L"b.log"},
      {L"C:\\a", L"", L"C:\\a"},
      {L"", L"", L""},
      {L"\\\\server\\share", L"b", L"\\\\server\\share\\b"},
      {L"a", L"b\\c", L"a\\b\\c"},
  };
  for (const Case& c : cases) EXPECT_EQ(JoinPath(c.folder, c.name), c.path);
}

TEST(Paths, FolderOfPath_IsEverythingThroughTheLastBackslash) {
  struct Case {
    const wchar_t* path;
    const wchar_t* folder;
  };
  const Case cases[] = {
      {L"C:\\a\\b.log", L"C:\\a\\"},
      {L"C:\\b.log", L"C:\\"},
      {L"C:\\a\\", L"C:\\a\\"},
      {L"b.log", L""},
      {L"C:b.log", L""},
      {L"C:/a/b.log", L""},
      {L"\\", L"\\"},
      {L"", L""},
      {L"\\\\server\\share\\b", L"\\\\server\\share\\"},
  };
  for (const Case& c : cases) EXPECT_EQ(FolderOfPath(c.path), c.folder) << testing::PrintToString(c.path);
}

TEST(Paths, FileNameOfPath_IsTheLastComponent) {
  struct Case {
    const wchar_t* path;
    const wchar_t* name;
  };
  const Case cases[] = {
      {L"C:\\a\\b.log", L"b.log"},
      {L"b.log", L"b.log"},
      {L"C:\\a\\", L"a"},
      {L"C:\\a\\\\", L"a"},
      {L"C:/a/b.log", L"b.log"},
      {L"C:b.log", L"b.log"},
      {L"C:\\", L""},
      {L"C:", L""},
      {L"\\", L""},
      {L"", L""},
      {L"C:\\a\\b", L"b"},
      {L"b.tar.gz", L"b.tar.gz"},
      {L"C:\\a\\b c 2013-01-10", L"b c 2013-01-10"},
  };
  for (const Case& c : cases) EXPECT_EQ(FileNameOfPath(c.path), c.name) << testing::PrintToString(c.path);
}

TEST(Paths, FolderAndName_JoinToThePathAgain) {
  for (const std::wstring path : {L"C:\\a\\b.log", L"b.log", L"\\\\server\\share\\b", L"..\\b"}) {
    EXPECT_EQ(JoinPath(FolderOfPath(path), FileNameOfPath(path)), path);
  }
}

}  // namespace
}  // namespace kesp
