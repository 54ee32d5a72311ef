// A logged conversation in some region: dates, digits, the code page, and names without regard to case.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <set>
#include <sstream>

#include "KespCommObj.h"
#include "tests/clients/comm_obj_fixture.h"
#include "tests/clients/late_object.h"
#include "tests/locales/region.h"

namespace kesp::clients {
namespace {

std::wstring FromSystemsPage(const std::string& bytes) {
  std::wstring text(bytes.size(), L'\0');
  const int size = MultiByteToWideChar(CP_ACP, 0, bytes.data(), static_cast<int>(bytes.size()), text.data(),
                                       static_cast<int>(text.size()));
  text.resize(static_cast<std::size_t>(size));
  return text;
}

// The texts that the automation library makes of the seconds from one time to another: the "default form" of
// a date in Visual Basic.
std::set<std::wstring> DefaultForms(const SYSTEMTIME& from, const SYSTEMTIME& to) {
  constexpr DATE kSecond = 1.0 / (24 * 60 * 60);
  const auto date_of = [](SYSTEMTIME time) {
    DATE date = 0;
    time.wMilliseconds = 0;
    SystemTimeToVariantTime(&time, &date);
    return date;
  };
  std::set<std::wstring> forms;
  for (DATE date = date_of(from); date < date_of(to) + kSecond / 2; date += kSecond) {
    Text text;
    VarBstrFromDate(date, LOCALE_USER_DEFAULT, 0, text.out());
    forms.insert(text.str());
  }
  return forms;
}

class RegionTest : public CommObjFixture {
 protected:
  const Region& region_ = TheRegion();

  bool IsSingleByte() const { return region_.code_page != 932; }
};

TEST_F(RegionTest, ThisWindows_IsOfTheRegion) {
  EXPECT_EQ(GetACP(), region_.code_page);
  wchar_t separator[8] = {};
  GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, separator, 8);
  EXPECT_EQ(separator, std::wstring(1, region_.separator));
}

// Of each line the date and time, the tick count, and the message.
TEST_F(RegionTest, LinesOfTheTrace_HaveTheSystemsDateAndPlainDigits) {
  StartTrace();
  SYSTEMTIME before{};
  GetLocalTime(&before);
  EXPECT_TRUE(Query(L"*IDN?"));
  SYSTEMTIME after{};
  GetLocalTime(&after);
  // Visual Basic leaves the time out at midnight, which a log never does.
  if (before.wDay != after.wDay || before.wHour + before.wMinute + before.wSecond == 0) GTEST_SKIP();
  const std::set<std::wstring> forms = DefaultForms(before, after);
  const std::wregex form(region_.date_form);
  std::istringstream lines(trace_.Content());
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    const std::size_t tick = line.find('\t');
    const std::size_t message = line.find('\t', tick + 1);
    ASSERT_NE(message, std::string::npos) << line;
    const std::wstring date = FromSystemsPage(line.substr(0, tick));
    EXPECT_TRUE(std::regex_match(date, form)) << line;
    if (count == 0) std::printf("line of the log: %s\n", line.c_str());
    EXPECT_TRUE(forms.contains(date)) << line << " and not " << testing::PrintToString(forms);
    EXPECT_EQ(line.find_first_not_of("0123456789", tick + 1 + (line[tick + 1] == '-' ? 1 : 0)), message)
        << line;
    EXPECT_EQ(line.back(), '\r');
  }
  EXPECT_GE(count, 8);
}

TEST_F(RegionTest, Messages_AreThoseOfEveryRegion) {
  StartTrace();
  EXPECT_TRUE(Query(L"*IDN?"));
  const Lines messages = trace_.Messages();
  const auto has = [&](const wchar_t* message) {
    return std::find(messages.begin(), messages.end(), message) != messages.end();
  };
  EXPECT_TRUE(has(L"Beginning Query()... (command: *IDN?)")) << testing::PrintToString(messages);
  EXPECT_TRUE(has(L"TCP: Initialize()"));
  EXPECT_TRUE(has(L"TCP: WriteLine(*IDN?)"));
  EXPECT_TRUE(has(L"TCP: result- KESP,TORTURE,SIM00666,1.0"));
  EXPECT_TRUE(has(L"TCP: Uninitialize()"));
}

// The characters of the language go out as one byte each, come back as they were, and are in the log.
TEST_F(RegionTest, LettersOfTheLanguage_AreBytesOfTheCodePage) {
  tcp_->put_CheckNonAscii(VARIANT_FALSE);
  StartTrace();
  const std::wstring command = std::wstring(L"ECHO ") + region_.letters;
  EXPECT_TRUE(Query(command));
  EXPECT_EQ(reply_.str(), command);
  EXPECT_TRUE(QueryBinary(command));
  EXPECT_EQ(BytesOf(*bytes_.get()), std::string("ECHO ") + region_.letter_bytes + "\r");
  if (IsSingleByte()) {
    EXPECT_NE(trace_.Content().find(std::string("TCP: WriteLine(ECHO ") + region_.letter_bytes + ")"),
              std::string::npos);
  }
}

