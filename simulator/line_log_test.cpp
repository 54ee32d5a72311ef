// The log of what comes in over a serial line, on the fake carrier.
#include "simulator/line_log.h"

#include <gtest/gtest.h>

#include <sstream>

#include "simulator/carrier_fake.h"

namespace kesp::simulator {
namespace {

class LineLogTest : public testing::Test {
 protected:
  LineLogTest() { carrier_.line = LineSettings{}; }

  CarrierFake carrier_;
  std::ostringstream lines_;
  EventLog log_{{&lines_}, [] { return std::string("-"); }};
  LineLog line_log_{carrier_, log_, 1};
};

TEST_F(LineLogTest, Pieces_AreWrittenTogetherWithTheSettings) {
  EXPECT_EQ(line_log_.patience(), kForever);
  line_log_.Add("+");
  line_log_.Add("++");
  EXPECT_EQ(lines_.str(), "");
  EXPECT_EQ(line_log_.patience(), std::chrono::milliseconds(200));
  line_log_.Write();
  EXPECT_EQ(lines_.str(), "- #1 line 9600,N,8,1\n- #1 received \"+++\"\n");
  EXPECT_EQ(line_log_.patience(), kForever);
}

TEST_F(LineLogTest, Settings_AreWrittenWhenTheyChanged) {
  for (const unsigned baud : {9600U, 9600U, 1200U}) {
    carrier_.line->baud = baud;
    line_log_.Add("a");
    line_log_.Write();
  }
  line_log_.Write();
  EXPECT_EQ(lines_.str(),
            "- #1 line 9600,N,8,1\n- #1 received \"a\"\n- #1 received \"a\"\n"
            "- #1 line 1200,N,8,1\n- #1 received \"a\"\n");
}

TEST_F(LineLogTest, BytesBeforeAChange_StandUnderTheSettingsAtWhichTheyCame) {
  line_log_.Add("a");
  carrier_.line->baud = 1200;
  line_log_.Add("b");
  line_log_.Write();
  EXPECT_EQ(lines_.str(),
            "- #1 line 9600,N,8,1\n- #1 received \"a\"\n- #1 line 1200,N,8,1\n- #1 received \"b\"\n");
}

TEST_F(LineLogTest, ManyBytes_AreWrittenWholeAndBeforeTheyAreTooMany) {
  const std::string bytes(5000, 'x');
  line_log_.Add(bytes);
  EXPECT_NE(lines_.str().find("received \"" + bytes + "\"\n"), std::string::npos);
}

TEST_F(LineLogTest, Finish_WritesWhatWasNotEvenReceived) {
  line_log_.Add("ab");
  carrier_.rest = "cd";
  line_log_.Finish();
  EXPECT_EQ(lines_.str(), "- #1 line 9600,N,8,1\n- #1 received \"abcd\"\n");
}

TEST_F(LineLogTest, OtherCarriers_AreNotLogged) {
  carrier_.line.reset();
  line_log_.Add(std::string(5000, 'x'));
  line_log_.Finish();
  EXPECT_EQ(lines_.str(), "");
  EXPECT_EQ(line_log_.patience(), kForever);
}

}  // namespace
}  // namespace kesp::simulator
