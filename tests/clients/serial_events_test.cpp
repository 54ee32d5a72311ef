// The events of the serial transport through a real connection: types, Abort, handlers that act on the
// object, and the end of the object meanwhile.
#include <gtest/gtest.h>

#include <map>
#include <memory>

#include "tests/clients/other_apartment.h"
#include "tests/clients/serial_fixture.h"
#include "tests/serial_win/bare_port.h"

namespace kesp::clients {
namespace {

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

class SerialEventsTest : public SerialEventsFixture {
 protected:
  bool AutoDetect() {
    EXPECT_EQ(RefusalOf(port_->AutoDetect(reply_.in_out(), dlSCPIOnly, Text(L"").get(), &answer_)),
              Refusal{});
    return Answer();
  }
};

// Each event once, the values of its arguments in the journal and their types beside it.
TEST_F(SerialEventsTest, EveryEvent_HasItsArgumentsInTheirDeclaredTypes) {
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
  EXPECT_TRUE(AutoDetect());
  EXPECT_EQ(reply_.str(), L"KESP");
  MustOpen();
  EXPECT_EQ(ReadLine(), ERR_READ_TIMEOUT);
  EXPECT_EQ(Download(), ERR_DOWNLOAD_TIMEOUT);
  wire_.Send("a\xFF\n");
  EXPECT_EQ(ReadLine(), ERR_INVALID_CHARACTERS);
  const std::wstring invalid = Entry(L"ReadInvalidChars", reply_.str() + L",2");
  wire_.Send("data");
  EXPECT_EQ(Download(), S_OK);
  EXPECT_EQ(heard, declared);
  const std::wstring port = SerialPortText();
  for (const std::wstring& entry :
       {Entry(L"AutoDetectBegin"), L"AutoDetectUpdate(" + port + L",6,*IDN?,&False)",
        Entry(L"WriteBegin", L"*IDN?"), Entry(L"WriteUpdate", L"0"), std::wstring(L"WriteEnd()"),
        Entry(L"ReadBegin"), Entry(L"ReadUpdate", L"6"), std::wstring(L"AutoDetectEnd()"),
        Entry(L"ReadTimeOut"), invalid, Entry(L"DownloadBegin"), Entry(L"DownloadTimeOut"),
        std::wstring(L"DownloadUpdate(4,&False)"), std::wstring(L"DownloadEnd()")}) {
    EXPECT_EQ(std::count(journal().begin(), journal().end(), entry) > 0, true)
        << testing::PrintToString(entry);
  }
}

TEST_F(SerialEventsTest, Abort_AnyNumberButZeroEndsTheOperation) {
  for (const VARIANT_BOOL yes : {VARIANT_TRUE, VARIANT_BOOL{1}}) {
    for (const wchar_t* event : {L"DownloadUpdate", L"AutoDetectUpdate"}) {
      recorder_->handlers[event] = [yes](DISPPARAMS& arguments) { *V_BOOLREF(&arguments.rgvarg[0]) = yes; };
    }
    EXPECT_FALSE(AutoDetect());
    MustOpen();
    wire_.Send("data");
    EXPECT_EQ(Download(), S_OK);
    EXPECT_FALSE(Answer());
    EXPECT_EQ(reply_.str(), L"data");
  }
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "");
}

TEST_F(SerialEventsTest, HandlerExchangesAnotherLine_BothPass) {
  wire_.OnBytes("?\r").Reply("12.345\r\n");
  recorder_->handlers[L"WriteBegin"] = [&](DISPPARAMS&) {
    recorder_->handlers.clear();
    EXPECT_EQ(RefusalOf(WriteLine(L"?")), Refusal{});
    EXPECT_EQ(RefusalOf(ReadLine()), Refusal{});
    EXPECT_EQ(reply_.str(), L"12.345");
  };
  MustOpen();
  recorder_->result = E_FAIL;  // which changes nothing
  EXPECT_EQ(RefusalOf(WriteLine(L"?")), Refusal{});
  EXPECT_EQ(RefusalOf(ReadLine()), Refusal{});
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "?\r?\r");
}

TEST_F(SerialEventsTest, HandlerClosesThePort_TheReadFails) {
  recorder_->handlers[L"ReadUpdate"] = [&](DISPPARAMS&) { EXPECT_EQ(port_->ClosePort(), S_OK); };
  MustOpen();
  wire_.Send("12");
  EXPECT_EQ(RefusalOf(ReadLine()),
            (Refusal{ControlError(8018), L"CKespCOMPort3 - ReadLine() [commCOMControl]",
                     L"Operation valid only when the port is open"}));
  EXPECT_TRUE(IsAvailable());
}

