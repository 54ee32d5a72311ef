// Query, QueryBinary and Update with csIEEE: every status, and the whole trace.
#include "tests/clients/comm_obj_client.h"
#include "tests/clients/gpib_fixture.h"
#include "tests/clients/late_object.h"

namespace kesp::clients {
namespace {

class GpibQueryTest : protected CommObjClient {
 protected:
  GpibQueryTest() {
    StartTrace();
    // The communication object's own lines alone.
    EXPECT_EQ(Write(ieee_.object, &_CKespIEEE::put_CreateLogFile, VARIANT_FALSE), S_OK);
  }

  static std::wstring ErrorInfo(const std::wstring& operation, const std::wstring& source,
                                const std::wstring& description) {
    return CommObjClient::ErrorInfo(L"IEEE", operation, source, description);
  }

  const SimulatedDriver driver_;
  IeeeClient ieee_{Use<_CKespIEEE>(csIEEE)};
};

GPIB_TEST(GpibQueryTest, Success) {
  EXPECT_TRUE(Query(L"*IDN?"));
  EXPECT_EQ(reply_.str(), L"KESP,GP488,SIM48805,2.0\n");
  ExpectStatus(cfrSuccess);
  ExpectTrace({L"Beginning Query()... (command: *IDN?)", L"IEEE: Initialize()", L"IEEE: WriteLine(*IDN?)",
               L"IEEE: ReadLine()", L"IEEE: result- KESP,GP488,SIM48805,2.0\n", L"IEEE: Uninitialize()",
               L"Exiting Query()...(command: *IDN?)"});
  EXPECT_TRUE(Update(L"SETP 20"));
  ExpectStatus(cfrSuccess);
  ExpectTrace({L"Beginning Update()...(command: SETP 20)", L"IEEE: Initialize()", L"IEEE: Writeline(SETP 20)",
               L"IEEE: Uninitialize()", L"Exiting Update()...(command: SETP 20)"});
  EXPECT_EQ(driver_.Calls(), (CallLines{"ibdev(0,5,0,12,1,0)", "ibclr(1)", "ibeos(1,1073)",
                                        R"(ibwrt(1,"*IDN?\n",6))", "ibrd(1,[50 blanks],50)", "ibonl(1,0)",
                                        "ibonl(0,0)", "ibdev(0,5,0,12,1,0)", "ibclr(1)", "ibeos(1,1073)",
                                        R"(ibwrt(1,"SETP 20\n",8))", "ibonl(1,0)", "ibonl(0,0)"}));
}

GPIB_TEST(GpibQueryTest, DetectInstrument_SearchesFromTheFirstAddress) {
  driver_.Load(BusWith(R"({"gpib": {"primary": 3}, "commands": {"*IDN?": "KESP,GP488,SIM48803,2.0"}})"));
  ieee_.SetAddress(5);
  VARIANT_BOOL found = 5;
  EXPECT_EQ(comm_->DetectInstrument(reply_.in_out(), dlSCPIOnly, &found), S_OK);
  EXPECT_EQ(found, VARIANT_TRUE);
  EXPECT_EQ(reply_.str(), L"KESP,GP488,SIM48803,2.0\n");
  EXPECT_EQ(ieee_.Address(), 3);
  EXPECT_EQ(driver_.Calls().front(), "ibdev(0,1,0,11,1,0)");
  EXPECT_EQ(driver_.OpenDescriptors(), 0);
  // Neither status nor trace of the communication object know of it.
  ExpectStatus(cfrSuccess);
  ExpectTrace({});
}

GPIB_TEST(GpibQueryTest, Transport_WritesItsLinesInBetween) {
  EXPECT_EQ(Write(ieee_.object, &_CKespIEEE::put_CreateLogFile, VARIANT_TRUE), S_OK);
  EXPECT_TRUE(Query(L"*IDN?"));
  ExpectTrace({L"Beginning Query()... (command: *IDN?)", L"IEEE: Initialize()", L"Initialize()",
               L"Check Board Index...", L"Check Primary Address...", L"Check Secondary Address...",
               L"Init Board...", L"InitializeIEEEBoard()...", L"ibdev()", L"ibclr()", L"ibeos()",
               L"InitializeIEEEBoard() Done...", L"Initialize() Done...", L"IEEE: WriteLine(*IDN?)",
               L"IEEE: ReadLine()", L"IEEE: result- KESP,GP488,SIM48805,2.0\n", L"IEEE: Uninitialize()",
               L"Exiting Query()...(command: *IDN?)"});
}

GPIB_TEST(GpibQueryTest, TransportsLog_EndsAtTheCallThatFailed) {
  driver_.Load(MeterBus(Failures(Failing("ibclr", 1, "\"error\": 8"))));
  EXPECT_EQ(Write(ieee_.object, &_CKespIEEE::put_CreateLogFile, VARIANT_TRUE), S_OK);
  EXPECT_EQ(ieee_.Initialize().result, ERR_IBCLR);
  ExpectTrace({L"Initialize()", L"Check Board Index...", L"Check Primary Address...",
               L"Check Secondary Address...", L"Init Board...", L"InitializeIEEEBoard()...", L"ibdev()",
               L"ibclr()", L"Error ibclr()- Error: 8 - DMA Error"});
}

GPIB_TEST(GpibQueryTest, OpeningFails_IsInitializeFailed) {
  driver_.Load(
      MeterBus(Failures(Failing("ibdev", 1, "\"error\": 7") + "," + Failing("ibeos", 1, "\"error\": 4"))));
  const std::wstring no_board = DriverError(L"ibdev()", L"7 - Non-existent interface board");
  EXPECT_FALSE(Query(L"*IDN?"));
  ExpectStatus(cfrInitializeFailed, kOpeningSource, no_board);
  ExpectTrace({L"Beginning Query()... (command: *IDN?)", L"IEEE: Initialize()",
               ErrorInfo(L"Initialize()", kOpeningSource, no_board), L"IEEE: Uninitialize()",
               L"Exiting Query()...(command: *IDN?)"});
  const std::wstring bad_argument = DriverError(L"ibeos()", L"4 - Invalid argument to function call");
  EXPECT_FALSE(Update(L"SETP 20"));
  ExpectStatus(cfrInitializeFailed, kOpeningSource, bad_argument);
  ExpectTrace({L"Beginning Update()...(command: SETP 20)", L"IEEE: Initialize()",
               ErrorInfo(L"Initialize()", kOpeningSource, bad_argument), L"IEEE: Uninitialize()",
               L"Exiting Update()...(command: SETP 20)"});
  EXPECT_TRUE(Query(L"*IDN?"));
  ExpectStatus(cfrSuccess);
}

GPIB_TEST(GpibQueryTest, EosCharEmpty_IsInitializeFailed) {
  ieee_.SetEos(L"");
  EXPECT_FALSE(Query(L"*IDN?"));
  ExpectStatus(
      cfrInitializeFailed, kOpeningSource,
      L"Invalid procedure call or argument (EOSChar is empty, so no character can end a read; set it, or "
      L"set SetEOS to False)");
  EXPECT_EQ(driver_.OpenDescriptors(), 0);
}

GPIB_TEST(GpibQueryTest, NoDevice_IsWriteFailed) {
  ieee_.SetAddress(9);
  const auto description = [](const std::wstring& cmd) {
    return DriverError(L"ibwrt() with command '" + cmd + L"' on device 1",
                       L"2 - Write function detected no listeners");
  };
  EXPECT_FALSE(Query(L"*IDN?"));
  ExpectStatus(cfrWriteFailed, kWritingSource, description(L"*IDN?"));
  ExpectTrace({L"Beginning Query()... (command: *IDN?)", L"IEEE: Initialize()", L"IEEE: WriteLine(*IDN?)",
               ErrorInfo(L"WriteLine()", kWritingSource, description(L"*IDN?")), L"IEEE: Uninitialize()",
               L"Exiting Query()...(command: *IDN?)"});
  EXPECT_FALSE(Update(L"SETP 20"));
  ExpectStatus(cfrWriteFailed, kWritingSource, description(L"SETP 20"));
  ExpectTrace({L"Beginning Update()...(command: SETP 20)", L"IEEE: Initialize()", L"IEEE: Writeline(SETP 20)",
               ErrorInfo(L"WriteLine()", kWritingSource, description(L"SETP 20")), L"IEEE: Uninitialize()",
               L"Exiting Update()...(command: SETP 20)"});
  EXPECT_EQ(driver_.OpenDescriptors(), 0);
}

GPIB_TEST(GpibQueryTest, Silence_IsReadFailed) {
  ieee_.SetTimeOut(to100ms);
  const std::wstring silence = DriverError(L"ibrd() on device 1", L"6 - I/O operation aborted");
  EXPECT_FALSE(Query(L"SETP 20"));
  ExpectStatus(cfrReadFailed, kReadingSource, silence);
  ExpectTrace({L"Beginning Query()... (command: SETP 20)", L"IEEE: Initialize()", L"IEEE: WriteLine(SETP 20)",
               L"IEEE: ReadLine()", ErrorInfo(L"ReadLine()", kReadingSource, silence),
               L"IEEE: Uninitialize()", L"Exiting Query()...(command: SETP 20)"});
  EXPECT_TRUE(Query(L"*IDN?"));
  ExpectStatus(cfrSuccess);
}

// The exchange is over by then.
GPIB_TEST(GpibQueryTest, ClosingFails_ChangesNothing) {
  driver_.Load(MeterBus(Failures(Failing("ibonl", 1))));
  EXPECT_TRUE(Query(L"*IDN?"));
  ExpectStatus(cfrSuccess);
  EXPECT_EQ(driver_.OpenDescriptors(), 1) << "so the driver has it";
  EXPECT_TRUE(Query(L"*IDN?"));
  EXPECT_EQ(driver_.OpenDescriptors(), 0) << driver_.RecordText();
}

GPIB_TEST(GpibQueryTest, DeviceThatTheClientOpened_IsReplacedAndClosed) {
  EXPECT_EQ(ieee_.Initialize(), kDone);
  EXPECT_TRUE(Query(L"*IDN?"));
  EXPECT_EQ(driver_.OpenDescriptors(), 0) << "that of the client's own opening is gone";
}

GPIB_TEST(GpibQueryTest, OmegaArguments_AreIgnored) {
  EXPECT_TRUE(Query(L"*IDN?", L"01", L"20"));
  EXPECT_EQ(driver_.Calls("ibwrt"), CallLines{R"(ibwrt(1,"*IDN?\n",6))"});
}

GPIB_TEST(GpibQueryTest, LongReply_IsItsFirstFiftyCharacters) {
  driver_.Load(BusWith(R"({"gpib": {"primary": 5}, "commands": {"LOG?": ")" + std::string(60, 'a') + "\"}}"));
  EXPECT_TRUE(Query(L"LOG?"));
  EXPECT_EQ(reply_.str(), std::wstring(50, L'a'));
}

GPIB_TEST(GpibQueryTest, QueryBinary_IsRefusedWithoutACall) {
  Value bytes(5);
  VARIANT_BOOL answer = VARIANT_TRUE;
  EXPECT_EQ(RefusalOf(comm_->QueryBinary(bytes.get(), Text(L"*IDN?").get(), nullptr, nullptr, &answer)),
            (Refusal{ERR_COMM_STYLE_NOT_SUPPORTED, L"[CKespCommObj - QueryBinary()]",
                     L"The selected communication style is currently not supported"}));
  EXPECT_EQ(answer, VARIANT_FALSE);
  EXPECT_EQ(V_I4(bytes.get()), 5);
  EXPECT_EQ(driver_.Record(), CallLines{});
  ExpectTrace({});
  EXPECT_TRUE(Query(L"*IDN?")) << "the object works on";
}

GPIB_TEST(GpibQueryTest, AnotherStyleAndBack_KeepsTheSettings) {
  EXPECT_TRUE(Query(L"*IDN?"));
  EXPECT_EQ(WriteByReference(comm_, &_CKespCommObj::put_CommStyle, csTCPIP), S_OK);
  EXPECT_EQ(WriteByReference(comm_, &_CKespCommObj::put_CommStyle, csIEEE), S_OK);
  EXPECT_TRUE(Query(L"*IDN?"));
}

GPIB_TEST(GpibQueryTest, LateBound_SettingsThroughCommObject) {
  const LateObject comm(Create<IDispatch>(__uuidof(CKespCommObj)));
  EXPECT_EQ(comm.Put(L"CommStyle", Plain(Value(csIEEE))).result, S_OK);
  const Outcome transport = comm.Get(L"CommObject");
  ASSERT_EQ(transport.value.type(), VT_DISPATCH);
  const LateObject ieee(ComPtr<IDispatch>(V_DISPATCH(transport.value.get())));
  EXPECT_EQ(ieee.Put(L"PrimaryAddress", Plain(Value(5))).result, S_OK);
  EXPECT_EQ(ieee.Put(L"EOSChar", Plain(Value(L"10"))).result, S_OK);
  Value result;
  EXPECT_TRUE(comm.Call(L"Query", {Variable(result), Plain(Value(L"*IDN?"))}).IsTrue());
  EXPECT_EQ(result.text(), L"KESP,GP488,SIM48805,2.0\n");
  EXPECT_EQ(V_I4(comm.Get(L"CommError").value.get()), cfrSuccess);
  EXPECT_EQ(ieee.Put(L"PrimaryAddress", Plain(Value(31))).scode, ERR_INVALID_PRIMARY_ADDRESS);
  EXPECT_EQ(ieee.Put(L"PrimaryAddress", Plain(Value(9))).result, S_OK);
  const Outcome update = comm.Call(L"Update", {Plain(Value(L"SETP 20"))});
  EXPECT_EQ(update.result, S_OK);
  EXPECT_FALSE(update.IsTrue());
  EXPECT_EQ(V_I4(comm.Get(L"CommError").value.get()), cfrWriteFailed);
  EXPECT_EQ(comm.Get(L"CommErrorSource").value.text(), kWritingSource);
}

GPIB_TEST(GpibQueryTest, FacadeReleased_TransportOfTheClientWorksOn) {
  comm_.Reset();
  EXPECT_EQ(ieee_.Converse(L"*IDN?"), L"KESP,GP488,SIM48805,2.0\n");
  EXPECT_EQ(ieee_.Initialize(), kDone);
  ieee_.object.Reset();
  EXPECT_EQ(driver_.OpenDescriptors(), 0);
}

}  // namespace
}  // namespace kesp::clients
