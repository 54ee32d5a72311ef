// Columns that stand below one another.
#include "console/table.h"

#include <gtest/gtest.h>

namespace kesp::console {
namespace {

TEST(TableOf, Cells_StandBelowOneAnotherWithoutBlanksBehind) {
  EXPECT_EQ(TableOf({{"a", "bb", "c"}, {"aaa", "b"}, {"aa", "", "cc"}}),
            "a    bb  c\n"
            "aaa  b\n"
            "aa       cc\n");
}

TEST(TableOf, CharactersOfSeveralBytes_CountOnce) {
  EXPECT_EQ(TableOf({{"M\u00fcller", "1"}, {"Meier", "2"}}), "M\u00fcller  1\nMeier   2\n");
}

TEST(TableOf, NoRows_NoLines) {
  EXPECT_EQ(TableOf({}), "");
}

}  // namespace
}  // namespace kesp::console
