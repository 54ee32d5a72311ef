// What a client learns when a call of the driver fails: number, source and description, early and late bound.
#include <array>

#include "tests/clients/gpib_fixture.h"
#include "tests/clients/late_object.h"

namespace kesp::clients {
namespace {

// The driver's error numbers from 0 on, as descriptions show them.
constexpr std::array<const wchar_t*, 26> kMessages = {
    L"0 - System error",
    L"1 - Function requires GPIB board to be CIC",
    L"2 - Write function detected no listeners",
    L"3 - Interface board not addressed correctly",
    L"4 - Invalid argument to function call",
    L"5 - Function requires GPIB board to be SAC",
    L"6 - I/O operation aborted",
    L"7 - Non-existent interface board",
    L"8 - DMA Error",
    L"9 - Unknown Error",
    L"10 - I/O operation started before previous operation completed",
    L"11 - No capability for intended operation",
    L"12 - File system operation error",
    L"13 - Unknown Error",
    L"14 - Command error during device call",
    L"15 - Serial poll status byte lost",
    L"16 - SRQ remains asserted",
    L"17 - Unknown Error",
    L"18 - Unknown Error",
    L"19 - Unknown Error",
    L"20 - The return buffer is full",
    L"21 - Address or board is locked",
    L"22 - Unknown Error",
    L"23 - Unknown Error",
    L"24 - Unknown Error",
    L"25 - Unknown Error"};

class GpibErrorsTest : public GpibStage {
 protected:
  // The n-th call of that function fails with the driver's error n - 1.
  void FailWithEachError(const std::string& function) {
    std::string failures;
    for (std::size_t error = 0; error < kMessages.size(); ++error) {
      failures += (error == 0 ? "" : ", ") +
                  Failing(function, static_cast<int>(error) + 1, "\"error\": " + std::to_string(error));
    }
    driver_.Load(MeterBus(Failures(failures)));
  }
  void Open() { EXPECT_EQ(ieee_.Initialize(), kDone); }
};

GPIB_TEST(GpibErrorsTest, Ibdev_EachError) {
  FailWithEachError("ibdev");
  for (const wchar_t* message : kMessages) {
    EXPECT_EQ(ieee_.Initialize(), (Refusal{ERR_IBDEV, kOpeningSource, DriverError(L"ibdev()", message)}));
    EXPECT_EQ(ieee_.Uninitialize(), (Refusal{ERR_INVALID_DEVICE, kClosingSource, L"Invalid device."}));
  }
  Open();
}

GPIB_TEST(GpibErrorsTest, Ibclr_EachErrorClosesTheDevice) {
  FailWithEachError("ibclr");
  for (const wchar_t* message : kMessages) {
    EXPECT_EQ(ieee_.Initialize(), (Refusal{ERR_IBCLR, kOpeningSource, DriverError(L"ibclr()", message)}));
    EXPECT_EQ(driver_.OpenDescriptors(), 0);
    EXPECT_EQ(ieee_.Uninitialize(), kDone);
  }
  Open();
}

GPIB_TEST(GpibErrorsTest, Ibeos_EachErrorClosesTheDevice) {
  FailWithEachError("ibeos");
  for (const wchar_t* message : kMessages) {
    EXPECT_EQ(ieee_.Initialize(), (Refusal{ERR_IBEOS, kOpeningSource, DriverError(L"ibeos()", message)}));
    EXPECT_EQ(driver_.OpenDescriptors(), 0);
    EXPECT_EQ(ieee_.Uninitialize(), kDone);
  }
  Open();
}

GPIB_TEST(GpibErrorsTest, Ibwrt_EachErrorLeavesTheDeviceOpen) {
  FailWithEachError("ibwrt");
  Open();
  for (const wchar_t* message : kMessages) {
    EXPECT_EQ(ieee_.WriteLine(L"*IDN?"),
              (Refusal{ERR_IBWRT, kWritingSource,
                       DriverError(L"ibwrt() with command '*IDN?' on device 1", message)}));
  }
  EXPECT_EQ(ieee_.Exchange(L"*IDN?"), L"KESP,GP488,SIM48805,2.0\n");
}

GPIB_TEST(GpibErrorsTest, Ibrd_EachErrorLeavesTheDeviceOpen) {
  FailWithEachError("ibrd");
  Open();
  for (const wchar_t* message : kMessages) {
    EXPECT_EQ(ieee_.ReadLine(),
              (Refusal{ERR_IBRD, kReadingSource, DriverError(L"ibrd() on device 1", message)}));
    EXPECT_EQ(ieee_.reply.str(), L"");
  }
  EXPECT_EQ(ieee_.Exchange(L"*IDN?"), L"KESP,GP488,SIM48805,2.0\n");
}

// The source is that of the opening, although it is the closing that failed.
GPIB_TEST(GpibErrorsTest, Ibonl_EachErrorLeavesTheDeviceOpen) {
  FailWithEachError("ibonl");
  Open();
  for (const wchar_t* message : kMessages) {
    EXPECT_EQ(ieee_.Uninitialize(),
              (Refusal{ERR_IBONL, kOpeningSource, DriverError(L"ibonl() for device", message)}));
    EXPECT_EQ(driver_.OpenDescriptors(), 1);
  }
  EXPECT_EQ(ieee_.Exchange(L"*IDN?"), L"KESP,GP488,SIM48805,2.0\n");
  EXPECT_EQ(ieee_.Uninitialize(), kDone);
}

GPIB_TEST(GpibErrorsTest, IbonlOfTheBoard_IsToldApart) {
  driver_.Load(MeterBus(Failures(Failing("ibonl", 2, "\"error\": 7"))));
  Open();
  EXPECT_EQ(ieee_.Uninitialize(),
            (Refusal{ERR_IBONL, kOpeningSource,
                     DriverError(L"ibonl() for board", L"7 - Non-existent interface board")}));
  Open();
  EXPECT_EQ(ieee_.Exchange(L"*IDN?"), L"KESP,GP488,SIM48805,2.0\n");
}

// Negative and large numbers are seen as 16 bits.
GPIB_TEST(GpibErrorsTest, OddErrorNumbers_AreShownAs16Bits) {
  driver_.Load(
      MeterBus(Failures(Failing("ibwrt", 1, "\"error\": -1") + "," + Failing("ibwrt", 2, "\"error\": 65538") +
                        "," + Failing("ibwrt", 3, "\"error\": 32768"))));
  Open();
  for (const wchar_t* message :
       {L"-1 - Unknown Error", L"2 - Write function detected no listeners", L"-32768 - Unknown Error"}) {
    EXPECT_EQ(ieee_.WriteLine(L"t").description,
              DriverError(L"ibwrt() with command 't' on device 1", message));
  }
}

// Bit 15 of the status word alone tells a failure.
GPIB_TEST(GpibErrorsTest, StatusWord_HasTheErrorBitOrNot) {
  const std::string statuses[] = {"32767", "0", "8448", "2147418112", "32768", "65535", "-1", "-32512"};
  std::string failures;
  int call = 0;
  for (const std::string& status : statuses) {
    ++call;
    failures += (call == 1 ? "" : ", ") + Failing("ibwrt", call, "\"error\": 3, \"status\": " + status);
  }
  driver_.Load(MeterBus(Failures(failures)));
  Open();
  for (const std::string& status : statuses) {
    const bool failed = (std::stoll(status) & 0x8000) != 0;
    EXPECT_EQ(ieee_.WriteLine(L"t").result, failed ? HRESULT{ERR_IBWRT} : S_OK) << status;
  }
}

GPIB_TEST(GpibErrorsTest, StatusWord_OfTheOtherCalls) {
  driver_.Load(MeterBus(Failures(Failing("ibclr", 1, R"("error": 3, "status": 32767)") + "," +
                                 Failing("ibeos", 1, R"("error": 3, "status": 32767)") + "," +
                                 Failing("ibrd", 1, R"("error": 3, "status": 32767)") + "," +
                                 Failing("ibonl", 1, R"("error": 3, "status": 32767)") + "," +
                                 Failing("ibdev", 2, R"("error": 3, "status": 32768, "result": 7)"))));
  EXPECT_EQ(ieee_.Initialize(), kDone);
  EXPECT_EQ(ieee_.ReadLine(), kDone);
  EXPECT_EQ(ieee_.Uninitialize(), kDone);
  // The failed ibonl left it open in the driver, which nobody but this test can know.
  EXPECT_EQ(driver_.OpenDescriptors(), 1);
  EXPECT_EQ(ieee_.Initialize().result, ERR_IBDEV) << "in spite of its good descriptor";
  EXPECT_EQ(ieee_.WriteLine(L"t").description.find(L"Error calling ibwrt() with command 't' on device 7"),
            0U);
  driver_.Load(MeterBus());
}

GPIB_TEST(GpibErrorsTest, DescriptorBeyond16Bits_IsAnOverflowAndGivenBack) {
  driver_.Load(MeterBus(Failures(Failing("ibdev", 1, R"("status": 256, "result": 40000)") + "," +
                                 Failing("ibdev", 2, R"("status": 256, "result": 65537)") + "," +
                                 Failing("ibdev", 3, R"("status": 256, "result": 32768)") + "," +
                                 Failing("ibdev", 4, R"("status": 256, "result": 32767)"))));
  for (const wchar_t* descriptor : {L"40000", L"65537", L"32768"}) {
    EXPECT_EQ(ieee_.Initialize(),
              (Refusal{ControlError(6), kOpeningSource,
                       L"Overflow (the driver's descriptor " + std::wstring(descriptor) + L")"}));
    EXPECT_EQ(ieee_.Uninitialize(), (Refusal{ERR_INVALID_DEVICE, kClosingSource, L"Invalid device."}));
  }
  ieee_.SetClears(false);
  ieee_.SetEndsReads(false);
  EXPECT_EQ(ieee_.Initialize(), kDone);
  EXPECT_EQ(driver_.Calls(),
            (CallLines{"ibdev(0,5,0,12,1,0)", "ibonl(40000,0)", "ibdev(0,5,0,12,1,0)", "ibonl(65537,0)",
                       "ibdev(0,5,0,12,1,0)", "ibonl(32768,0)", "ibdev(0,5,0,12,1,0)"}));
}

GPIB_TEST(GpibErrorsTest, InvalidDevice_AfterAFailedOpening_UntilOneSucceeds) {
  driver_.Load(MeterBus(Failures(Failing("ibdev", 2))));
  Open();
  EXPECT_EQ(ieee_.Initialize().result, ERR_IBDEV);
  EXPECT_EQ(driver_.OpenDescriptors(), 0) << "that of before is closed";
  EXPECT_EQ(ieee_.Uninitialize(), (Refusal{ERR_INVALID_DEVICE, kClosingSource, L"Invalid device."}));
  EXPECT_EQ(ieee_.WriteLine(L"t"),
            (Refusal{ERR_IBWRT, kWritingSource,
                     DriverError(L"ibwrt() with command 't' on device -1", L"0 - System error")}));
  Open();
  EXPECT_EQ(ieee_.Uninitialize(), kDone);
}

GPIB_TEST(GpibErrorsTest, ErrorInformation_IsSupported) {
  ComPtr<ISupportErrorInfo> support;
  ASSERT_EQ(ieee_.object.As(&support), S_OK);
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(__uuidof(_CKespIEEE)), S_OK);
}

GPIB_TEST(GpibErrorsTest, LateBound_EachCallsErrorIsInExcepInfo) {
  struct Example {
    const char* function;
    const wchar_t* member;
    HRESULT number;
    const wchar_t* source;
    const wchar_t* call;
  };
  const Value cmd(L"t");
  for (const Example& example :
       {Example{"ibdev", L"Initialize", ERR_IBDEV, kOpeningSource, L"ibdev()"},
        Example{"ibclr", L"Initialize", ERR_IBCLR, kOpeningSource, L"ibclr()"},
        Example{"ibeos", L"Initialize", ERR_IBEOS, kOpeningSource, L"ibeos()"},
        Example{"ibwrt", L"WriteLine", ERR_IBWRT, kWritingSource, L"ibwrt() with command 't' on device 1"},
        Example{"ibrd", L"ReadLine", ERR_IBRD, kReadingSource, L"ibrd() on device 1"},
        Example{"ibonl", L"Uninitialize", ERR_IBONL, kOpeningSource, L"ibonl() for device"}}) {
    RunAfresh(driver_, MeterBus(Failures(Failing(example.function, 1, "\"error\": 2"))), [&] {
      IeeeClient client;
      const LateObject late(client.object);
      Value reply(L"before");
      std::vector<VARIANT> arguments;
      if (std::wstring(example.member) == L"WriteLine") arguments.push_back(Plain(cmd));
      if (std::wstring(example.member) == L"ReadLine") arguments.push_back(Variable(reply));
      if (std::wstring(example.member) != L"Initialize") {
        EXPECT_EQ(client.Initialize(), kDone);
      }
      const Outcome outcome = late.Call(example.member, arguments);
      EXPECT_EQ(outcome.result, DISP_E_EXCEPTION) << example.function;
      EXPECT_EQ(outcome.scode, example.number) << example.function;
      EXPECT_EQ(outcome.source, example.source);
      EXPECT_EQ(outcome.description, DriverError(example.call, L"2 - Write function detected no listeners"));
    });
  }
}

GPIB_TEST(GpibErrorsTest, LateBound_BareNumbersAndOptionalCommand) {
  const LateObject late(ieee_.object);
  EXPECT_TRUE(late.Call(L"Initialize").IsTrue());
  EXPECT_TRUE(late.Call(L"WriteLine").IsTrue());
  EXPECT_EQ(driver_.Calls("ibwrt"), CallLines{R"(ibwrt(1,"\n",1))"});
  EXPECT_EQ(late.Put(L"EOSChar", Plain(Value(L"abc"))).result, S_OK);
  EXPECT_EQ(late.Call(L"WriteLine").scode, ControlError(13));
  EXPECT_EQ(late.Put(L"EOSChar", Plain(Value(L"256"))).result, S_OK);
  EXPECT_EQ(late.Call(L"WriteLine").scode, ControlError(5));
}

// A number is a fine EOSChar for a script.
GPIB_TEST(GpibErrorsTest, LateBound_EosCharAsANumber) {
  const LateObject late(ieee_.object);
  EXPECT_EQ(late.Put(L"EOSChar", Plain(Value(13))).result, S_OK);
  EXPECT_TRUE(late.Call(L"Initialize").IsTrue());
  EXPECT_TRUE(late.Call(L"WriteLine", {Plain(Value(L"t"))}).IsTrue());
  EXPECT_EQ(driver_.Calls("ibwrt"), CallLines{R"(ibwrt(1,"t\r",2))"});
}

}  // namespace
}  // namespace kesp::clients
