// The events of the serial transport as a connected handler hears them: order, arguments, types.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "tests/clients/modem_lines.h"
#include "tests/clients/serial_fixture.h"

namespace kesp::clients {
namespace {

class SerialEventsTest : public SerialEventsFixture {
 protected:
  // The journal without the looks at the output buffer, of which there may be any number.
  Lines WithoutWriteUpdates() const {
    Lines rest;
    std::copy_if(journal().begin(), journal().end(), std::back_inserter(rest),
                 [](const std::wstring& entry) { return !entry.starts_with(L"WriteUpdate("); });
    return rest;
  }
  void Expect(const Lines& expected) { EXPECT_EQ(WithoutWriteUpdates(), expected); }

  // The last argument of DownloadUpdate and AutoDetectUpdate.
  void AbortAt(const std::wstring& event, VARIANT_BOOL value = VARIANT_TRUE) {
    recorder_->handlers[event] = [value](DISPPARAMS& arguments) { *V_BOOLREF(&arguments.rgvarg[0]) = value; };
  }
  bool AutoDetect(EDetectLevel level) {
    EXPECT_EQ(RefusalOf(port_->AutoDetect(reply_.in_out(), level, Text(L"").get(), &answer_)), Refusal{});
    return Answer();
  }
  // "AutoDetectUpdate" with its arguments, when nobody aborts.
  static std::wstring Trial(EKespBaudRate3 rate, const std::wstring& cmd) {
    return L"AutoDetectUpdate(" + SerialPortText() + L"," + std::to_wstring(rate) + L"," + cmd + L",&False)";
  }
  Lines Trials() const {
    Lines trials;
    std::copy_if(journal().begin(), journal().end(), std::back_inserter(trials),
                 [](const std::wstring& entry) { return entry.starts_with(L"AutoDetectUpdate("); });
    return trials;
  }
};

TEST_F(SerialEventsTest, OpeningAndClosing_TellNothing) {
  MustOpen();
  EXPECT_EQ(port_->ClearBuffers(), S_OK);
  EXPECT_EQ(port_->ClosePort(), S_OK);
  Expect({});
}

TEST_F(SerialEventsTest, WriteLine_TellsTheUnframedCommandAndEveryLookAtTheBuffer) {
  MustOpen();
  EXPECT_EQ(WriteLine(L" *IDN? "), S_OK);
  Expect({Entry(L"WriteBegin", L" *IDN? "), L"WriteEnd()"});
  ASSERT_GE(journal().size(), 3U);
  EXPECT_EQ(journal()[journal().size() - 2], Entry(L"WriteUpdate", L"0")) << "until the buffer was empty";
}

TEST_F(SerialEventsTest, WriteLineRefused_TellsTheBeginningOnly) {
  EXPECT_EQ(WriteLine(L"t"), ControlError(8018));
  Expect({Entry(L"WriteBegin", L"t")});
  recorder_->journal.clear();
  MustOpen();
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_ControllerStyle, CS_OMEGA), S_OK);
  EXPECT_EQ(WriteLine(L"PV"), COMPORT3_ERR_ADDRESS_NOT_SPECIFIED);
  EXPECT_EQ(journal(), Lines{Entry(L"WriteBegin", L"PV")});
}

TEST_F(SerialEventsTest, ReadLine_TellsTheLengthSoFarAtEachPiece) {
  MustOpen();
  SetTimeOut(kEndlessTimeOut);
  wire_.OnBytes("?\r").Reply("12").Reply("345\r\n").After(Milliseconds(200));
  EXPECT_EQ(WriteLine(L"?"), S_OK);
  recorder_->journal.clear();
  EXPECT_EQ(ReadLine(), S_OK);
  Expect({Entry(L"ReadBegin"), Entry(L"ReadUpdate", L"2"), Entry(L"ReadUpdate", L"7")});
}

