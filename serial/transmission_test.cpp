// Unit tests of the reckoning of the time that bytes take on a serial line.
#include "serial/transmission.h"

#include <gtest/gtest.h>

#include <string>

#include "support/clock_fake.h"

namespace kesp {
namespace {

// What an adapter may take to begin.
constexpr std::int64_t kLatency = 2000;

class TransmissionTest : public testing::Test {
 protected:
  ClockFake clock_;
  Transmission transmission_{clock_};
};

TEST_F(TransmissionTest, Bytes_TakeTheirBitsAtTheRate) {
  struct Case {
    const wchar_t* settings;
    std::size_t bytes;
    std::int64_t microseconds;
  };
  constexpr Case kCases[] = {{L"150,N,8,1", 1, 66667},    {L"150,N,8,1", 12, 800000},
                             {L"300,E,7,1", 3, 100000},   {L"1200,O,8,2", 100, 1000000},
                             {L"150,M,5,1.5", 2, 113334}, {L"150,S,4,2", 3, 160000},
                             {L"921600,N,8,1", 1, 11},    {L"9600,N,8,1", 0, -kLatency}};
  for (const Case& c : kCases) {
    SCOPED_TRACE(testing::Message() << std::string(c.settings, c.settings + 3) << " " << c.bytes);
    transmission_.Begin(*ReadLineSettings(c.settings));
    EXPECT_EQ(transmission_.Left(), 0);
    transmission_.Add(c.bytes);
    EXPECT_EQ(transmission_.Left(), c.microseconds + kLatency);
  }
}

TEST_F(TransmissionTest, TimePasses_LessIsLeftAndMoreBytesLeaveBehindTheOthers) {
  transmission_.Begin(*ReadLineSettings(L"1200,N,8,2"));  // 11 bits
  transmission_.Add(12);                                  // 110 ms
  clock_.Advance(50);
  EXPECT_EQ(transmission_.Left(), 60000 + kLatency);
  transmission_.Add(12);
  EXPECT_EQ(transmission_.Left(), 60000 + 110000 + kLatency);
  clock_.Advance(1000);
  EXPECT_EQ(transmission_.Left(), 0);
  transmission_.Add(12);
  EXPECT_EQ(transmission_.Left(), 110000 + kLatency) << "the line was idle meanwhile";
}

TEST_F(TransmissionTest, Ended_NothingIsLeft) {
  transmission_.Begin(*ReadLineSettings(L"150,N,8,1"));
  transmission_.Add(12);
  transmission_.End();
  EXPECT_EQ(transmission_.Left(), 0);
  transmission_.Add(12);
  transmission_.Begin(*ReadLineSettings(L"9600,N,8,1"));
  EXPECT_EQ(transmission_.Left(), 0);
}

TEST_F(TransmissionTest, BytesTakenBack_NeedNoTime) {
  transmission_.Begin(*ReadLineSettings(L"1200,N,8,2"));  // 11 bits
  transmission_.TakeBack(12);
  EXPECT_EQ(transmission_.Left(), 0) << "nothing was under way";
  transmission_.Add(24);  // 220 ms
  transmission_.TakeBack(12);
  EXPECT_EQ(transmission_.Left(), 110000 + kLatency);
  transmission_.TakeBack(1000);
  EXPECT_EQ(transmission_.Left(), 0);
}

}  // namespace
}  // namespace kesp
