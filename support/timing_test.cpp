// Tests of deadlines, the pumping delay and elapsed seconds.
#include "support/timing.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

#include "support/clock_fake.h"
#include "support/failure_fixture.h"
#include "support/message_pump_fake.h"

namespace kesp {
namespace {

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

const Raised kOverflow{6, L"KespCommObj", L"Overflow"};

TEST(Deadline, SumThatFits_IsTheSum) {
  EXPECT_EQ(Deadline(1000, 500), 1500);
  EXPECT_EQ(Deadline(1000, 0), 1000);
  EXPECT_EQ(Deadline(1000, -1), 999);
  EXPECT_EQ(Deadline(-5, 10), 5);
  EXPECT_EQ(Deadline(kMax - 10, 10), kMax);
  EXPECT_EQ(Deadline(kMin, 0), kMin);
  EXPECT_EQ(Deadline(kMin, kMax), -1);
}

TEST(Deadline, SumThatDoesNotFit_FailsWithOverflow) {
  EXPECT_EQ(RaisedBy([] { Deadline(kMax, 1); }), kOverflow);
  EXPECT_EQ(RaisedBy([] { Deadline(kMax - 10, 11); }), kOverflow);
  EXPECT_EQ(RaisedBy([] { Deadline(1, kMax); }), kOverflow);
  EXPECT_EQ(RaisedBy([] { Deadline(kMin, -1); }), kOverflow);
}

// Whatever the counter's sign does, a wait ends: the last deadline that fits is one that no reading exceeds.
TEST(IsPast, CounterTurnsNegativeMeanwhile_TimeCountsOn) {
  ClockFake clock;
  for (const std::int32_t time : {0, 1, 99, 100}) {
    const std::int32_t start = kMax - 100;
    clock.SetTickCount(start);
    EXPECT_FALSE(IsPast(clock, start, time));
    clock.Advance(static_cast<std::uint32_t>(time));
    EXPECT_FALSE(IsPast(clock, start, time)) << time;
    clock.Advance(1);
    EXPECT_TRUE(IsPast(clock, start, time)) << time;
    clock.Advance(16);
    EXPECT_TRUE(IsPast(clock, start, time)) << time;
    clock.Advance(1000000);
    EXPECT_TRUE(IsPast(clock, start, time)) << time;
    clock.SetTickCount(kMin);  // on to the next round
    clock.SetTickCount(0);
  }
}

TEST(IsPast, NegativeTime_IsPastAtOnce) {
  ClockFake clock;
  EXPECT_TRUE(IsPast(clock, clock.tick(), -1));
}

TEST(IsPast, DeadlineThatDoesNotFit_FailsWithOverflow) {
  ClockFake clock;
  EXPECT_EQ(RaisedBy([&] { IsPast(clock, kMax - 10, 11); }), kOverflow);
  EXPECT_EQ(RaisedBy([&] { IsPast(clock, kMin, -1); }), kOverflow);
}

TEST(MillisecondsSince, CounterWraps_AreCounted) {
  ClockFake clock;
  clock.SetTickCount(-1);
  clock.Advance(5);
  EXPECT_EQ(MillisecondsSince(clock, -1), 5u);
}

class DelayTest : public testing::Test {
 protected:
  ClockFake clock;
  MessagePumpFake pump;
};

TEST_F(DelayTest, ZeroOrNegative_PumpsExactlyOnce) {
  Delay(clock, pump, 0);
  EXPECT_EQ(pump.count(), 1);
  Delay(clock, pump, -100);
  EXPECT_EQ(pump.count(), 2);
}

// Windows' tick counter steps by 16 ms: a delay of 10 must not be over because a step has just been due.
TEST_F(DelayTest, TickCounterAhead_WaitsForTheTrueTime) {
  const std::int64_t start = clock.Microseconds();
  pump.OnPump([this] {
    if (pump.count() == 1) clock.LetTickCountRunAhead(16);
    clock.Advance(1);
  });
  Delay(clock, pump, 10);
  EXPECT_EQ(clock.Microseconds() - start, 10'000);
}

TEST_F(DelayTest, CounterTurnsNegativeMeanwhile_Ends) {
  clock.SetTickCount(kMax - 10);
  pump.OnPump([this] { clock.Advance(16); });
  Delay(clock, pump, 10);
  EXPECT_EQ(pump.count(), 1);
}

TEST_F(DelayTest, ClockStepsAtEachReading_PumpsUntilTheTimeHasPassed) {
  clock.SetTickCount(500);
  clock.SetStepPerReading(10);
  Delay(clock, pump, 100);
  // The start is read at 500, then 510, 520 ... 600.
  EXPECT_EQ(pump.count(), 10);
  EXPECT_EQ(clock.tick(), 610);
}

TEST_F(DelayTest, TimePassesInsideThePump_EndsWhenTheDeadlineIsReached) {
  for (const auto& [step, pumps] : {std::pair{33U, 4}, {50U, 2}}) {
    const int before = pump.count();
    pump.OnPump([this, step = step] { clock.Advance(step); });
    Delay(clock, pump, 100);
    EXPECT_EQ(pump.count() - before, pumps);
  }
}

TEST_F(DelayTest, DeadlineDoesNotFit_FailsWithOverflowAfterOnePumping) {
  clock.SetTickCount(kMax - 99);
  EXPECT_EQ(RaisedBy([this] { Delay(clock, pump, 100); }), kOverflow);
  EXPECT_EQ(pump.count(), 1);
}

TEST_F(DelayTest, HandlerInsideThePumpThrows_Passes) {
  pump.OnPump([] { throw std::runtime_error("handler"); });
  EXPECT_THROW(Delay(clock, pump, 100), std::runtime_error);
}

TEST_F(DelayTest, HandlerDelaysItself_BothEnd) {
  pump.OnPump([this] {
    pump.OnPump([this] { clock.Advance(10); });
    Delay(clock, pump, 30);
  });
  Delay(clock, pump, 40);
  EXPECT_EQ(pump.count(), 1 + 3 + 1);
}

class ElapsedSecondsTest : public testing::Test {
 protected:
  ClockFake clock;
};

// The first one begins with the next second of the calendar.
TEST_F(ElapsedSecondsTest, Count_StepsWhenTheCalendarSecondBegins) {
  for (const std::uint32_t start : {0U, 900U}) {
    clock.SetMillisecondOfSecond(start);
    const ElapsedSeconds elapsed(clock);
    EXPECT_EQ(elapsed.Count(), 0);
    clock.Advance(999 - start);
    EXPECT_EQ(elapsed.Count(), 0);
    clock.Advance(1);
    EXPECT_EQ(elapsed.Count(), 1);
    clock.Advance(59'000);
    EXPECT_EQ(elapsed.Count(), 60);
  }
}

TEST_F(ElapsedSecondsTest, TickCountChangesSignAndWraps_GoesOn) {
  for (const std::int32_t start : {kMax - 500, -500}) {
    clock.SetTickCount(start);
    clock.SetMillisecondOfSecond(0);
    const ElapsedSeconds elapsed(clock);
    clock.Advance(2000);
    EXPECT_EQ(elapsed.Count(), 2) << start;
  }
}

TEST_F(ElapsedSecondsTest, AlmostTheWholeRangeOfTheCounter_IsCounted) {
  clock.SetMillisecondOfSecond(999);
  const ElapsedSeconds elapsed(clock);
  clock.Advance(std::numeric_limits<std::uint32_t>::max());
  EXPECT_EQ(elapsed.Count(), 4'294'968);  // 4294967295 ms and 999 ms
}

TEST_F(ElapsedSecondsTest, ComputerClockIsSet_ChangesNothing) {
  const ElapsedSeconds elapsed(clock);
  clock.SetMillisecondOfSecond(999);
  clock.SetToday({1999, 1, 1});
  EXPECT_EQ(elapsed.Count(), 0);
}

TEST_F(ElapsedSecondsTest, Exceeds_ComparesWholeSecondsWithTheFraction) {
  struct Case {
    std::uint32_t seconds;
    std::int32_t milliseconds;
    bool exceeds;
  };
  const Case cases[] = {
      {0, 0, false},    {1, 0, true},     {0, -1, true},           {0, 500, false},
      {1, 500, true},   {1, 999, true},   {1, 1000, false},        {2, 1000, true},
      {1, 1001, false}, {3, 3000, false}, {4, 3000, true},         {2, 2500, false},
      {3, 2500, true},  {0, kMin, true},  {4'000'000, kMax, true}, {0, kMax, false},
  };
  for (const Case& c : cases) {
    clock.SetMillisecondOfSecond(0);
    const ElapsedSeconds elapsed(clock);
    clock.Advance(c.seconds * 1000);
    EXPECT_EQ(elapsed.Exceeds(c.milliseconds), c.exceeds) << c.seconds << " s, " << c.milliseconds << " ms";
  }
}

}  // namespace
}  // namespace kesp