TEST_F(SerialEventsTest, TimeOut_IsToldBeforeTheError) {
  MustOpen();
  EXPECT_EQ(ReadLine(), ERR_READ_TIMEOUT);
  Expect({Entry(L"ReadBegin"), Entry(L"ReadTimeOut")});
  recorder_->journal.clear();
  EXPECT_EQ(ReadLineBinary(), ERR_READ_TIMEOUT);
  Expect({Entry(L"ReadBegin"), Entry(L"ReadTimeOut")});
  recorder_->journal.clear();
  EXPECT_EQ(RefusalOf(Download()),
            (Refusal{ERR_DOWNLOAD_TIMEOUT, L"CKespCOMPort3 - Download()",
                     L"Timeout while downloading from COM" + SerialPortText() + L"."}));
  Expect({Entry(L"DownloadBegin"), Entry(L"DownloadTimeOut")});
}

TEST_F(SerialEventsTest, InvalidCharacters_TellReplyAndPosition) {
  MustOpen();
  wire_.Send("ab\xFF\r\n");
  EXPECT_EQ(ReadLine(), ERR_INVALID_CHARACTERS);
  ASSERT_GE(journal().size(), 3U);
  EXPECT_EQ(journal().front(), Entry(L"ReadBegin"));
  EXPECT_EQ(journal().back(), Entry(L"ReadInvalidChars", reply_.str() + L",3"));
  EXPECT_EQ(reply_.str().substr(0, 2), L"ab");
}

TEST_F(SerialEventsTest, Download_TellsEachPieceAndTheEnd) {
  MustOpen();
  wire_.Send("first");
  recorder_->handlers[L"DownloadUpdate"] = [&](DISPPARAMS& arguments) {
    if (V_I4(&arguments.rgvarg[1]) == 5) wire_.Send("second");
  };
  SetTimeOut(800);
  EXPECT_EQ(RefusalOf(Download()), Refusal{});
  EXPECT_TRUE(Answer());
  EXPECT_EQ(reply_.str(), L"firstsecond");
  Expect(
      {Entry(L"DownloadBegin"), L"DownloadUpdate(5,&False)", L"DownloadUpdate(11,&False)", L"DownloadEnd()"});
}

TEST_F(SerialEventsTest, DownloadAborted_EndsWithFalseAndWhatCame) {
  for (const VARIANT_BOOL yes : {VARIANT_TRUE, VARIANT_BOOL{1}}) {
    AbortAt(L"DownloadUpdate", yes);
    MustOpen();
    wire_.Send("data");
    recorder_->journal.clear();
    EXPECT_EQ(Download(), S_OK);
    EXPECT_FALSE(Answer());
    EXPECT_EQ(reply_.str(), L"data");
    Expect({Entry(L"DownloadBegin"), L"DownloadUpdate(4,&False)", L"DownloadEnd()"});
  }
}

TEST_F(SerialEventsTest, AutoDetectAbortedAtOnce_NeverTouchesThePort) {
  const std::string lines = LineHistory();
  AbortAt(L"AutoDetectUpdate");
  EXPECT_FALSE(AutoDetect(dlAllCommands));
  Expect({Entry(L"AutoDetectBegin"), Trial(br9600, L"*IDN?"), L"AutoDetectEnd()"});
  EXPECT_EQ(LineHistory(), lines);
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "");
  EXPECT_TRUE(IsAvailable());
  EXPECT_EQ(Read(port_, &_CKespCOMPort3::get_TimeOut), kSerialTimeOut);
}

TEST_F(SerialEventsTest, AutoDetect_InstrumentAtThePresentRate) {
  wire_.OnBytes("*IDN?\r").Reply("KESP,7100\r\n");
  EXPECT_TRUE(AutoDetect(dlSCPIOnly));
  EXPECT_EQ(reply_.str(), L"KESP,7100");
  Expect({Entry(L"AutoDetectBegin"), Trial(br9600, L"*IDN?"), Entry(L"WriteBegin", L"*IDN?"), L"WriteEnd()",
          Entry(L"ReadBegin"), Entry(L"ReadUpdate", L"11"), L"AutoDetectEnd()"});
  EXPECT_TRUE(IsAvailable());
}

