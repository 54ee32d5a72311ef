// Unit tests of Query, QueryBinary and Update over IEEE-488: driver calls, statuses, trace lines.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "commobj/kesp_comm_obj_fixture.h"
#include "support/lines_fixture.h"

namespace kesp {
namespace {

using Calls = std::vector<std::string>;

constexpr wchar_t kOpeningSource[] = L"[CKespIEEE - InitializeIEEEBoard()]";

class KespCommObjIeeeFixture : public KespCommObjFixture {
 protected:
  KespCommObjIeeeFixture() {
    comm_->SetCommStyle(ECommStyle::csIEEE);
    comm_->ieee().SetPrimaryAddress(5);
    comm_->ieee().SetEOSChar(L"10");
    StartTrace();
    comm_->ieee().SetCreateLogFile(false);
    bus_.knows_descriptors = true;
  }

  bool Query() { return comm_->Query(result_, L"*IDN?"); }
  bool Update() { return comm_->Update(L"*RST"); }
  void ExpectStatus(ECommError error, const std::wstring& source = L"",
                    const std::wstring& description = L"") const {
    EXPECT_EQ(comm_->CommError(), error);
    EXPECT_EQ(comm_->CommErrorSource(), source);
    EXPECT_EQ(comm_->CommErrorDescr(), description);
    EXPECT_TRUE(fakes_.user.boxes().empty());
  }
  // The trace since the last look: these steps between the lines that every query and update has.
  void ExpectTraceOf(const std::wstring& beginning, const std::wstring& end, const Lines& steps) {
    Lines expected{beginning, L"IEEE: Initialize()"};
    expected.insert(expected.end(), steps.begin(), steps.end());
    expected.insert(expected.end(), {L"IEEE: Uninitialize()", end});
    const Lines all = Trace();
    EXPECT_EQ(Lines(all.begin() + static_cast<std::ptrdiff_t>(seen_), all.end()), expected);
    seen_ = all.size();
  }
  void ExpectTraceOfQuery(const Lines& steps) {
    ExpectTraceOf(L"Beginning Query()... (command: *IDN?)", L"Exiting Query()...(command: *IDN?)", steps);
  }
  void ExpectTraceOfUpdate(const Lines& steps) {
    ExpectTraceOf(L"Beginning Update()...(command: *RST)", L"Exiting Update()...(command: *RST)", steps);
  }

  std::wstring result_ = L"kept";
  std::size_t seen_ = 0;
};

using CKespCommObjIeeeTest = KespCommObjIeeeFixture;

TEST_F(CKespCommObjIeeeTest, Query_OpensWritesReadsAndCloses) {
  bus_.waiting = "KESP,GP488\n";
  EXPECT_TRUE(Query());
  EXPECT_EQ(result_, L"KESP,GP488\n");
  EXPECT_EQ(bus_.heard, (Calls{"ibdev(0,5,0,12,1,0)", "ibclr(7)", "ibeos(7,1073)", "ibwrt(7,*IDN?\n)",
                               "ibrd(7,50)", "ibonl(7,0)", "ibonl(0,0)"}));
  ExpectStatus(ECommError::cfrSuccess);
  ExpectTraceOfQuery({L"IEEE: WriteLine(*IDN?)", L"IEEE: ReadLine()", L"IEEE: result- KESP,GP488\n"});
}

TEST_F(CKespCommObjIeeeTest, Update_OpensWritesAndCloses) {
  EXPECT_TRUE(Update());
  EXPECT_EQ(bus_.heard, (Calls{"ibdev(0,5,0,12,1,0)", "ibclr(7)", "ibeos(7,1073)", "ibwrt(7,*RST\n)",
                               "ibonl(7,0)", "ibonl(0,0)"}));
  ExpectStatus(ECommError::cfrSuccess);
  ExpectTraceOfUpdate({L"IEEE: Writeline(*RST)"});
}

TEST_F(CKespCommObjIeeeTest, TransportsLog_StandsInBetween) {
  comm_->ieee().SetCreateLogFile(true);
  EXPECT_TRUE(Update());
  const Lines trace = Trace();
  ASSERT_GT(trace.size(), 5U);
  EXPECT_EQ(trace[1], L"IEEE: Initialize()");
  EXPECT_EQ(trace[2], L"Initialize()");
  EXPECT_EQ(trace[trace.size() - 4], L"Initialize() Done...");
  EXPECT_EQ(trace[trace.size() - 3], L"IEEE: Writeline(*RST)");
}

TEST_F(CKespCommObjIeeeTest, Query_OptionalArgumentsAndAutoCloseAreNotForThisTransport) {
  comm_->SetAutoClose(false);
  bus_.waiting = "1";
  EXPECT_TRUE(comm_->Query(result_, L"t", L"01", L"2.5"));
  EXPECT_EQ(bus_.heard[3], "ibwrt(7,t\n)");
  EXPECT_EQ(bus_.heard.back(), "ibonl(0,0)");
}

TEST_F(CKespCommObjIeeeTest, Query_ReplyOfMoreThanFiftyCharacters_IsItsFirstPiece) {
  bus_.waiting = std::string(50, 'a') + "b";
  EXPECT_TRUE(Query());
  EXPECT_EQ(result_, std::wstring(50, L'a'));
}

// A driver call that fails, and what the communication object makes of it.
struct Failing {
  const wchar_t* call;
  ECommError error;
  const wchar_t* step;
  const wchar_t* source;
  Lines before;  // in the trace
};

const std::vector<Failing> kOpening = {
    {L"ibdev()", ECommError::cfrInitializeFailed, L"Initialize()", kOpeningSource, {}},
    {L"ibclr()", ECommError::cfrInitializeFailed, L"Initialize()", kOpeningSource, {}},
    {L"ibeos()", ECommError::cfrInitializeFailed, L"Initialize()", kOpeningSource, {}}};

class CKespCommObjIeeeFaultsTest : public KespCommObjIeeeFixture {
 protected:
  CKespCommObjIeeeFaultsTest() {
    bus_.answers["ibdev"] = [] { return GpibOutcome{.result = 7}; };
  }

