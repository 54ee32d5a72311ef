// Tests of the operations on path texts.
#include "support/paths.h"

#include <gtest/gtest.h>

#include <array>

namespace kesp {
namespace {

TEST(PathsTest, JoinPath_PutsOneSeparatorBetween) {
  const std::array<const wchar_t*, 3> cases[] = {
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
  for (const auto& [folder, name, path] : cases) EXPECT_EQ(JoinPath(folder, name), path);
}

TEST(PathsTest, FolderOfPath_IsEverythingThroughTheLastBackslash) {
  const std::array<const wchar_t*, 2> cases[] = {
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
  for (const auto& [path, folder] : cases) EXPECT_EQ(FolderOfPath(path), folder);
}

TEST(PathsTest, FileNameOfPath_IsTheLastComponent) {
  const std::array<const wchar_t*, 2> cases[] = {
      {L"C:\\a\\b.log", L"b.log"},
      {L"b.log", L"b.log"},
      {L"C:\\a\\", L"a"},
      {L"C:\\a\\\\", L"a"},
      {L"C:/a/b.log", L"b.log"},
      {L"C:b.log", L"b.log"},
      {L"C:\\", L""},
      {L"C:", L""},
      {L"\\:", L""},
      {L"\\", L""},
      {L"", L""},
      {L"C:\\a\\b", L"b"},
      {L"b.tar.gz", L"b.tar.gz"},
      {L"C:\\a\\b c 2013-01-10", L"b c 2013-01-10"},
  };
  for (const auto& [path, name] : cases) EXPECT_EQ(FileNameOfPath(path), name);
}

}  // namespace
}  // namespace kesp
