// Unit tests of the driver's status: the 16-bit view, the failure test, the texts of the error numbers.
#include "gpib/gpib_status.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <map>
#include <string>

namespace kesp {
namespace {

TEST(GpibStatusTest, Low16_KeepsTheBitPattern) {
  EXPECT_EQ(Low16(0), 0);
  EXPECT_EQ(Low16(0x7FFF), 32767);
  EXPECT_EQ(Low16(0x8000), -32768);
  EXPECT_EQ(Low16(0x8100), -32512);
  EXPECT_EQ(Low16(0xFFFF), -1);
  EXPECT_EQ(Low16(0x10000), 0);
  EXPECT_EQ(Low16(0x12345), 0x2345);
  EXPECT_EQ(Low16(-1), -1);
  EXPECT_EQ(Low16(std::numeric_limits<std::int32_t>::min()), 0);
}

TEST(GpibStatusTest, Failed_IsTheErrorBit) {
  const auto failed = [](std::int32_t word) { return GpibStatus{.ibsta = Low16(word)}.Failed(); };
  EXPECT_FALSE(failed(0));
  EXPECT_FALSE(failed(0x0100));
  EXPECT_FALSE(failed(0x7FFF));
  EXPECT_TRUE(failed(0x8000));
  EXPECT_TRUE(failed(0xC100));
  EXPECT_TRUE(failed(0xFFFF));
}

TEST(GpibStatusTest, ErrorText_EveryNumber) {
  const std::map<int, std::wstring> messages = {
      {0, L"System error"},
      {1, L"Function requires GPIB board to be CIC"},
      {2, L"Write function detected no listeners"},
      {3, L"Interface board not addressed correctly"},
      {4, L"Invalid argument to function call"},
      {5, L"Function requires GPIB board to be SAC"},
      {6, L"I/O operation aborted"},
      {7, L"Non-existent interface board"},
      {8, L"DMA Error"},
      {10, L"I/O operation started before previous operation completed"},
      {11, L"No capability for intended operation"},
      {12, L"File system operation error"},
      {14, L"Command error during device call"},
      {15, L"Serial poll status byte lost"},
      {16, L"SRQ remains asserted"},
      {20, L"The return buffer is full"},
      {21, L"Address or board is locked"}};
  for (int number = -2; number <= 300; ++number) {
    const auto found = messages.find(number);
    const std::wstring message = found == messages.end() ? L"Unknown Error" : found->second;
    ASSERT_EQ(GpibStatus{.iberr = static_cast<std::int16_t>(number)}.ErrorText(),
              L"Error: " + std::to_wstring(number) + L" - " + message);
  }
}

}  // namespace
}  // namespace kesp
