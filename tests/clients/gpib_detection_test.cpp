// Looking for a device on the bus: the events as clients hear them, and handlers that act on the transport.
#include <vector>

#include "tests/clients/event_recorder.h"
#include "tests/clients/gpib_fixture.h"

namespace kesp::clients {
namespace {

// The device that is found first, at address 2, answers the second command only.
class GpibDetectionTest : public GpibFixture {
 protected:
  // A handler for as long as the test lasts.
  ComPtr<EventRecorder> Listen(const IeeeClient& ieee) {
    const auto recorder = EventRecorder::Make(__uuidof(__CKespIEEE));
    Connection(ieee.object.Get(), __uuidof(__CKespIEEE), recorder.Get()).Abandon();
    return recorder;
  }
  static void ExpectNothingFound(IeeeClient& ieee) {
    EXPECT_EQ(ieee.answer, VARIANT_FALSE);
    EXPECT_EQ(ieee.reply.str(), L"");
    EXPECT_EQ(Read(ieee.object, &_CKespIEEE::get_PrimaryAddress), 5);
    EXPECT_EQ(Read(ieee.object, &_CKespIEEE::get_TimeOutSecs), to3s);
  }
};

TEST_F(GpibDetectionTest, DeviceAnswers_IsFoundAndToldWithTheDeclaredTypes) {
  std::vector<std::vector<VARTYPE>> types;
  Run(Bus(), [&](IeeeClient& ieee) {
    const auto recorder = Listen(ieee);
    for (const wchar_t* event : {L"AutoDetectBegin", L"AutoDetectUpdate", L"AutoDetectEnd"}) {
      recorder->handlers[event] = [&types](DISPPARAMS& arguments) {
        types.emplace_back();
        for (UINT i = arguments.cArgs; i-- > 0;) types.back().push_back(V_VT(&arguments.rgvarg[i]));
      };
    }
    EXPECT_EQ(ieee.AutoDetect(dlCommonCommands), kDone);
    EXPECT_EQ(ieee.answer, VARIANT_TRUE);
    EXPECT_EQ(ieee.reply.str(), L"KESP,2.0\n");
    EXPECT_EQ(Read(ieee.object, &_CKespIEEE::get_PrimaryAddress), 2);
    EXPECT_EQ(Read(ieee.object, &_CKespIEEE::get_TimeOutSecs), to3s);
    EXPECT_EQ(
        recorder->journal,
        (Lines{L"AutoDetectBegin()", L"AutoDetectUpdate(*IDN?,5,&False)", L"AutoDetectUpdate(*IDN?,1,&False)",
               L"AutoDetectUpdate(*VER,1,&False)", L"AutoDetectUpdate(*IDN?,2,&False)",
               L"AutoDetectUpdate(*VER,2,&False)", L"AutoDetectEnd()"}));
    // The next one has another address.
    EXPECT_EQ(ieee.AutoDetect(dlSCPIOnly, soFindNext), kDone);
    EXPECT_EQ(ieee.reply.str(), kIdentity);
  });
  types.resize(7);
  const std::vector<VARTYPE> update{VT_BSTR, VT_I2, VT_BYREF | VT_BOOL};
  EXPECT_EQ(types, (decltype(types){{}, update, update, update, update, update, {}}));
}

TEST_F(GpibDetectionTest, DeviceCannotBeOpened_RaisesWithEverythingAsBefore) {
  Run(BusFailing("ibdev", 7, 2), [&](IeeeClient& ieee) {
    const auto recorder = Listen(ieee);
    EXPECT_EQ(ieee.AutoDetect(dlSCPIOnly),
              (Refusal{ERR_IBDEV, kOpeningSource,
                       L"Error calling ibdev(): Error: 7 - Non-existent interface board"}));
    ExpectNothingFound(ieee);
    EXPECT_EQ(recorder->journal.back(), L"AutoDetectEnd()");
  });
}

// Some languages write 1 for True.
TEST_F(GpibDetectionTest, HandlerSetsAbort_NothingIsOpened) {
  Run(Bus(), [&](IeeeClient& ieee) {
    Listen(ieee)->handlers[L"AutoDetectUpdate"] = [](DISPPARAMS& arguments) {
      *V_BOOLREF(&arguments.rgvarg[0]) = 1;
    };
    EXPECT_EQ(ieee.AutoDetect(), kDone);
    ExpectNothingFound(ieee);
  });
  EXPECT_EQ(driver_.Record(), CallLines{});
}

TEST_F(GpibDetectionTest, HandlerTalksToTheDeviceItself_SearchGoesOn) {
  Run(Bus(), [&](IeeeClient& ieee) {
    int times = 0;
    const auto recorder = Listen(ieee);
    recorder->handlers[L"AutoDetectUpdate"] = [&](DISPPARAMS&) {
      if (recorder->journal.back() != L"AutoDetectUpdate(*IDN?,5,&False)") return;
      EXPECT_EQ(ieee.WriteLine(L"*IDN?"), kDone);
      EXPECT_EQ(ieee.ReadLine(), kDone);
      EXPECT_EQ(ieee.Initialize(), kDone);
      ++times;
    };
    ieee.Set(&_CKespIEEE::put_PrimaryAddress, 4);
    EXPECT_EQ(ieee.AutoDetect(dlSCPIOnly, soFindNext), kDone);
    EXPECT_EQ(ieee.answer, VARIANT_TRUE);
    EXPECT_EQ(ieee.reply.str(), kIdentity);
    EXPECT_EQ(times, 1);
  });
}

// The object lives as long as the call that is on its way, and closes its device behind it.
TEST_F(GpibDetectionTest, HandlerLetsTheLastReferenceGo_SearchEndsAllTheSame) {
  for (const wchar_t* event : {L"AutoDetectBegin", L"AutoDetectUpdate", L"AutoDetectEnd"}) {
    for (const bool fails : {false, true}) {
      SCOPED_TRACE(testing::Message() << event << (fails ? ", before an error" : ""));
      Run(fails ? BusFailing("ibdev", 7) : Bus(), [&](IeeeClient& ieee) {
        ieee.Set(&_CKespIEEE::put_PrimaryAddress, 4);
        const auto recorder = Listen(ieee);
        recorder->handlers[event] = [&](DISPPARAMS&) { ieee.object.Reset(); };
        EXPECT_EQ(ieee.AutoDetect(dlSCPIOnly, soFindNext).result, fails ? HRESULT{ERR_IBDEV} : S_OK);
        EXPECT_EQ(ieee.object, nullptr);
        EXPECT_EQ(ieee.answer, fails ? VARIANT_FALSE : VARIANT_TRUE);
        EXPECT_EQ(recorder->references(), 1U);
        EXPECT_EQ(recorder->Count(L"AutoDetectEnd"), 1U);
      });
      EXPECT_EQ(driver_.OpenDescriptors(), 0) << driver_.RecordText();
    }
  }
}

}  // namespace
}  // namespace kesp::clients