// An instrument that speaks 19200 bit/s: at every other rate the line brings garbage.
TEST_F(SerialEventsTest, AutoDetect_InstrumentAtAnotherRate) {
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_MaxBaudRate, br38400), S_OK);
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_MinBaudRate, br2400), S_OK);
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_CheckNonAscii, VARIANT_FALSE), S_OK);
  recorder_->handlers[L"WriteEnd"] = [&](DISPPARAMS&) {
    const bool right = Read(port_, &_CKespCOMPort3::get_BaudRate) == br19200;
    wire_.Send(right ? "KESP\r\n" : "\xFE\xFF\r\n");
  };
  EXPECT_TRUE(AutoDetect(dlAllCommands));
  EXPECT_EQ(reply_.str(), L"KESP");
  EXPECT_EQ(Trials(), (Lines{Trial(br9600, L"*IDN?"), Trial(br38400, L"*IDN?"), Trial(br19200, L"*IDN?")}));
  EXPECT_EQ(Read(port_, &_CKespCOMPort3::get_BaudRate), br19200);
  EXPECT_EQ(Read(port_, &_CKespCOMPort3::get_CheckNonAscii), VARIANT_FALSE);
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "*IDN?\r*IDN?\r*IDN?\r");
}

// The first commands stay without an answer, which takes 2 s each.
TEST_F(SerialEventsTest, AutoDetect_SlowRate_TriesTheThirdCommand) {
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_BaudRate, br2400), S_OK);
  wire_.OnBytes("t\r").Reply("21.5\r\n");
  EXPECT_TRUE(AutoDetect(dlAllCommands));
  EXPECT_EQ(reply_.str(), L"21.5");
  EXPECT_EQ(Trials(), (Lines{Trial(br2400, L"*IDN?"), Trial(br2400, L"*VER"), Trial(br2400, L"t")}));
}

// How a value of a declared type travels.
VARTYPE TypeInCall(const TYPEDESC& type) {
  if (type.vt == VT_PTR) return static_cast<VARTYPE>(VT_BYREF | TypeInCall(*type.lptdesc));
  return type.vt == VT_USERDEFINED ? static_cast<VARTYPE>(VT_I4) : type.vt;
}

using TypesOfEvents = std::map<std::wstring, std::vector<VARTYPE>>;

TypesOfEvents DeclaredTypes() {
  ComPtr<ITypeLib> library;
  ComPtr<ITypeInfo> info;
  EXPECT_EQ(LoadRegTypeLib(LIBID_KespCommObj, 1, 0, 0, &library), S_OK);
  EXPECT_EQ(library->GetTypeInfoOfGuid(__uuidof(__CKespCOMPort3), &info), S_OK);
  TypesOfEvents declared;
  FUNCDESC* function = nullptr;
  for (UINT i = 0; info->GetFuncDesc(i, &function) == S_OK; ++i) {
    Text name;
    info->GetDocumentation(function->memid, name.out(), nullptr, nullptr, nullptr);
    std::vector<VARTYPE>& types = declared[name.str()];
    for (int n = 0; n < function->cParams; ++n) {
      types.push_back(TypeInCall(function->lprgelemdescParam[n].tdesc));
    }
    info->ReleaseFuncDesc(function);
  }
  return declared;
}

TEST_F(SerialEventsTest, EveryEvent_HasArgumentsOfItsDeclaredTypes) {
  TypesOfEvents declared = DeclaredTypes();
  // An event that no operation raises.
  EXPECT_EQ(declared.erase(L"ReadEnd"), 1U);
  TypesOfEvents heard;
  for (const auto& event : declared) {
    recorder_->handlers[event.first] = [&heard, name = event.first](DISPPARAMS& arguments) {
      std::vector<VARTYPE> found;
      for (UINT i = arguments.cArgs; i-- > 0;) found.push_back(V_VT(&arguments.rgvarg[i]));
      heard[name] = found;
    };
  }
  wire_.OnBytes("*IDN?\r").Reply("KESP\r\n");
  EXPECT_TRUE(AutoDetect(dlSCPIOnly));
  MustOpen();
  EXPECT_EQ(ReadLine(), ERR_READ_TIMEOUT);
  EXPECT_EQ(Download(), ERR_DOWNLOAD_TIMEOUT);
  wire_.Send("\xFF\n");
  EXPECT_EQ(ReadLine(), ERR_INVALID_CHARACTERS);
  wire_.Send("data");
  EXPECT_EQ(Download(), S_OK);
  EXPECT_EQ(heard, declared);
  EXPECT_EQ(recorder_->Count(L"ReadEnd"), 0U);
}

}  // namespace
}  // namespace kesp::clients
