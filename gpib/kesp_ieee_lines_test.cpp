// Unit tests of commands and replies.
#include <gtest/gtest.h>

#include <string>

#include "gpib/kesp_ieee_fixture.h"

namespace kesp {
namespace {

class CKespIEEELinesTest : public IeeeFixture {
 protected:
  CKespIEEELinesTest() {
    ieee_.Initialize();
    Heard();
  }
  Raised Refusal(const std::wstring& cmd) {
    return RaisedBy([&] { ieee_.WriteLine(cmd); });
  }
  Raised ReadRefusal() {
    return RaisedBy([this] { ieee_.ReadLine(result_); });
  }

  std::wstring result_ = L"kept";
};

TEST_F(CKespIEEELinesTest, WriteLine_AppendsTheCharacterOfTheNumber) {
  EXPECT_TRUE(ieee_.WriteLine(L"*IDN?"));
  ieee_.SetEOSChar(L"13");
  ieee_.WriteLine(L"t");
  ieee_.SetEOSChar(L"65");
  ieee_.WriteLine();
  EXPECT_EQ(Heard(), (Calls{"ibwrt(7,*IDN?\n)", "ibwrt(7,t\r)", "ibwrt(7,A)"}));
}

TEST_F(CKespIEEELinesTest, WriteLine_SendsCharactersAsBytes) {
  ieee_.SetEOSChar(L"255");
  ieee_.WriteLine(std::wstring(L"a\0\u00E9\u20AC\u4E2D", 5));
  EXPECT_EQ(Heard(), (Calls{std::string("ibwrt(7,a\0\xE9\x80?\xFF)", 15)}));
}

TEST_F(CKespIEEELinesTest, WriteLine_EosCharNoNumber_SendsNothing) {
  for (const auto& [text, number] : {std::pair<const wchar_t*, int>{L"", 13}, {L"LF", 13}, {L"256", 5}}) {
    ieee_.SetEOSChar(text);
    const Raised raised = Refusal(L"*IDN?");
    EXPECT_EQ(raised.number, number) << text;
    EXPECT_EQ(raised.source, L"[CKespIEEE - WriteLine()]");
    EXPECT_TRUE(Heard().empty());
  }
}

TEST_F(CKespIEEELinesTest, WriteLine_Fails_TellsCommandAndDevice) {
  Answer("ibwrt", GpibOutcome::Failure(2));
  EXPECT_EQ(
      Refusal(L"SETP 20"),
      (Raised{
          ieee_error::ERR_IBWRT, L"[CKespIEEE - WriteLine()]",
          L"Error calling ibwrt() with command 'SETP 20' on device 7: Error: 2 - Write function detected no "
          L"listeners"}));
}

TEST_F(CKespIEEELinesTest, WriteLine_NothingOpen_IsTheDriversToJudge) {
  CKespIEEE fresh(environment_.environment, driver_);
  fresh.SetEOSChar(L"10");
  EXPECT_EQ(RaisedBy([&] { fresh.WriteLine(L"t"); }).description,
            L"Error calling ibwrt() with command 't' on device 0: Error: 0 - System error");
  EXPECT_EQ(Heard(), (Calls{"ibwrt(0,t\n)"}));
}

TEST_F(CKespIEEELinesTest, WriteLineAndReadLine_DriverMissing_HaveTheirOwnSource) {
  GpibDriver missing(bus_, threads_);
  bus_.load_errors[L"Gpib-32.dll"] = kGpibLibraryNotFound;
  CKespIEEE fresh(environment_.environment, missing);
  fresh.SetEOSChar(L"10");
  const std::wstring description = L"File not found: Gpib-32.dll (the GPIB driver is not installed)";
  EXPECT_EQ(RaisedBy([&] { fresh.WriteLine(L"t"); }),
            (Raised{53, L"[CKespIEEE - WriteLine()]", description}));
  EXPECT_EQ(RaisedBy([&] { fresh.ReadLine(result_); }),
            (Raised{53, L"[CKespIEEE - ReadLine()]", description}));
  EXPECT_EQ(result_, L"kept");
  fresh.SetEOSChar(L"LF");
  EXPECT_EQ(RaisedBy([&] { fresh.WriteLine(L"t"); }).number, 13) << "which is looked at first";
}

TEST_F(CKespIEEELinesTest, ReadLine_ReadsIntoFiftyBlanks) {
  bus_.waiting = "KESP,GP488,1.0\r\n";
  EXPECT_TRUE(ieee_.ReadLine(result_));
  EXPECT_EQ(result_, L"KESP,GP488,1.0\r\n");
  EXPECT_EQ(Heard(), (Calls{"ibrd(7,50)"}));
  EXPECT_EQ(bus_.buffer_on_entry, std::string(50, ' '));
}

TEST_F(CKespIEEELinesTest, ReadLine_NothingIsTrimmed) {
  bus_.waiting = "  1.0  ";
  ieee_.ReadLine(result_);
  EXPECT_EQ(result_, L"  1.0  ");
}

TEST_F(CKespIEEELinesTest, ReadLine_LongReply_ComesInPieces) {
  bus_.waiting = std::string(50, 'a') + std::string(50, 'b') + "c";
  for (const std::wstring& piece : {std::wstring(50, L'a'), std::wstring(50, L'b'), std::wstring(L"c")}) {
    EXPECT_TRUE(ieee_.ReadLine(result_));
    EXPECT_EQ(result_, piece);
  }
  EXPECT_EQ(ReadRefusal().number, ieee_error::ERR_IBRD);
}

TEST_F(CKespIEEELinesTest, ReadLine_BytesBecomeCharacters) {
  bus_.waiting = std::string("\0\xE9\x80", 3);
  ieee_.ReadLine(result_);
  EXPECT_EQ(result_, std::wstring(L"\0\u00E9\u20AC", 3));
}

TEST_F(CKespIEEELinesTest, ReadLine_NothingTransferred_IsTheEmptyText) {
  Answer("ibrd", {.count = 0});
  EXPECT_TRUE(ieee_.ReadLine(result_));
  EXPECT_EQ(result_, L"");
}

TEST_F(CKespIEEELinesTest, ReadLine_CountBeyondTheBuffer_IsHeldToIt) {
  for (const auto& [count, length] :
       {std::pair<std::int32_t, std::size_t>{51, 50}, {70000, 50}, {-1, 0}, {-2147483647 - 1, 0}}) {
    Answer("ibrd", {.count = count});
    EXPECT_TRUE(ieee_.ReadLine(result_));
    EXPECT_EQ(result_, std::wstring(length, L' '));
  }
}

TEST_F(CKespIEEELinesTest, ReadLine_HostTookTheCells_ResultIsEmpty) {
  ieee_.WriteLine(L"SETP 20");
  bus_.GiveCellsToTheHost();
  EXPECT_EQ(ReadRefusal().description, L"Error calling ibrd() on device 7: Error: 0 - System error");
  EXPECT_EQ(result_, L"");
}

TEST_F(CKespIEEELinesTest, ReadLine_TimesOut_TellsDeviceAndKeepsWhatCame) {
  bus_.waiting = "KESP";
  Answer("ibrd", {.status = 0xC100, .error = 6, .count = 4});
  EXPECT_EQ(ReadRefusal(), (Raised{ieee_error::ERR_IBRD, L"[CKespIEEE - ReadLine()]",
                                   L"Error calling ibrd() on device 7: Error: 6 - I/O operation aborted"}));
  EXPECT_EQ(result_, L"KESP");
}

TEST_F(CKespIEEELinesTest, ReadLine_FailedDescriptor_IsNamed) {
  CKespIEEE failed(environment_.environment, driver_);
  Answer("ibdev", GpibOutcome::Failure(7));
  RaisedBy([&] { failed.Initialize(); });
  EXPECT_EQ(RaisedBy([&] { failed.ReadLine(result_); }).description,
            L"Error calling ibrd() on device -1: Error: 0 - System error");
}

}  // namespace
}  // namespace kesp
