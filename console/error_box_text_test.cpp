// The text of a box with which the library tells a failure.
#include "console/error_box_text.h"

#include <gtest/gtest.h>

#include <string>

namespace kesp::console {
namespace {

TEST(ErrorOfBox, NumberDescriptionAndSource) {
  const LibraryError error = ErrorOfBox(
      "An error occurred while attempting to download from COM3.\r\nError: 8020 - Error reading comm "
      "device\r\n(CKespCOMPort3 - OpenPort() [commCOMControl])");
  EXPECT_EQ(error.status(), "error 8020");
  EXPECT_STREQ(error.what(), "Error reading comm device");
  EXPECT_EQ(error.source(), "CKespCOMPort3 - OpenPort() [commCOMControl]");
}

TEST(ErrorOfBox, WithoutASource) {
  const LibraryError error = ErrorOfBox("An error occurred.\nError: -7 - Out of memory");
  EXPECT_EQ(error.status(), "error -7");
  EXPECT_STREQ(error.what(), "Out of memory");
  EXPECT_EQ(error.source(), "");
}

TEST(ErrorOfBox, AnotherForm_IsTheDescription) {
  for (const char* text :
       {"Something else", "Error: x - y", "Error: - - y", "Error: 5", "Error: 5: y", "error: 5 - y"})
    EXPECT_STREQ(ErrorOfBox(text).what(), text);
}

TEST(ErrorOfBox, OtherLines_AreNeitherDescriptionNorSource) {
  const LibraryError error = ErrorOfBox("Error: none\r\nError: 5 - bad (very)\r\nmore\r\n(no source)");
  EXPECT_EQ(error.status(), "error 5");
  EXPECT_STREQ(error.what(), "bad (very)");
  EXPECT_EQ(error.source(), "");
  EXPECT_EQ(ErrorOfBox("Error: 5 - x\n(a (b) c) d\r\n").source(), "a (b) c");
  EXPECT_EQ(ErrorOfBox("Error: 5 - x\n(a").source(), "");
}

TEST(ErrorOfBox, LongText_IsRead) {
  const std::string long_text(1'000'000, 'x');
  EXPECT_EQ(ErrorOfBox("Error: 5 - " + long_text).what(), long_text);
}

}  // namespace
}  // namespace kesp::console