class SerialApartmentsTest : public SerialFixture, public testing::WithParamInterface<DWORD> {};

INSTANTIATE_TEST_SUITE_P(Kinds, SerialApartmentsTest,
                         testing::Values(COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED),
                         [](const auto& info) {
                           return info.param == COINIT_MULTITHREADED ? "Multithreaded" : "SingleThreaded";
                         });

// What a handler elsewhere leaves in Abort ends the search here.
TEST_P(SerialApartmentsTest, EventsGoElsewhere_AndAbortComesBack) {
  Passage<_CKespCOMPort3> passage(port_.Get());
  RunElsewhere(GetParam(), [&] {
    const auto proxy = passage.Arrive();
    const auto recorder = EventRecorder::Make(__uuidof(__CKespCOMPort3));
    recorder->handlers[L"AutoDetectUpdate"] = [](DISPPARAMS& arguments) {
      *V_BOOLREF(&arguments.rgvarg[0]) = VARIANT_TRUE;
    };
    Connection connection(proxy.Get(), __uuidof(__CKespCOMPort3), recorder.Get());
    Text reply(L"before");
    VARIANT_BOOL answer = VARIANT_TRUE;
    EXPECT_EQ(proxy->AutoDetect(reply.in_out(), dlSCPIOnly, Text(L"").get(), &answer), S_OK);
    EXPECT_EQ(answer, VARIANT_FALSE);
    EXPECT_EQ(reply.str(), L"before");
    EXPECT_EQ(recorder->journal.size(), 3U);
  });
}

// The object lives as long as the call that is on its way, and closes its port behind it.
class SerialLastReferenceTest : public SerialFixture {
 protected:
  void SetUp() override { Connection(port_.Get(), __uuidof(__CKespCOMPort3), recorder_.Get()).Abandon(); }

  // Lets go of the object at the event. The raw pointer stays good for the call on its way.
  _CKespCOMPort3* ReleaseAt(const std::wstring& event) {
    recorder_->handlers[event] = [this](DISPPARAMS&) {
      comm_.Reset();
      port_.Reset();
    };
    return port_.Get();
  }
  void ExpectGone() {
    EXPECT_EQ(port_, nullptr);
    EXPECT_EQ(recorder_->references(), 1U);
    EXPECT_EQ(BarePort(SerialWire::PortName()).error(), DWORD{ERROR_SUCCESS});
  }

  ComPtr<EventRecorder> recorder_ = EventRecorder::Make(__uuidof(__CKespCOMPort3));
  ComPtr<_CKespCommObj> comm_;
};

TEST_F(SerialLastReferenceTest, ReleasedDuringWriteLine) {
  MustOpen();
  EXPECT_EQ(
      ReleaseAt(L"WriteUpdate")->WriteLine(Text(L"*IDN?").get(), nullptr, nullptr, VARIANT_FALSE, &answer_),
      S_OK);
  EXPECT_TRUE(Answer());
  EXPECT_EQ(wire_.Receive(6), "*IDN?\r");
  ExpectGone();
}

TEST_F(SerialLastReferenceTest, ReleasedJustBeforeAnError) {
  MustOpen();
  EXPECT_EQ(RefusalOf(ReleaseAt(L"ReadTimeOut")->ReadLine(reply_.in_out(), &answer_)).source,
            L"CKespCOMPort3 - ReadLine()");
  ExpectGone();
}

TEST_F(SerialLastReferenceTest, FacadeAndTransportReleasedDuringAQuery) {
  comm_ = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  port_ = SerialTransport(comm_);
  UseSerialLine(port_);
  Connection(port_.Get(), __uuidof(__CKespCOMPort3), recorder_.Get()).Abandon();
  ReleaseAt(L"ReadBegin");
  wire_.OnBytes("*IDN?\r").Reply("KESP\r\n");
  _CKespCommObj* const called = comm_.Get();
  EXPECT_EQ(called->Query(reply_.in_out(), Text(L"*IDN?").get(), nullptr, nullptr, &answer_), S_OK);
  EXPECT_TRUE(Answer());
  EXPECT_EQ(reply_.str(), L"KESP");
  ExpectGone();
}

}  // namespace
}  // namespace kesp::clients
