// The text of a box with which the library tells a failure.
#include "console/error_box_text.h"

#include <gtest/gtest.h>

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
  EXPECT_STREQ(ErrorOfBox("Something else").what(), "Something else");
}

}  // namespace
}  // namespace kesp::console
