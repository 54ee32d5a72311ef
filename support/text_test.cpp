// Tests of the conversion between text and bytes.
#include "support/text.h"

#include <gtest/gtest.h>

#include <set>

namespace kesp {
namespace {

std::array<char16_t, 256> Identity() {
  std::array<char16_t, 256> characters{};
  for (std::size_t byte = 0; byte < characters.size(); ++byte) {
    characters[byte] = static_cast<char16_t>(byte);
  }
  return characters;
}

// Lacks most of the upper half, as some of the system's tables do.
std::array<char16_t, 256> WithUndefinedBytes() {
  auto characters = Identity();
  for (std::size_t byte = 0x80; byte < 0xF0; ++byte) characters[byte] = 0;
  characters[0x41] = 0;     // in the lower half there is no stand-in of the same number
  characters[0xF0] = 0x85;  // takes the stand-in of byte 0x85
  characters[0xF1] = 0xF785;
  return characters;
}

std::array<char16_t, 256> WithDuplicates() {
  auto characters = Identity();
  characters[0x5C] = 0x2F;
  characters[0xA0] = 0x20;
  for (std::size_t byte = 0xC0; byte < 0x100; ++byte) characters[byte] = 0x3F;
  return characters;
}

std::array<char16_t, 256> WithSurrogates() {
  auto characters = Identity();
  characters[0x90] = 0xD83D;
  characters[0x91] = 0xDE00;
  return characters;
}

// As a table that could not be read at all.
std::array<char16_t, 256> Empty() {
  return {};
}

std::string AllBytes() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes.push_back(static_cast<char>(byte));
  return bytes;
}

// Each byte has a character of its own, which a table's byte keeps unless an earlier byte has it.
TEST(CodePageTest, EveryTable_AllBytesHaveCharactersAndComeBackUnchanged) {
  for (const auto& characters :
       {Identity(), WithUndefinedBytes(), WithDuplicates(), WithSurrogates(), Empty()}) {
    SCOPED_TRACE(testing::PrintToString(characters));
    const CodePage page(characters);
    const std::wstring text = page.FromBytes(AllBytes());
    ASSERT_EQ(text.size(), 256U);
    EXPECT_EQ(page.ToBytes(text), AllBytes());
    EXPECT_EQ(page.ToExactBytes(text), AllBytes());
    EXPECT_EQ(std::set<wchar_t>(text.begin(), text.end()).size(), 256U);
    std::set<char16_t> seen;
    for (std::size_t byte = 0; byte < 256; ++byte) {
      const char16_t character = characters[byte];
      const bool defined = (character != 0 || byte == 0) && (character < 0xD800 || character > 0xDFFF);
      if (defined && seen.insert(character).second) {
        EXPECT_EQ(static_cast<char16_t>(text[byte]), character) << byte;
      }
    }
  }
}

TEST(CodePageTest, UndefinedByte_TakesTheCharacterOfItsNumberWhereFree) {
  const CodePage page(WithUndefinedBytes());
  EXPECT_EQ(page.FromBytes("\x80\x84\xEF"), L"\u0080\u0084\u00EF");
}

TEST(CodePageTest, UndefinedByteWhoseNumberIsTaken_TakesPrivateUse) {
  const CodePage page(WithUndefinedBytes());
  EXPECT_EQ(page.FromBytes("A"), L"\uF741");
  EXPECT_EQ(page.FromBytes("\xF0\xF1"), L"\u0085\uF785");
  EXPECT_EQ(page.FromBytes("\x85"), L"\uF786");  // U+0085 and U+F785 belong to others
}

TEST(CodePageTest, DuplicateByte_FirstByteKeepsTheCharacter) {
  const CodePage page(WithDuplicates());
  EXPECT_EQ(page.FromBytes("\x2F\x5C"), L"\u002F\uF75C");
  EXPECT_EQ(page.FromBytes("\x20\xA0"), L"\u0020\u00A0");
  EXPECT_EQ(page.ToBytes(L"/ ?"), "/ ?");
}

TEST(CodePageTest, CharacterWithoutByte_BecomesOneQuestionMark) {
  struct Case {
    std::wstring text;
    std::string bytes;
  };
  const wchar_t high = 0xD83D;
  const wchar_t low = 0xDE00;
  const Case cases[] = {
      {L"", ""},
      {L"a\u0416b", "a?b"},
      {L"\u0416\u0416", "??"},
      {std::wstring{L'a', high, low, L'b'}, "a?b"},  // a pair is one character
      {std::wstring{high, low, high, low}, "??"},    // and so are two
      {std::wstring{L'a', high, L'b'}, "a?b"},       // half a pair
      {std::wstring{L'a', low, L'b'}, "a?b"},        // the other half
      {std::wstring{low, high}, "??"},               // the wrong way round
      {std::wstring{high, high, low}, "??"},         // half a pair, then a pair
      {std::wstring{L'a', high}, "a?"},              // cut off
      {L"\U0001F600!", "?!"},                        // in the compiler's own form
      {std::wstring{L'\0', L'\u0416', L'\0'}, std::string("\0?\0", 3)},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Windows1252().ToBytes(c.text), c.bytes);
    EXPECT_EQ(Windows1252().ToExactBytes(c.text).has_value(), c.bytes.find('?') == std::string::npos);
  }
}

TEST(CodePageTest, QuestionMark_IsExact) {
  EXPECT_EQ(Windows1252().ToExactBytes(L"*IDN?"), "*IDN?");
}

TEST(CodePageTest, LongText_IsConvertedWhole) {
  std::string bytes;
  for (int i = 0; i < 4096; ++i) bytes += AllBytes();
  const std::wstring text = Windows1252().FromBytes(bytes);
  EXPECT_EQ(text.size(), bytes.size());
  EXPECT_EQ(Windows1252().ToBytes(text), bytes);
}

TEST(Windows1252Test, UpperControls_AreAsPublished) {
  // The rows 80 to 9F of CP1252.TXT; the five undefined bytes stand for themselves.
  EXPECT_EQ(Windows1252().FromBytes("\x80\x81\x82\x83\x84\x85\x86\x87\x88\x89\x8A\x8B\x8C\x8D\x8E\x8F"),
            L"€\u0081‚ƒ„…†‡ˆ‰Š‹Œ\u008DŽ\u008F");
  EXPECT_EQ(Windows1252().FromBytes("\x90\x91\x92\x93\x94\x95\x96\x97\x98\x99\x9A\x9B\x9C\x9D\x9E\x9F"),
            L"\u0090‘’“”•–—˜™š›œ\u009DžŸ");
}

TEST(Windows1252Test, OtherBytes_AreTheCharactersOfTheirNumbers) {
  const std::wstring text = Windows1252().FromBytes(AllBytes());
  for (std::size_t byte = 0; byte < 256; ++byte) {
    if (byte >= 0x80 && byte <= 0x9F) continue;
    EXPECT_EQ(text[byte], static_cast<wchar_t>(byte));
  }
}

}  // namespace
}  // namespace kesp
