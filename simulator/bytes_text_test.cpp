// The texts of personality files as bytes.
#include "simulator/bytes_text.h"

#include <gtest/gtest.h>

namespace kesp::simulator {
namespace {

struct TextCase {
  std::string_view utf8;
  std::optional<std::string> bytes;
};

TEST(BytesFromText, Characters_BecomeSingleBytesOrAreRefused) {
  const TextCase cases[] = {
      {"", ""},
      {"*IDN?\r", "*IDN?\r"},
      {std::string_view("\0x", 2), std::string("\0x", 2)},
      {"\x7F", "\x7F"},
      {"\xC2\x80", "\x80"},
      {"1\xC2\x81\x32", "1\x81\x32"},
      {"\xC2\xBF\xC3\x80", "\xBF\xC0"},
      {"\xC3\xBF", "\xFF"},
      {"\xC4\x80", std::nullopt},          // U+0100
      {"\xE2\x82\xAC", std::nullopt},      // the euro sign
      {"\xF0\x9F\x98\x80", std::nullopt},  // beyond the basic plane
      {"\xC2", std::nullopt},              // cut off
      {"\xC2x", std::nullopt},             // not a trailing byte
      {"\x80", std::nullopt},              // not a leading byte
  };
  for (const TextCase& entry : cases) EXPECT_EQ(BytesFromText(entry.utf8), entry.bytes) << entry.utf8;
}

TEST(BytesFromHex, Pairs_BecomeBytesOrAreRefused) {
  const TextCase cases[] = {
      {"", ""},
      {"  ", ""},
      {"00 FF", std::string("\0\xFF", 2)},
      {"0d0A", "\r\n"},
      {" 7f  80 ", "\x7F\x80"},
      {"0", std::nullopt},
      {"0 0", std::nullopt},
      {"0x41", std::nullopt},
      {"4G", std::nullopt},
      {"41,42", std::nullopt},
  };
  for (const TextCase& entry : cases) EXPECT_EQ(BytesFromHex(entry.utf8), entry.bytes) << entry.utf8;
}

TEST(Quoted, Bytes_AreReadableOnOneLine) {
  EXPECT_EQ(Quoted(""), "\"\"");
  EXPECT_EQ(Quoted("MEAS?"), "\"MEAS?\"");
  EXPECT_EQ(Quoted("a\r\n\t\"\\"), R"("a\r\n\t\"\\")");
  EXPECT_EQ(Quoted(std::string_view("\0\x1F\x7F\x80\xFF", 5)), R"("\x00\x1F\x7F\x80\xFF")");
}

TEST(Quoted, MoreThanTheLimit_IsCutAndMarked) {
  EXPECT_EQ(Quoted("12345", 5), "\"12345\"");
  EXPECT_EQ(Quoted("123456", 5), "\"12345...\"");
}

TEST(Counted, OneThing_IsSingular) {
  EXPECT_EQ(Counted(0, "byte"), "0 bytes");
  EXPECT_EQ(Counted(1, "byte"), "1 byte");
  EXPECT_EQ(Counted(30, "byte"), "30 bytes");
}

TEST(Hexadecimal, Numbers_GoThereAndBack) {
  for (const auto& [number, text] :
       {std::pair(0U, "0"), std::pair(0x1AU, "1A"), std::pair(~0U, "FFFFFFFF")}) {
    EXPECT_EQ(Hexadecimal(number), text);
    EXPECT_EQ(FromHexadecimal(text), number);
  }
  EXPECT_EQ(FromHexadecimal("1a"), 0x1AU);
  for (const char* text : {"", "x", "1 ", " 1", "-1", "0x1", "100000000"})
    EXPECT_EQ(FromHexadecimal(text), std::nullopt) << text;
}

}  // namespace
}  // namespace kesp::simulator