// A trace of another day gets that day behind its name, in the form of no region.
TEST_F(RegionTest, DailyRollover_NamesTheDayAlike) {
  const TemporaryFile trace;
  const std::wstring day = trace.WriteDaysAgo(3, "old\r\n");
  const TemporaryFile renamed(trace.path() + L" " + day);
  EXPECT_TRUE(std::regex_match(day, std::wregex(L"20\\d{2}-\\d{2}-\\d{2}")));
  Write(comm_, &_CKespCommObj::put_DebugFilename, trace.path());
  Write(comm_, &_CKespCommObj::put_Debugging, VARIANT_TRUE);
  EXPECT_TRUE(Query(L"*IDN?"));
  EXPECT_EQ(renamed.Content(), "old\r\n");
  EXPECT_NE(trace.Content().find("Beginning Query()"), std::string::npos);
}

// In Turkish "i" and "I" are two letters.
TEST_F(RegionTest, NamesOfMembers_AreFoundInBothCases) {
  const LateObject tcp(tcp_);
  for (const wchar_t* name : {L"Initialize", L"INITIALIZE", L"initialize", L"iNITIALIZE"}) {
    EXPECT_EQ(tcp.IdOf(name), tcp.IdOf(L"Initialize")) << testing::PrintToString(std::wstring(name));
  }
  EXPECT_EQ(tcp.IdOf(L"ipaddress"), tcp.IdOf(L"IPADDRESS"));
  std::vector<DISPID> ids;
  EXPECT_EQ(tcp.IdsOf({L"\x131nitialize"}, ids), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(tcp.IdsOf({L"\x130nitialize"}, ids), DISP_E_UNKNOWNNAME);
}

TEST_F(RegionTest, KeysOfTheCollection_AreComparedAlike) {
  const auto collection = Create<_CInstruments>(__uuidof(CInstruments));
  const auto instrument = Create<_CInstrument>(__uuidof(CInstrument));
  ASSERT_EQ(collection->AddReference(instrument.Get(), Text(L"TITLE-i").get()), S_OK);
  ComPtr<_CInstrument> found;
  for (const wchar_t* key : {L"TITLE-i", L"title-I", L"Title-i"}) {
    EXPECT_EQ(collection->Item(*Value(key).get(), &found), S_OK) << testing::PrintToString(std::wstring(key));
  }
  for (const wchar_t* key : {L"T\x131TLE-i", L"t\x131tle-i", L"T\x130TLE-i", L"TITLE-\x131"}) {
    EXPECT_NE(collection->Item(*Value(key).get(), &found), S_OK) << testing::PrintToString(std::wstring(key));
    SetErrorInfo(0, nullptr);
  }
}

TEST_F(RegionTest, NumbersInTexts_HaveNoGroupsAndPlainDigits) {
  const auto port = Create<_CKespCOMPort3>(__uuidof(CKespCOMPort3));
  Text text;
  port->BaudRateName(br115200, text.out());
  EXPECT_EQ(text.str(), L"115200");
  port->put_MaxBaudRate(br115200);
  port->put_BaudRate(br57600);
  port->GetSettings(text.out());
  EXPECT_NE(text.str().find(L"57600"), std::wstring::npos) << testing::PrintToString(text.str());
  EXPECT_EQ(text.str().find_first_not_of(L"0123456789,.noemsNOEMS"), std::wstring::npos);
  // A late-bound client may put numbers as texts, without groups.
  const LateObject late(port);
  EXPECT_EQ(late.Put(L"TimeOut", Plain(Value(L"2500"))).result, S_OK);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_TimeOut), 2500);
}

TEST_F(RegionTest, Detection_FindsAndTellsTheSame) {
  VARIANT_BOOL found = VARIANT_FALSE;
  EXPECT_EQ(comm_->DetectInstrument(reply_.in_out(), dlAllCommands, &found), S_OK);
  EXPECT_EQ(found, VARIANT_TRUE);
  EXPECT_EQ(reply_.str(), L"KESP,TORTURE,SIM00666,1.0");
  EXPECT_EQ(RefusalOf(tcp_->put_Port(0)), (Refusal{ERR_INVALID_PORT, L"[CKespTCP - Port]", L"Invalid Port"}));
}

// For whoever reads the log with kesp (tools/regions): written where that says.
TEST_F(RegionTest, LogForTheTool_IsWritten) {
  const wchar_t* path = _wgetenv(L"KESP_REGION_LOG");
  if (path == nullptr) GTEST_SKIP() << "nobody asks for it";
  Write(comm_, &_CKespCommObj::put_DebugFilename, path);
  Write(comm_, &_CKespCommObj::put_Debugging, VARIANT_TRUE);
  EXPECT_TRUE(Query(L"*IDN?"));
  EXPECT_TRUE(Query(L"ECHO abc"));
}

}  // namespace
}  // namespace kesp::clients
