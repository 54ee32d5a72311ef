// Looking for a device: where and with which commands, what is found and what is left behind.
#include "tests/clients/gpib_detection_fixture.h"
#include "tests/clients/late_object.h"

namespace kesp::clients {
namespace {

class GpibDetectionTest : public GpibDetectionStage {
 protected:
  void LoadAll() { driver_.Load(BusWith(std::string(kAnswersIdn) + "," + kAnswersVer + "," + kAnswersT)); }
};

GPIB_TEST(GpibDetectionTest, FindFirst_StartsAtAddressOne) {
  LoadAll();
  ieee_.SetAddress(20);
  EXPECT_EQ(AutoDetect(), kDone);
  ExpectFound(2, L"KESP,GP488,SIM48802,2.0\n");
  EXPECT_EQ(Asked(), (CallLines{"1: *IDN? *VER t", "2: *IDN?"}));
  EXPECT_EQ(journal(), (Lines{L"AutoDetectBegin()", Trial(L"*IDN?", 20), Trial(L"*IDN?", 1),
                              Trial(L"*VER", 1), Trial(L"t", 1), Trial(L"*IDN?", 2), L"AutoDetectEnd()"}));
  EXPECT_EQ(driver_.Calls(),
            (CallLines{"ibdev(0,1,0,11,1,0)", "ibclr(1)", "ibeos(1,1073)", R"(ibwrt(1,"*IDN?\n",6))",
                       R"(ibwrt(1,"*VER\n",5))", R"(ibwrt(1,"t\n",2))", "ibonl(1,0)", "ibonl(0,0)",
                       "ibdev(0,2,0,11,1,0)", "ibclr(1)", "ibeos(1,1073)", R"(ibwrt(1,"*IDN?\n",6))",
                       "ibrd(1,[50 blanks],50)", "ibonl(1,0)", "ibonl(0,0)"}));
}

GPIB_TEST(GpibDetectionTest, FindNext_GoesOnBehindThePresentAddress) {
  LoadAll();
  ieee_.SetAddress(2);
  EXPECT_EQ(AutoDetect(dlAllCommands, soFindNext), kDone);
  ExpectFound(3, L"2.0\n");
  EXPECT_EQ(Asked(), CallLines{"3: *IDN? *VER"}) << "a second went by without an answer to *IDN?";
  EXPECT_EQ(journal(), (Lines{L"AutoDetectBegin()", Trial(L"*IDN?", 2), Trial(L"*IDN?", 3), Trial(L"*VER", 3),
                              L"AutoDetectEnd()"}));
  EXPECT_EQ(AutoDetect(dlAllCommands, soFindNext), kDone);
  ExpectFound(4, L"23.5\n");
}

GPIB_TEST(GpibDetectionTest, FoundWithTheThirdCommand) {
  driver_.Load(BusWith(kAnswersT));
  EXPECT_EQ(AutoDetect(), kDone);
  ExpectFound(4, L"23.5\n");
  EXPECT_EQ(Asked(), (CallLines{"1: *IDN? *VER t", "2: *IDN? *VER t", "3: *IDN? *VER t", "4: *IDN? *VER t"}));
}

GPIB_TEST(GpibDetectionTest, Levels_LimitTheCommands) {
  LoadAll();
  ieee_.SetAddress(2);
  EXPECT_EQ(AutoDetect(dlCommonCommands, soFindNext), kDone);
  ExpectFound(3, L"2.0\n");
  EXPECT_EQ(AutoDetect(dlCommonCommands, soFindNext), kDone);
  ExpectNothingFound(3);
  ASSERT_EQ(Asked().size(), 28U) << testing::PrintToString(Asked());
  EXPECT_EQ(Asked()[1], "4: *IDN? *VER");
  EXPECT_EQ(Asked().back(), "30: *IDN? *VER");
  ieee_.SetAddress(3);
  EXPECT_EQ(AutoDetect(dlSCPIOnly, soFindNext), kDone);
  ExpectNothingFound(3);
  ASSERT_EQ(Asked().size(), 55U) << testing::PrintToString(Asked());
  EXPECT_EQ(Asked().back(), "30: *IDN?");
}

// A level by its number, as a script gives it.
EDetectLevel Level(long number) {
  return static_cast<EDetectLevel>(number);
}

GPIB_TEST(GpibDetectionTest, LevelsBeyondTheKnown) {
  driver_.Load(BusWith(kAnswersT));
  ieee_.SetAddress(3);
  EXPECT_EQ(AutoDetect(Level(0), soFindNext), kDone);
  ExpectNothingFound(3);
  EXPECT_EQ(journal(), (Lines{L"AutoDetectBegin()", L"AutoDetectEnd()"}));
  EXPECT_EQ(driver_.Record(), CallLines{});
  EXPECT_EQ(AutoDetect(Level(99), soFindNext), kDone);
  ExpectFound(4, L"23.5\n");
}

GPIB_TEST(GpibDetectionTest, NothingFound_EverythingAsBefore) {
  ieee_.SetAddress(7);
  driver_.Load(BusWith(R"({"gpib": {"primary": 30, "secondary": 9}})"));
  EXPECT_EQ(AutoDetect(dlSCPIOnly), kDone);
  ExpectNothingFound(7);
  const CallLines asked = Asked();
  ASSERT_EQ(asked.size(), 30U);
  for (int address = 1; address <= 30; ++address) {
    EXPECT_EQ(asked[static_cast<std::size_t>(address) - 1], std::to_string(address) + ": *IDN?");
  }
  ASSERT_EQ(journal().size(), 33U);
  EXPECT_EQ(journal().front(), L"AutoDetectBegin()");
  EXPECT_EQ(journal().back(), L"AutoDetectEnd()");
}

GPIB_TEST(GpibDetectionTest, NextBehindTheLastAddress_TriesNothing) {
  LoadAll();
  ieee_.SetAddress(30);
  EXPECT_EQ(AutoDetect(dlAllCommands, soFindNext), kDone);
  ExpectNothingFound(30);
  EXPECT_EQ(driver_.Record(), CallLines{});
  EXPECT_EQ(journal(), (Lines{L"AutoDetectBegin()", Trial(L"*IDN?", 30), L"AutoDetectEnd()"}));
}

GPIB_TEST(GpibDetectionTest, SecondaryAddressAndSettings_AreUsedThroughout) {
  driver_.Load(BusWith(R"({"gpib": {"primary": 2, "secondary": 7}, "commands": {"*IDN?": "behind"}})"));
  EXPECT_EQ(Write(ieee_.object, &_CKespIEEE::put_SecondaryAddress, 7), S_OK);
  ieee_.SetClears(false);
  ieee_.SetEos(L"13");
  EXPECT_EQ(AutoDetect(dlSCPIOnly), kDone);
  ExpectFound(2, L"behind\n");
  EXPECT_EQ(driver_.Calls(),
            (CallLines{"ibdev(0,1,7,11,1,0)", "ibeos(1,1073)", R"(ibwrt(1,"*IDN?\r",6))", "ibonl(1,0)",
                       "ibonl(0,0)", "ibdev(0,2,7,11,1,0)", "ibeos(1,1073)", R"(ibwrt(1,"*IDN?\r",6))",
                       "ibrd(1,[50 blanks],50)", "ibonl(1,0)", "ibonl(0,0)"}));
}

// Without an end of commands no command can be sent: every one fails, and that is no error of the search.
GPIB_TEST(GpibDetectionTest, EosCharThatIsNoNumber_FindsNothing) {
  LoadAll();
  ieee_.SetEos(L"abc");
  EXPECT_EQ(AutoDetect(dlSCPIOnly), kDone);
  ExpectNothingFound(1);
  EXPECT_EQ(driver_.Calls("ibwrt"), CallLines{});
}

GPIB_TEST(GpibDetectionTest, DeviceThatWasOpen_IsClosedFirst) {
  LoadAll();
  ieee_.SetAddress(4);
  EXPECT_EQ(ieee_.Initialize(), kDone);
  EXPECT_EQ(AutoDetect(dlSCPIOnly), kDone);
  ExpectFound(2, L"KESP,GP488,SIM48802,2.0\n");
}

GPIB_TEST(GpibDetectionTest, Abort_AtTheFirstUpdate_TouchesNoDriver) {
  LoadAll();
  ieee_.SetAddress(9);
  AbortAt(1);
  EXPECT_EQ(AutoDetect(), kDone);
  ExpectNothingFound(9);
  EXPECT_EQ(driver_.Record(), CallLines{});
  EXPECT_EQ(journal(), (Lines{L"AutoDetectBegin()", Trial(L"*IDN?", 9), L"AutoDetectEnd()"}));
}

GPIB_TEST(GpibDetectionTest, Abort_InTheMiddle_ClosesTheDevice) {
  LoadAll();
  ieee_.SetAddress(9);
  AbortAt(3);
  EXPECT_EQ(AutoDetect(), kDone);
  ExpectNothingFound(9);
  EXPECT_EQ(Asked(), CallLines{"1: *IDN?"});
  EXPECT_EQ(driver_.Calls("ibonl"), (CallLines{"ibonl(1,0)", "ibonl(0,0)"}));
  EXPECT_EQ(journal(), (Lines{L"AutoDetectBegin()", Trial(L"*IDN?", 9), Trial(L"*IDN?", 1), Trial(L"*VER", 1),
                              L"AutoDetectEnd()"}));
  recorder_->handlers.clear();
  EXPECT_EQ(AutoDetect(), kDone);
  ExpectFound(2, L"KESP,GP488,SIM48802,2.0\n");
}

GPIB_TEST(GpibDetectionTest, DeviceThatCannotBeOpened_RaisesWithEverythingAsBefore) {
  struct Example {
    const char* function;
    HRESULT number;
    const wchar_t* call;
  };
  for (const Example& example :
       {Example{"ibdev", ERR_IBDEV, L"ibdev()"}, Example{"ibclr", ERR_IBCLR, L"ibclr()"},
        Example{"ibeos", ERR_IBEOS, L"ibeos()"}}) {
    RunAfresh(driver_, BusWith(kAnswersT, Failures(Failing(example.function, 3))), [&] {
      IeeeClient client;
      client.SetAddress(9);
      client.SetTimeOut(to10s);
      const auto recorder = EventRecorder::Make(__uuidof(__CKespIEEE));
      const Connection connection(client.object.Get(), __uuidof(__CKespIEEE), recorder.Get());
      Text result(L"before");
      VARIANT_BOOL found = VARIANT_TRUE;
      EXPECT_EQ(RefusalOf(client.object->AutoDetect(result.in_out(), dlAllCommands, soFindFirst, &found)),
                (Refusal{example.number, kOpeningSource,
                         DriverError(example.call, L"14 - Command error during device call")}));
      EXPECT_EQ(found, VARIANT_FALSE);
      EXPECT_EQ(result.str(), L"");
      EXPECT_EQ(client.Address(), 9);
      EXPECT_EQ(client.TimeOut(), to10s);
      EXPECT_EQ(driver_.OpenDescriptors(), 0) << driver_.RecordText();
      ASSERT_FALSE(recorder->journal.empty());
      EXPECT_EQ(recorder->journal.back(), L"AutoDetectEnd()") << testing::PrintToString(recorder->journal);
      EXPECT_EQ(recorder->Count(L"AutoDetectUpdate"), 7U) << "the first and those of two addresses";
    });
  }
}

GPIB_TEST(GpibDetectionTest, EmptyBus_IsAnErrorOfTheFirstClearing) {
  driver_.Load(BusWith(""));
  EXPECT_EQ(AutoDetect(), (Refusal{ERR_IBCLR, kOpeningSource,
                                   DriverError(L"ibclr()", L"2 - Write function detected no listeners")}));
  ExpectNothingFound(1);
  EXPECT_EQ(driver_.Calls("ibdev"), CallLines{"ibdev(0,1,0,11,1,0)"});
}

GPIB_TEST(GpibDetectionTest, EosCharEmpty_RaisesAtTheFirstAddress) {
  LoadAll();
  ieee_.SetEos(L"");
  EXPECT_EQ(AutoDetect().result, ControlError(5));
  ExpectNothingFound(1);
}

GPIB_TEST(GpibDetectionTest, LateBound_WithoutOptionalArguments_AllCommandsFromTheFirstAddress) {
  driver_.Load(BusWith(kAnswersT));
  ieee_.SetAddress(9);
  const LateObject late(ieee_.object);
  Value result(5);
  EXPECT_TRUE(late.Call(L"AutoDetect", {Variable(result)}).IsTrue());
  EXPECT_EQ(result.type(), VT_BSTR);
  EXPECT_EQ(result.text(), L"23.5\n");
  EXPECT_EQ(ieee_.Address(), 4);
  ASSERT_EQ(Asked().size(), 4U) << testing::PrintToString(Asked());
  EXPECT_EQ(Asked().front(), "1: *IDN? *VER t");
}

GPIB_TEST(GpibDetectionTest, LateBound_NamedArguments) {
  LoadAll();
  ieee_.SetAddress(2);
  const LateObject late(ieee_.object);
  Value result;
  const Outcome outcome = late.Call(
      L"AutoDetect", {Variable(result)},
      {{L"SearchOption", Plain(Value(soFindNext))}, {L"DetectLevel", Plain(Value(dlCommonCommands))}});
  EXPECT_TRUE(outcome.IsTrue()) << outcome.result;
  EXPECT_EQ(result.text(), L"2.0\n");
  EXPECT_EQ(ieee_.Address(), 3);
}

GPIB_TEST(GpibDetectionTest, LateBound_FailureIsInExcepInfoAndTheVariableEmpty) {
  driver_.Load(BusWith(kAnswersT, Failures(Failing("ibdev", 1, "\"error\": 7"))));
  const LateObject late(ieee_.object);
  Value result(L"before");
  const Outcome outcome = late.Call(L"AutoDetect", {Variable(result)});
  EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
  EXPECT_EQ(outcome.scode, ERR_IBDEV);
  EXPECT_EQ(outcome.source, kOpeningSource);
  EXPECT_EQ(outcome.description, DriverError(L"ibdev()", L"7 - Non-existent interface board"));
  EXPECT_EQ(result.text(), L"");
}

// Their numbers are right where the recorder finds their names by them.
GPIB_TEST(GpibDetectionTest, Events_HaveTheirDeclaredTypes) {
  std::vector<std::vector<VARTYPE>> heard;
  for (const wchar_t* event : {L"AutoDetectBegin", L"AutoDetectUpdate", L"AutoDetectEnd"}) {
    recorder_->handlers[event] = [&heard](DISPPARAMS& arguments) {
      std::vector<VARTYPE>& types = heard.emplace_back();
      for (UINT i = arguments.cArgs; i-- > 0;) types.push_back(V_VT(&arguments.rgvarg[i]));
    };
  }
  driver_.Load(BusWith(kAnswersIdn));
  EXPECT_EQ(AutoDetect(dlSCPIOnly), kDone);
  const std::vector<VARTYPE> update{VT_BSTR, VT_I2, VT_BYREF | VT_BOOL};
  EXPECT_EQ(heard, (decltype(heard){{}, update, update, update, {}}));
}

GPIB_TEST(GpibDetectionTest, NoHandler_FindsAllTheSame) {
  LoadAll();
  connection_.Disconnect();
  EXPECT_EQ(AutoDetect(), kDone);
  ExpectFound(2, L"KESP,GP488,SIM48802,2.0\n");
}

// Everything besides the search: no event is raised by it.
GPIB_TEST(GpibDetectionTest, Conversation_RaisesNoEvents) {
  driver_.Load(MeterBus());
  ieee_.SetAddress(5);
  EXPECT_EQ(ieee_.Converse(L"*IDN?"), L"KESP,GP488,SIM48805,2.0\n");
  EXPECT_EQ(journal(), Lines{});
}

}  // namespace
}  // namespace kesp::clients
