// The lines of the event log.
#include "simulator/event_log.h"

#include <gtest/gtest.h>

#include <sstream>

namespace kesp::simulator {
namespace {

std::string Noon() {
  return "12:00:00.000";
}

TEST(EventLog, Line_GoesToEverySinkWithTimeAndConnection) {
  std::ostringstream first;
  std::ostringstream second;
  EventLog log({&first, &second}, Noon);
  EXPECT_TRUE(log.on());
  log.Line(3, "command \"t\"");
  log.Line(0, "cannot accept");
  EXPECT_EQ(first.str(), "12:00:00.000 #3 command \"t\"\n12:00:00.000 cannot accept\n");
  EXPECT_EQ(second.str(), first.str());
}

TEST(EventLog, NoSink_IsOffAndAsksForNoTime) {
  bool asked = false;
  EventLog log({}, [&asked] {
    asked = true;
    return std::string();
  });
  EXPECT_FALSE(log.on());
  log.Line(1, "x");
  EXPECT_FALSE(asked);
}

TEST(TimeOfDay, Form_IsHoursMinutesSecondsMilliseconds) {
  std::string form = TimeOfDay();
  for (char& character : form) {
    if (character >= '0' && character <= '9') character = '0';
  }
  EXPECT_EQ(form, "00:00:00.000");
}

}  // namespace
}  // namespace kesp::simulator