  // Runs the operation with each of these calls failing, and then undisturbed.
  template <class Operation, class ExpectTrace>
  void Sweep(const std::vector<Failing>& calls, const Operation& operation, const ExpectTrace& expect_trace) {
    for (std::size_t i = 0; i < calls.size(); ++i) {
      const Failing& failing = calls[i];
      SCOPED_TRACE(testing::Message() << failing.call);
      FailAt(i + 1);
      EXPECT_FALSE(operation());
      const std::wstring description =
          L"Error calling " + std::wstring(failing.call) + L": Error: 14 - Command error during device call";
      ExpectStatus(failing.error, failing.source, description);
      Lines steps = failing.before;
      steps.push_back(L"IEEE: ** " + std::wstring(failing.step) + L" Error info: Source- " + failing.source +
                      L"  Description- " + description + L" **");
      expect_trace(steps);
      EXPECT_TRUE(bus_.open.empty());
    }
    for (const std::size_t closing : {calls.size() + 1, calls.size() + 2, std::size_t{0}}) {
      FailAt(closing);
      EXPECT_TRUE(operation());
      ExpectStatus(ECommError::cfrSuccess);
    }
  }

 private:
  void FailAt(std::size_t call) {
    bus_.waiting = "1";
    bus_.faults.Fail(static_cast<int>(call));
  }
};

TEST_F(CKespCommObjIeeeFaultsTest, Query_StatusAndTraceTellWhatFailed) {
  std::vector<Failing> calls = kOpening;
  calls.push_back({L"ibwrt() with command '*IDN?' on device 7",
                   ECommError::cfrWriteFailed,
                   L"WriteLine()",
                   L"[CKespIEEE - WriteLine()]",
                   {L"IEEE: WriteLine(*IDN?)"}});
  calls.push_back({L"ibrd() on device 7",
                   ECommError::cfrReadFailed,
                   L"ReadLine()",
                   L"[CKespIEEE - ReadLine()]",
                   {L"IEEE: WriteLine(*IDN?)", L"IEEE: ReadLine()"}});
  Sweep(
      calls, [this] { return Query(); }, [this](const Lines& steps) { ExpectTraceOfQuery(steps); });
}

TEST_F(CKespCommObjIeeeFaultsTest, Update_StatusAndTraceTellWhatFailed) {
  std::vector<Failing> calls = kOpening;
  calls.push_back({L"ibwrt() with command '*RST' on device 7",
                   ECommError::cfrWriteFailed,
                   L"WriteLine()",
                   L"[CKespIEEE - WriteLine()]",
                   {L"IEEE: Writeline(*RST)"}});
  Sweep(
      calls, [this] { return Update(); }, [this](const Lines& steps) { ExpectTraceOfUpdate(steps); });
}

// These are found before a call of the driver.
TEST_F(CKespCommObjIeeeFaultsTest, EosCharIsNoNumber_IsAFailedWrite) {
  comm_->ieee().SetEOSChar(L"LF");
  EXPECT_FALSE(Query());
  ExpectStatus(ECommError::cfrWriteFailed, L"[CKespIEEE - WriteLine()]",
               L"Type mismatch (EOSChar is \"LF\"; it must hold the code of a character, such as 10)");
}

TEST_F(CKespCommObjIeeeFaultsTest, DriverIsMissing_SaysSoAndWorksOnceItIsThere) {
  bus_.load_errors[L"Gpib-32.dll"] = kGpibLibraryNotFound;
  EXPECT_FALSE(Query());
  ExpectStatus(ECommError::cfrInitializeFailed, kOpeningSource,
               L"File not found: Gpib-32.dll (the GPIB driver is not installed)");
  EXPECT_EQ(result_, L"kept");
  bus_.load_errors.clear();
  EXPECT_TRUE(Update());
}

TEST_F(CKespCommObjIeeeFaultsTest, QueryBinary_IsRefusedAfterItBegan) {
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

}  // namespace
}  // namespace kesp
