// Unit tests of Query, QueryBinary and Update over IEEE-488: driver calls, statuses, trace lines.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "commobj/kesp_comm_obj_fixture.h"
#include "support/lines_fixture.h"

namespace kesp {
namespace {

using Calls = std::vector<std::string>;

constexpr wchar_t kDriverSource[] = L"[CKespIEEE - InitializeIEEEBoard()]";

class KespCommObjIeeeTest : public KespCommObjFixture {
 protected:
  KespCommObjIeeeTest() {
    comm_->SetCommStyle(ECommStyle::csIEEE);
    comm_->ieee().SetPrimaryAddress(5);
    comm_->ieee().SetEOSChar(L"10");
    StartTrace();
    comm_->ieee().SetCreateLogFile(false);
  }

  bool Query() { return comm_->Query(result_, L"*IDN?"); }
  bool Update() { return comm_->Update(L"*RST"); }
  void Answer(const char* entry_point, const GpibOutcome& outcome) {
    bus_.answers[entry_point] = [outcome] { return outcome; };
  }
  void ExpectStatus(ECommError error, const std::wstring& source, const std::wstring& description) const {
    EXPECT_EQ(comm_->CommError(), error);
    EXPECT_EQ(comm_->CommErrorSource(), source);
    EXPECT_EQ(comm_->CommErrorDescr(), description);
    EXPECT_TRUE(fakes_.user.boxes().empty());
  }

