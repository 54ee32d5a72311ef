// Tests of the key filters, over every code there is, and of the separator that they keep.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <thread>

#include "dialogs/editing.h"
#include "support/user_surface_fake.h"

namespace kesp {
namespace {

using Filter = std::int16_t (*)(UserSurface&, std::int16_t);
using Keys = std::map<std::int16_t, std::int16_t>;

// The separator is kept for as long as the thread lives.
void OnNewThread(const std::function<void()>& work) {
  std::thread(work).join();
}

// The keys that are not dropped, each with what becomes of it.
Keys Kept(Filter filter, wchar_t separator) {
  Keys kept;
  OnNewThread([&] {
    UserSurfaceFake user;
    user.separator = separator;
    for (std::int32_t key = std::numeric_limits<std::int16_t>::min();
         key <= std::numeric_limits<std::int16_t>::max(); ++key) {
      const std::int16_t result = filter(user, static_cast<std::int16_t>(key));
      if (result != 0) kept[static_cast<std::int16_t>(key)] = result;
    }
  });
  return kept;
}

// What both filters keep as it is: the digits, and Ctrl+C, backspace, Enter, Ctrl+V, Ctrl+X, Ctrl+Z.
Keys KeptByBoth() {
  Keys keys = {{3, 3}, {8, 8}, {13, 13}, {22, 22}, {24, 24}, {26, 26}};
  for (std::int16_t digit = 48; digit <= 57; ++digit) keys[digit] = digit;
  return keys;
}

TEST(FilterDigitTest, EveryKey_OnlyDigitsAndControlKeysPass) {
  EXPECT_EQ(Kept(FilterDigit, L'.'), KeptByBoth());
  EXPECT_EQ(Kept(FilterDigit, L','), KeptByBoth());
}

// The point of a keyboard's number block becomes the separator, which passes itself; one is Arabic.
TEST(FilterSignedDecimalTest, EveryKey_SignsAndTheSeparatorPassToo) {
  for (const std::int16_t separator : std::initializer_list<std::int16_t>{L'.', L',', 0x066B}) {
    Keys expected = KeptByBoth();
    expected.insert({{L'+', L'+'}, {L'-', L'-'}, {L'.', separator}, {separator, separator}});
    EXPECT_EQ(Kept(FilterSignedDecimal, static_cast<wchar_t>(separator)), expected);
  }
}

TEST(DecimalSeparatorTest, AskedForTheFirstTimeOnAThread_Stays) {
  OnNewThread([] {
    UserSurfaceFake user;
    user.separator = L',';
    EXPECT_EQ(DecimalSeparator(user), L',');
    user.separator = L'.';
    OnNewThread([&user] { EXPECT_EQ(DecimalSeparator(user), L'.'); });
    EXPECT_EQ(DecimalSeparator(user), L',');
    EXPECT_EQ(user.separator_questions, 2);
  });
}

TEST(DecimalSeparatorTest, FirstKeyOfEitherFilter_AsksAndLaterOnesDoNot) {
  for (const Filter first : {FilterDigit, FilterSignedDecimal}) {
    OnNewThread([first] {
      UserSurfaceFake user;
      user.separator = L',';
      EXPECT_EQ(first(user, L'x'), 0);
      EXPECT_EQ(user.separator_questions, 1);
      user.separator = L';';
      EXPECT_EQ(FilterDigit(user, L'1'), L'1');
      EXPECT_EQ(FilterSignedDecimal(user, L'.'), L',');
      EXPECT_EQ(user.separator_questions, 1);
    });
  }
}

}  // namespace
}  // namespace kesp
