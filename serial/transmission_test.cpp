// Unit tests of the reckoning of the time that bytes take on a serial line.
#include "serial/transmission.h"

#include <gtest/gtest.h>

#include <string>

#include "support/clock_fake.h"

namespace kesp {
namespace {

// What an adapter may take to begin.
constexpr std::int64_t kLatency = 2000;

TEST(TransmissionTest, Bytes_TakeTheirBitsAtTheRate) {
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
    ClockFake clock;
    Transmission transmission(clock);
    transmission.Begin(*ReadLineSettings(c.settings));
    EXPECT_EQ(transmission.Left(), 0);
    transmission.Add(c.bytes);
    EXPECT_EQ(transmission.Left(), c.microseconds + kLatency);
  }
}

TEST(TransmissionTest, TimePasses_LessIsLeft) {
  ClockFake clock;
  Transmission transmission(clock);
  transmission.Begin(*ReadLineSettings(L"1200,N,8,2"));  // 11 bits
  transmission.Add(12);                                  // 110 ms
  clock.Advance(50);
  EXPECT_EQ(transmission.Left(), 60000 + kLatency);
  clock.Advance(1000);
  EXPECT_EQ(transmission.Left(), 0);
}

TEST(TransmissionTest, MoreBytes_LeaveBehindTheOthers) {
  ClockFake clock;
  Transmission transmission(clock);
  transmission.Begin(*ReadLineSettings(L"1200,N,8,2"));
  transmission.Add(12);
  clock.Advance(50);
  transmission.Add(12);
  EXPECT_EQ(transmission.Left(), 60000 + 110000 + kLatency);
  clock.Advance(1000);
  transmission.Add(12);
  EXPECT_EQ(transmission.Left(), 110000 + kLatency) << "the line was idle meanwhile";
}

TEST(TransmissionTest, Ended_NothingIsLeft) {
  ClockFake clock;
  Transmission transmission(clock);
  transmission.Begin(*ReadLineSettings(L"150,N,8,1"));
  transmission.Add(12);
  transmission.End();
  EXPECT_EQ(transmission.Left(), 0);
  transmission.Add(12);
  transmission.Begin(*ReadLineSettings(L"9600,N,8,1"));
  EXPECT_EQ(transmission.Left(), 0);
}

}  // namespace
}  // namespace kesp
