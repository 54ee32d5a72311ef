// Ranges of addresses, read and counted.
#include "simulator/address_range.h"

#include <gtest/gtest.h>

namespace kesp::simulator {
namespace {

TEST(AddressRange, Text_IsReadAndWritten) {
  for (const char* text : {"10.88.4.1-10.88.7.232", "127.0.0.1", "0.0.0.0-0.0.255.255", "255.255.255.255"}) {
    const auto range = ReadAddressRange(text);
    ASSERT_TRUE(range) << text;
    EXPECT_EQ(range->Text(), text);
  }
  EXPECT_EQ(ReadAddressRange("10.0.0.1-10.0.0.1")->Text(), "10.0.0.1");
}

TEST(AddressRange, Addresses_FollowEachOtherAndGoRound) {
  const AddressRange range = *ReadAddressRange("10.88.4.254-10.88.5.1");
  EXPECT_EQ(range.size(), 4U);
  EXPECT_EQ(range.At(0).to_string(), "10.88.4.254");
  EXPECT_EQ(range.At(2).to_string(), "10.88.5.0");
  EXPECT_EQ(range.At(3).to_string(), "10.88.5.1");
  EXPECT_EQ(range.At(4).to_string(), "10.88.4.254");
  EXPECT_EQ(ReadAddressRange("10.88.4.1-10.88.7.232")->size(), 1000U);
}

TEST(AddressRange, OtherTexts_AreNone) {
  for (const char* text :
       {"", "-", "10.0.0.1-", "-10.0.0.1", "10.0.0.2-10.0.0.1", "10.0.0-10.0.0.1", "10.0.0.256", "::1",
        "10.0.0.1-::2", "10.0.0.1 - 10.0.0.2", "10.0.0.1-10.0.0.2-10.0.0.3", "10.0.0.0-10.1.0.0",
        "0.0.0.0-255.255.255.255", "host"}) {
    EXPECT_FALSE(ReadAddressRange(text)) << text;
  }
}

}  // namespace
}  // namespace kesp::simulator
