// Unit tests of the serial transport's downloads.
#include <string>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

class CKespCOMPort3DownloadTest : public SerialConversationFixture {
 protected:
  CKespCOMPort3DownloadTest() { Open(); }

  void Download() {
    Run([&] { return port_.Download(data_); });
  }
  void ExpectFailureBox(const std::wstring& error) {
    EXPECT_EQ(raised_, Raised{});
    EXPECT_FALSE(returned_);
    ExpectBox(L"attempting to download from COM1", error, ++boxes_);
  }

  std::size_t boxes_ = 0;
  std::wstring data_ = L"before";
};

TEST_F(CKespCOMPort3DownloadTest, DataAndThenSilence_IsReturnedAndLoggedWhole) {
  StartLog();
  ports_.line.Arrive("line 1\r\n", 100);
  ports_.line.Arrive("line 2\r\n", 400);
  ports_.line.Arrive("\xFF\r\n", 2000);
  Download();
  EXPECT_TRUE(returned_);
  EXPECT_EQ(data_, L"line 1\r\nline 2\r\n\xFF\r\n");
  EXPECT_EQ(record_,
            (Lines{L"DownloadBegin(1)", L"DownloadUpdate(16,False)", L"DownloadUpdate(19,False)",
                   L"Log Downloaded from COM port 1: \rline 1\r\nline 2\r\n\xFF\r\n", L"DownloadEnd()"}));
}

// What was seen at 100 is taken when 500 ms have passed; the silence counts from then.
TEST_F(CKespCOMPort3DownloadTest, Silence_CountsFromTheTakingAndItsDeadlineIsInclusive) {
  port_.SetTimeOut(700);
  ports_.line.Arrive("a", 100);
  ports_.line.Arrive("b", 601);        // the last moment that belongs to the first chunk
  ports_.line.Arrive("c", 601 + 701);  // the last look before the silence is complete
  ports_.line.Arrive("late", 601 + 701 + 501 + 702);
  Download();
  EXPECT_TRUE(returned_);
  EXPECT_EQ(data_, L"abc");
  EXPECT_EQ(lasted_, 601 + 701 + 501 + 701);
  EXPECT_EQ(Events(), (Lines{L"DownloadBegin(1)", L"DownloadUpdate(2,False)", L"DownloadUpdate(3,False)",
                             L"DownloadEnd()"}));
}

TEST_F(CKespCOMPort3DownloadTest, PumpsAtEveryLookAndWhileDataGathers) {
  port_.SetTimeOut(700);
  Download();
  EXPECT_EQ(environment_.pump.count(), 700);  // the look that ends it does not pump
  ports_.line.Arrive("a", 100);
  Download();
  EXPECT_EQ(environment_.pump.count(), 700 + 99 + 500 + 1 + 700);
}

TEST_F(CKespCOMPort3DownloadTest, FirstByte_MayArriveAtTheDeadlineAndNoLater) {
  port_.SetTimeOut(700);
  ports_.line.Arrive("a", 701);
  Download();
  EXPECT_EQ(data_, L"a");
  StartLog();
  record_.clear();
  ports_.line.Arrive("a", 702);
  Download();
  EXPECT_EQ(raised_, (Raised{com_port_error::ERR_DOWNLOAD_TIMEOUT, L"CKespCOMPort3 - Download()",
                             L"Timeout while downloading from COM1."}));
  EXPECT_EQ(record_, (Lines{L"DownloadBegin(1)", L"DownloadTimeOut(1)"}));
  EXPECT_EQ(data_, L"");
  EXPECT_EQ(lasted_, 701);
}

TEST_F(CKespCOMPort3DownloadTest, Aborted_IsFalseKeepsWhatCameAndIsStillLoggedAndEnded) {
  StartLog();
  events_.abort_at_update = 2;
  ports_.line.Arrive("a", 100);
  ports_.line.Arrive("b", 1000);
  ports_.line.Arrive("c", 2000);
  Download();
  EXPECT_FALSE(returned_);
  EXPECT_EQ(data_, L"ab");
  EXPECT_EQ(lasted_, 1000 + 500 + 1);  // the line of the log looks at the clock, too
  EXPECT_EQ(record_, (Lines{L"DownloadBegin(1)", L"DownloadUpdate(1,False)", L"DownloadUpdate(2,False)",
                            L"Log Downloaded from COM port 1: \rab", L"DownloadEnd()"}));
  EXPECT_TRUE(environment_.user.boxes().empty());
}

TEST_F(CKespCOMPort3DownloadTest, PortFails_IsShownAndWhatCameIsKept) {
  ports_.line.Arrive("abc", 2);
  ports_.line.FailCall(4, 8020);  // two looks at nothing or little, the taking, and the next look
  Download();
  ExpectFailureBox(L"8020 - Error reading comm device\r\n(commCOMControl)");
  EXPECT_EQ(data_, L"abc");
  EXPECT_EQ(Events(), (Lines{L"DownloadBegin(1)", L"DownloadUpdate(3,False)"}));
}

// Where the silence would end, and where the gathering would.
TEST_F(CKespCOMPort3DownloadTest, DeadlineBeyondTheClock_IsShownAsOverflow) {
  environment_.clock.SetTickCount(kHighest32 - 2999);
  Download();
  ExpectFailureBox(L"6 - Overflow\r\n(KespCommObj)");
  port_.SetTimeOut(10);
  environment_.clock.SetTickCount(kHighest32 - 400);
  ports_.line.Arrive("a");
  Download();
  ExpectFailureBox(L"6 - Overflow\r\n(KespCommObj)");
}

TEST_F(CKespCOMPort3DownloadTest, Flood_EndsAtTheLimit) {
  const std::string chunk(CKespCOMPort3::kReplyLimit / 2 + 1, 'x');
  environment_.clock.SetStepPerReading(100);
  ports_.line.on_poll = [&] {
    if (ports_.line.arrivals.empty()) ports_.line.Arrive(chunk, 50);
  };
  Download();
  ExpectFailureBox(L"7 - Out of memory\r\n(KespCommObj)");
}

// A client that pumps sees its own handlers run; one that closes the port ends the download.
TEST_F(CKespCOMPort3DownloadTest, PortClosedWhilePumping_IsShownAndFalse) {
  environment_.pump.OnPump([&] {
    if (environment_.pump.count() == 5) port_.ClosePort();
  });
  Download();
  ExpectFailureBox(L"8018 - Operation valid only when the port is open\r\n(commCOMControl)");
}

TEST_F(CKespCOMPort3DownloadTest, HandlerChangesTheTimeOut_ItCountsAtOnce) {
  ports_.line.Arrive("a", 100);
  events_.handlers[L"DownloadUpdate"] = [&] { port_.SetTimeOut(50); };
  Download();
  EXPECT_TRUE(returned_);
  EXPECT_EQ(lasted_, 601 + 51);
}

}  // namespace
}  // namespace kesp
