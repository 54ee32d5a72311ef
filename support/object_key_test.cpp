// Tests of GUID texts and object keys.
#include "support/object_key.h"

#include <gtest/gtest.h>

#include "support/guid_source_fake.h"

namespace kesp {
namespace {

constexpr GuidFields kMixed{0x3F2A9C01, 0xD4E5, 0x06F7, {0x81, 0x02, 0xA3, 0x04, 0xB5, 0xC6, 0x07, 0xFF}};
constexpr GuidFields kSmall{0x1, 0x2, 0x3, {0, 1, 2, 3, 4, 5, 6, 7}};

TEST(NewGuidText, Fields_AreUpperCaseHexadecimalWithLeadingZeros) {
  GuidSourceFake source;
  source.Push(kMixed);
  source.Push(kSmall);
  source.Push({0xFFFFFFFF, 0xFFFF, 0xFFFF, {255, 255, 255, 255, 255, 255, 255, 255}});
  EXPECT_EQ(NewGuidText(source), L"3F2A9C01D4E506F78102A304B5C607FF");
  EXPECT_EQ(NewGuidText(source), L"00000001000200030001020304050607");
  EXPECT_EQ(NewGuidText(source), std::wstring(32, L'F'));
}

TEST(NewGuidText, SourceFails_IsEmpty) {
  GuidSourceFake source;
  source.Fail();
  EXPECT_EQ(NewGuidText(source), L"");
}

TEST(NewObjectKey, Guid_GivesItsFirstTenDigitsAndK) {
  GuidSourceFake source;
  source.Push(kMixed);
  source.Push(kSmall);
  EXPECT_EQ(NewObjectKey(source), L"3F2A9C01D4K");
  EXPECT_EQ(NewObjectKey(source), L"0000000100K");
}

TEST(NewObjectKey, MadeTwice_Differs) {
  GuidSourceFake source;
  const std::wstring first = NewObjectKey(source);
  EXPECT_NE(NewObjectKey(source), first);
}

TEST(NewObjectKey, SourceFails_IsKAlone) {
  GuidSourceFake source;
  source.Fail();
  EXPECT_EQ(NewObjectKey(source), L"K");
}

}  // namespace
}  // namespace kesp
