// The IEEE-488 transport's calls of the driver: which, in which order, with which arguments.
#include "tests/clients/gpib_fixture.h"

namespace kesp::clients {
namespace {

class GpibLinesTest : public GpibStage {};

GPIB_TEST(GpibLinesTest, Conversation_WholeRecord) {
  EXPECT_EQ(ieee_.Initialize(), kDone);
  EXPECT_EQ(ieee_.WriteLine(L"*IDN?"), kDone);
  EXPECT_EQ(ieee_.ReadLine(), kDone);
  EXPECT_EQ(ieee_.reply.str(), L"KESP,GP488,SIM48805,2.0\n");
  EXPECT_EQ(ieee_.Uninitialize(), kDone);
  EXPECT_EQ(
      driver_.Record(),
      (CallLines{"1 RegisterGpibGlobalsForThread(4 cells) = 0",
                 "1 ibdev(0,5,0,12,1,0) = 1 sta 0100 err 0 cnt 0", "1 ibclr(1) = 256 sta 0100 err 0 cnt 0",
                 "1 ibeos(1,1073) = 256 sta 0100 err 0 cnt 0",
                 "1 ibwrt(1,\"*IDN?\\n\",6) = 256 sta 0100 err 0 cnt 6",
                 "1 ibrd(1,[50 blanks],50) = 8448 sta 2100 err 0 cnt 24 \"KESP,GP488,SIM48805,2.0\\n\"",
                 "1 ibonl(1,0) = 256 sta 0100 err 0 cnt 0", "1 ibonl(0,0) = 256 sta 0100 err 0 cnt 0"}));
}

GPIB_TEST(GpibLinesTest, Created_TouchesNoDriver) {
  EXPECT_EQ(ieee_.Uninitialize(), kDone) << "nothing is open";
  EXPECT_EQ(driver_.Record(), CallLines{});
}

GPIB_TEST(GpibLinesTest, ClearDeviceAndSetEos_AreAskedForSingly) {
  for (const bool clears : {false, true}) {
    for (const bool ends_reads : {false, true}) {
      ieee_.SetClears(clears);
      ieee_.SetEndsReads(ends_reads);
      EXPECT_EQ(ieee_.Initialize(), kDone);
      EXPECT_EQ(ieee_.Uninitialize(), kDone);
    }
  }
  CallLines calls = driver_.Calls();
  std::erase_if(calls, [](const std::string& call) { return call.starts_with("ibonl("); });
  EXPECT_EQ(calls, (CallLines{"ibdev(0,5,0,12,1,0)",                   //
                              "ibdev(0,5,0,12,1,0)", "ibeos(1,1073)",  //
                              "ibdev(0,5,0,12,1,0)", "ibclr(1)",       //
                              "ibdev(0,5,0,12,1,0)", "ibclr(1)", "ibeos(1,1073)"}));
}

GPIB_TEST(GpibLinesTest, TimeOutCodes_ArePassedAsTheyAre) {
  CallLines expected;
  for (int code = toNone; code <= to1000s; ++code) {
    ieee_.SetTimeOut(static_cast<ETimeOutSecs>(code));
    EXPECT_EQ(ieee_.Initialize(), kDone);
    EXPECT_EQ(ieee_.Uninitialize(), kDone);
    expected.push_back("ibdev(0,5,0," + std::to_string(code) + ",1,0)");
  }
  EXPECT_EQ(driver_.Calls("ibdev"), expected);
}

// No setting is checked on its way, so the driver has the last word.
GPIB_TEST(GpibLinesTest, TimeOutCodeOfNoTime_IsTheDriversToRefuse) {
  for (const int code : {-1, 18, 70000}) {
    ieee_.SetTimeOut(static_cast<ETimeOutSecs>(code));
    EXPECT_EQ(ieee_.Initialize(),
              (Refusal{ERR_IBDEV, kOpeningSource,
                       DriverError(L"ibdev()", L"4 - Invalid argument to function call")}));
  }
  EXPECT_EQ(driver_.Calls(),
            (CallLines{"ibdev(0,5,0,-1,1,0)", "ibdev(0,5,0,18,1,0)", "ibdev(0,5,0,70000,1,0)"}));
}

GPIB_TEST(GpibLinesTest, TimeOutSetWhileOpen_CountsFromTheNextOpening) {
  EXPECT_EQ(ieee_.Initialize(), kDone);
  ieee_.SetTimeOut(to30ms);
  EXPECT_EQ(ieee_.Exchange(L"*IDN?"), L"KESP,GP488,SIM48805,2.0\n");
  EXPECT_EQ(ieee_.Uninitialize(), kDone);
  EXPECT_EQ(ieee_.Initialize(), kDone);
  EXPECT_EQ(driver_.Calls("ibdev"), (CallLines{"ibdev(0,5,0,12,1,0)", "ibdev(0,5,0,8,1,0)"}));
}

GPIB_TEST(GpibLinesTest, Addresses_ArePassedAsTheyAre) {
  CallLines expected;
  for (const short primary : {short{1}, short{30}}) {
    for (const short secondary : {short{0}, short{1}, short{30}}) {
      ieee_.SetAddress(primary);
      EXPECT_EQ(Write(ieee_.object, &_CKespIEEE::put_SecondaryAddress, secondary), S_OK);
      EXPECT_EQ(ieee_.Initialize(), kDone);
      EXPECT_EQ(ieee_.Uninitialize(), kDone);
      expected.push_back("ibdev(0," + std::to_string(primary) + "," + std::to_string(secondary) + ",12,1,0)");
    }
  }
  EXPECT_EQ(driver_.Calls("ibdev"), expected);
}

GPIB_TEST(GpibLinesTest, SecondaryAddress_ReachesTheDeviceBehindIt) {
  driver_.Load(BusWith(R"({"gpib": {"primary": 5, "secondary": 1}, "commands": {"t": "one"}},
                          {"gpib": {"primary": 5, "secondary": 2}, "commands": {"t": "two"}})"));
  EXPECT_EQ(Write(ieee_.object, &_CKespIEEE::put_SecondaryAddress, 2), S_OK);
  EXPECT_EQ(ieee_.Converse(L"t"), L"two\n");
}

GPIB_TEST(GpibLinesTest, AddressSetWhileOpen_CountsFromTheNextOpening) {
  EXPECT_EQ(ieee_.Initialize(), kDone);
  ieee_.SetAddress(9);
  EXPECT_EQ(ieee_.Exchange(L"*IDN?"), L"KESP,GP488,SIM48805,2.0\n");
  EXPECT_EQ(ieee_.Uninitialize(), kDone);
  EXPECT_EQ(driver_.Calls("ibdev"), CallLines{"ibdev(0,5,0,12,1,0)"});
}

GPIB_TEST(GpibLinesTest, SecondInitialize_ClosesTheFirstDeviceAndNotTheBoard) {
  EXPECT_EQ(ieee_.Initialize(), kDone);
  ieee_.SetAddress(6);
  EXPECT_EQ(ieee_.Initialize(), kDone);
  EXPECT_EQ(driver_.Calls(), (CallLines{"ibdev(0,5,0,12,1,0)", "ibclr(1)", "ibeos(1,1073)", "ibonl(1,0)",
                                        "ibdev(0,6,0,12,1,0)", "ibclr(1)", "ibeos(1,1073)"}));
  EXPECT_EQ(driver_.OpenDescriptors(), 1);
}

GPIB_TEST(GpibLinesTest, Uninitialize_ASecondTimeDoesNothing) {
  EXPECT_EQ(ieee_.Initialize(), kDone);
  EXPECT_EQ(ieee_.Uninitialize(), kDone);
  EXPECT_EQ(ieee_.Uninitialize(), kDone);
  EXPECT_EQ(driver_.Calls("ibonl"), (CallLines{"ibonl(1,0)", "ibonl(0,0)"}));
}

GPIB_TEST(GpibLinesTest, Released_ClosesItsDeviceAndTheBoard) {
  EXPECT_EQ(ieee_.Initialize(), kDone);
  ieee_.object.Reset();
  EXPECT_EQ(driver_.Calls("ibonl"), (CallLines{"ibonl(1,0)", "ibonl(0,0)"}));
  EXPECT_EQ(driver_.OpenDescriptors(), 0);
}

GPIB_TEST(GpibLinesTest, TwoObjects_HaveADeviceEach) {
  driver_.Load(BusWith(
      R"({"gpib": {"primary": 5}, "commands": {"t": "five"}}, {"gpib": {"primary": 6}, "commands": {"t": "six"}})"));
  IeeeClient other;
  other.SetAddress(6);
  EXPECT_EQ(ieee_.Initialize(), kDone);
  EXPECT_EQ(other.Initialize(), kDone);
  EXPECT_EQ(ieee_.WriteLine(L"t"), kDone);
  EXPECT_EQ(other.Exchange(L"t"), L"six\n");
  EXPECT_EQ(ieee_.ReadLine(), kDone);
  EXPECT_EQ(ieee_.reply.str(), L"five\n");
  EXPECT_EQ(other.Uninitialize(), kDone);
  EXPECT_EQ(ieee_.Exchange(L"t"), L"five\n");
}

GPIB_TEST(GpibLinesTest, CommandAsItIs_TerminatorBehindIt) {
  EXPECT_EQ(ieee_.Initialize(), kDone);
  for (const wchar_t* cmd : {L"", L" t ", L"t\n", L"\"\\"}) EXPECT_EQ(ieee_.WriteLine(cmd), kDone);
  VARIANT_BOOL answer = VARIANT_FALSE;
  EXPECT_EQ(ieee_.object->WriteLine(nullptr, &answer), S_OK);
  EXPECT_EQ(driver_.Calls("ibwrt"),
            (CallLines{R"(ibwrt(1,"\n",1))", R"(ibwrt(1," t \n",4))", R"(ibwrt(1,"t\n\n",3))",
                       R"(ibwrt(1,"\"\\\n",3))", R"(ibwrt(1,"\n",1))"}));
}

// The library does not look whether a device is open: the driver knows what a descriptor of 0 is.
GPIB_TEST(GpibLinesTest, NeverOpened_LinesGoToTheBoardsOwnDescriptor) {
  EXPECT_EQ(ieee_.WriteLine(L"t"),
            (Refusal{ERR_IBWRT, kWritingSource,
                     L"Error calling ibwrt() with command 't' on device 0: Error: 4 - Invalid argument to "
                     L"function call"}));
  EXPECT_EQ(ieee_.ReadLine(),
            (Refusal{ERR_IBRD, kReadingSource,
                     L"Error calling ibrd() on device 0: Error: 4 - Invalid argument to function call"}));
  EXPECT_EQ(driver_.Calls(), (CallLines{R"(ibwrt(0,"t\n",2))", "ibrd(0,[50 blanks],50)"}));
}

GPIB_TEST(GpibLinesTest, Closed_DescriptorIsUsedAllTheSame) {
  EXPECT_EQ(ieee_.Initialize(), kDone);
  EXPECT_EQ(ieee_.Uninitialize(), kDone);
  EXPECT_EQ(ieee_.WriteLine(L"t"), (Refusal{ERR_IBWRT, kWritingSource,
                                            L"Error calling ibwrt() with command 't' on device 1: Error: 0 - "
                                            L"System error"}));
}

}  // namespace
}  // namespace kesp::clients