  std::wstring result_ = L"kept";
};

TEST_F(KespCommObjIeeeTest, Query_OpensWritesReadsAndCloses) {
  bus_.waiting = "KESP,GP488\n";
  EXPECT_TRUE(Query());
  EXPECT_EQ(result_, L"KESP,GP488\n");
  EXPECT_EQ(bus_.heard, (Calls{"ibdev(0,5,0,12,1,0)", "ibclr(7)", "ibeos(7,1073)", "ibwrt(7,*IDN?\n)",
                               "ibrd(7,50)", "ibonl(7,0)", "ibonl(0,0)"}));
  ExpectStatus(ECommError::cfrSuccess, L"", L"");
  EXPECT_EQ(Trace(), (Lines{L"Beginning Query()... (command: *IDN?)", L"IEEE: Initialize()",
                            L"IEEE: WriteLine(*IDN?)", L"IEEE: ReadLine()", L"IEEE: result- KESP,GP488\n",
                            L"IEEE: Uninitialize()", L"Exiting Query()...(command: *IDN?)"}));
}

TEST_F(KespCommObjIeeeTest, Query_OptionalArgumentsAreNotForThisTransport) {
  bus_.waiting = "1";
  EXPECT_TRUE(comm_->Query(result_, L"t", L"01", L"2.5"));
  EXPECT_EQ(bus_.heard[3], "ibwrt(7,t\n)");
}

TEST_F(KespCommObjIeeeTest, Query_AutoCloseOff_ClosesAllTheSame) {
  comm_->SetAutoClose(false);
  bus_.waiting = "1";
  EXPECT_TRUE(Query());
  EXPECT_EQ(bus_.heard.back(), "ibonl(0,0)");
}

TEST_F(KespCommObjIeeeTest, Query_ReplyOfMoreThanFiftyCharacters_IsItsFirstPiece) {
  bus_.waiting = std::string(50, 'a') + "b";
  EXPECT_TRUE(Query());
  EXPECT_EQ(result_, std::wstring(50, L'a'));
}

TEST_F(KespCommObjIeeeTest, Query_InitializeFails_IsTracedAndClosed) {
  Answer("ibclr", GpibOutcome::Failure(2));
  EXPECT_FALSE(Query());
  const std::wstring description = L"Error calling ibclr(): Error: 2 - Write function detected no listeners";
  ExpectStatus(ECommError::cfrInitializeFailed, kDriverSource, description);
  EXPECT_EQ(Trace(), (Lines{L"Beginning Query()... (command: *IDN?)", L"IEEE: Initialize()",
                            L"IEEE: ** Initialize() Error info: Source- [CKespIEEE - InitializeIEEEBoard()]"
                            L"  Description- " +
                                description + L" **",
                            L"IEEE: Uninitialize()", L"Exiting Query()...(command: *IDN?)"}));
  EXPECT_EQ(result_, L"kept");
}

TEST_F(KespCommObjIeeeTest, Query_DriverIsMissing_SaysSoAndWorksOnceItIsThere) {
  bus_.load_errors[L"Gpib-32.dll"] = kGpibLibraryNotFound;
  EXPECT_FALSE(Query());
  ExpectStatus(ECommError::cfrInitializeFailed, kDriverSource,
               L"File not found: Gpib-32.dll (the GPIB driver is not installed)");
  bus_.load_errors.clear();
  bus_.waiting = "1";
  EXPECT_TRUE(Query());
}

TEST_F(KespCommObjIeeeTest, Query_WriteFails_IsTracedAndClosed) {
  Answer("ibwrt", GpibOutcome::Failure(2));
  EXPECT_FALSE(Query());
  const std::wstring description =
      L"Error calling ibwrt() with command '*IDN?' on device 7: Error: 2 - Write function detected no "
      L"listeners";
  ExpectStatus(ECommError::cfrWriteFailed, L"[CKespIEEE - WriteLine()]", description);
  EXPECT_EQ(Trace(),
            (Lines{L"Beginning Query()... (command: *IDN?)", L"IEEE: Initialize()", L"IEEE: WriteLine(*IDN?)",
                   L"IEEE: ** WriteLine() Error info: Source- [CKespIEEE - WriteLine()]  Description- " +
                       description + L" **",
                   L"IEEE: Uninitialize()", L"Exiting Query()...(command: *IDN?)"}));
  EXPECT_EQ(bus_.heard.back(), "ibonl(0,0)");
}

TEST_F(KespCommObjIeeeTest, Query_EosCharIsNoNumber_IsAFailedWrite) {
  comm_->ieee().SetEOSChar(L"LF");
  EXPECT_FALSE(Query());
  EXPECT_EQ(comm_->CommError(), ECommError::cfrWriteFailed);
  EXPECT_EQ(comm_->CommErrorSource(), L"[CKespIEEE - WriteLine()]");
}

TEST_F(KespCommObjIeeeTest, Query_ReadFails_IsTracedAndClosed) {
  EXPECT_FALSE(Query());
  const std::wstring description = L"Error calling ibrd() on device 7: Error: 6 - I/O operation aborted";
  ExpectStatus(ECommError::cfrReadFailed, L"[CKespIEEE - ReadLine()]", description);
  EXPECT_EQ(Trace(),
            (Lines{L"Beginning Query()... (command: *IDN?)", L"IEEE: Initialize()", L"IEEE: WriteLine(*IDN?)",
                   L"IEEE: ReadLine()",
                   L"IEEE: ** ReadLine() Error info: Source- [CKespIEEE - ReadLine()]  Description- " +
                       description + L" **",
                   L"IEEE: Uninitialize()", L"Exiting Query()...(command: *IDN?)"}));
  EXPECT_EQ(bus_.heard.back(), "ibonl(0,0)");
}

TEST_F(KespCommObjIeeeTest, Query_ClosingFails_DoesNotChangeWhatItCameTo) {
  Answer("ibonl", GpibOutcome::Failure(14));
  bus_.waiting = "1";
  EXPECT_TRUE(Query());
  ExpectStatus(ECommError::cfrSuccess, L"", L"");
  EXPECT_EQ(Trace().back(), L"Exiting Query()...(command: *IDN?)");
}

TEST_F(KespCommObjIeeeTest, Query_DebuggingOff_WritesNoTrace) {
  comm_->SetDebugging(false);
  bus_.waiting = "1";
  EXPECT_TRUE(Query());
  EXPECT_TRUE(Trace().empty());
}

TEST_F(KespCommObjIeeeTest, Update_WritesAndCloses) {
  EXPECT_TRUE(Update());
  EXPECT_EQ(bus_.heard, (Calls{"ibdev(0,5,0,12,1,0)", "ibclr(7)", "ibeos(7,1073)", "ibwrt(7,*RST\n)",
                               "ibonl(7,0)", "ibonl(0,0)"}));
  ExpectStatus(ECommError::cfrSuccess, L"", L"");
  EXPECT_EQ(Trace(),
            (Lines{L"Beginning Update()...(command: *RST)", L"IEEE: Initialize()", L"IEEE: Writeline(*RST)",
                   L"IEEE: Uninitialize()", L"Exiting Update()...(command: *RST)"}));
}

TEST_F(KespCommObjIeeeTest, Update_InitializeFails_IsTracedWithoutAFailedLine) {
  Answer("ibdev", GpibOutcome::Failure(7));
  EXPECT_FALSE(Update());
  const std::wstring description = L"Error calling ibdev(): Error: 7 - Non-existent interface board";
  ExpectStatus(ECommError::cfrInitializeFailed, kDriverSource, description);
  EXPECT_EQ(Trace(), (Lines{L"Beginning Update()...(command: *RST)", L"IEEE: Initialize()",
                            L"IEEE: ** Initialize() Error info: Source- [CKespIEEE - InitializeIEEEBoard()]"
                            L"  Description- " +
                                description + L" **",
                            L"IEEE: Uninitialize()", L"Exiting Update()...(command: *RST)"}));
}

TEST_F(KespCommObjIeeeTest, Update_WriteFails_IsTracedUnderTheOtherSpelling) {
  Answer("ibwrt", GpibOutcome::TimeOut());
  EXPECT_FALSE(Update());
  const std::wstring description =
      L"Error calling ibwrt() with command '*RST' on device 7: Error: 6 - I/O operation aborted";
  ExpectStatus(ECommError::cfrWriteFailed, L"[CKespIEEE - WriteLine()]", description);
  EXPECT_EQ(Trace(),
            (Lines{L"Beginning Update()...(command: *RST)", L"IEEE: Initialize()", L"IEEE: Writeline(*RST)",
                   L"IEEE: ** WriteLine() Error info: Source- [CKespIEEE - WriteLine()]  Description- " +
                       description + L" **",
                   L"IEEE: Uninitialize()", L"Exiting Update()...(command: *RST)"}));
}

TEST_F(KespCommObjIeeeTest, QueryBinary_IsRefusedAfterItBegan) {
  BinaryValue value = std::wstring(L"kept");
  EXPECT_EQ(RaisedBy([&] { comm_->QueryBinary(value, L"*IDN?"); }),
            (Raised{-2147221304, L"[CKespCommObj - QueryBinary()]",
                    L"The selected communication style is currently not supported"}));
  EXPECT_EQ(comm_->CommError(), ECommError::cfrOtherError);
  EXPECT_EQ(std::get<std::wstring>(value), L"kept");
  EXPECT_TRUE(bus_.heard.empty());
  EXPECT_TRUE(Trace().empty());
  EXPECT_TRUE(fakes_.user.boxes().empty());
}

// Whichever driver call of a query fails, the status tells and no device stays open.
TEST_F(KespCommObjIeeeTest, Query_AnyDriverCallFails_StatusTellsAndNextQueryWorks) {
  struct Expected {
    const char* call;
    ECommError error;
    bool answer;
  };
  const std::vector<Expected> expected = {
      {"ibdev", ECommError::cfrInitializeFailed, false}, {"ibclr", ECommError::cfrInitializeFailed, false},
      {"ibeos", ECommError::cfrInitializeFailed, false}, {"ibwrt", ECommError::cfrWriteFailed, false},
      {"ibrd", ECommError::cfrReadFailed, false},        {"ibonl device", ECommError::cfrSuccess, true},
      {"ibonl board", ECommError::cfrSuccess, true}};
  for (std::size_t i = 0; i < expected.size(); ++i) {
    SCOPED_TRACE(expected[i].call);
    bus_.waiting = "1";
    bus_.calls = 0;
    bus_.failing_call = static_cast<int>(i) + 1;
    EXPECT_EQ(Query(), expected[i].answer);
    EXPECT_EQ(comm_->CommError(), expected[i].error);
    EXPECT_EQ(comm_->CommErrorDescr().empty(), expected[i].answer);
    bus_.failing_call = 0;
    bus_.waiting = "2";
    EXPECT_TRUE(Query());
    EXPECT_EQ(result_, L"2");
    EXPECT_TRUE(fakes_.user.boxes().empty());
  }
}

}  // namespace
}  // namespace kesp
