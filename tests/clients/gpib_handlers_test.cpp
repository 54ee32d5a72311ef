// Handlers that act on the IEEE-488 transport that calls them: calling back in, disconnecting, letting the
// last reference go.
#include <functional>
#include <memory>

#include "tests/clients/gpib_detection_fixture.h"

namespace kesp::clients {
namespace {

class GpibHandlersTest : public GpibDetectionStage {
 protected:
  GpibHandlersTest() { driver_.Load(BusWith(kAnswersIdn)); }

  void On(const std::wstring& event, std::function<void()> action) {
    recorder_->handlers[event] = [action = std::move(action)](DISPPARAMS&) { action(); };
  }
  // At the update before that command at that address; other updates pass.
  void OnTrial(const std::wstring& cmd, int address, std::function<void()> action) {
    recorder_->handlers[L"AutoDetectUpdate"] = [this, entry = Trial(cmd, address),
                                                action = std::move(action)](DISPPARAMS&) {
      // The first update names the present address, before any device is open.
      if (journal().back() == entry && journal().size() > 2) action();
    };
  }
  // The search goes the way it goes without handlers.
  void ExpectUndisturbed() {
    EXPECT_EQ(AutoDetect(), kDone);
    ExpectFound(2, L"KESP,GP488,SIM48802,2.0\n");
  }
};

GPIB_TEST(GpibHandlersTest, ReadsTheSettingsOfTheSearch) {
  std::vector<short> addresses;
  On(L"AutoDetectBegin", [&] { EXPECT_EQ(ieee_.TimeOut(), to1s); });
  On(L"AutoDetectUpdate", [&] {
    addresses.push_back(ieee_.Address());
    EXPECT_EQ(ieee_.TimeOut(), to1s);
  });
  On(L"AutoDetectEnd", [&] { EXPECT_EQ(ieee_.TimeOut(), to10s); });
  ieee_.SetAddress(17);
  ExpectUndisturbed();
  EXPECT_EQ(addresses, (std::vector<short>{17, 1, 1, 1, 2}));
}

GPIB_TEST(GpibHandlersTest, ChangesEveryMember_FoundAddressStays) {
  OnTrial(L"*IDN?", 2, [&] {
    ieee_.SetAddress(20);
    ieee_.SetTimeOut(to300s);
    ieee_.SetEos(L"13");
  });
  ExpectUndisturbed();
  EXPECT_EQ(driver_.LastCall("ibwrt"), R"(ibwrt(1,"*IDN?\r",6))");
}

// The command that follows finds no device; the next address does.
GPIB_TEST(GpibHandlersTest, ClosesTheDevice_SearchGoesOn) {
  OnTrial(L"*IDN?", 1, [&] { EXPECT_EQ(ieee_.Uninitialize(), kDone); });
  ExpectUndisturbed();
}

GPIB_TEST(GpibHandlersTest, ClosesTheDeviceThatWouldAnswer_NothingIsFound) {
  ieee_.SetAddress(1);
  On(L"AutoDetectUpdate", [&] { ieee_.Uninitialize(); });
  EXPECT_EQ(AutoDetect(dlSCPIOnly), kDone);
  ExpectNothingFound(1);
}

GPIB_TEST(GpibHandlersTest, ConversesItself) {
  OnTrial(L"*IDN?", 2, [&] { EXPECT_EQ(ieee_.Exchange(L"*IDN?"), L"KESP,GP488,SIM48802,2.0\n"); });
  ExpectUndisturbed();
  EXPECT_EQ(driver_.Calls("ibrd").size(), 2U);
}

GPIB_TEST(GpibHandlersTest, OpensTheDeviceAnew) {
  OnTrial(L"*IDN?", 2, [&] { EXPECT_EQ(ieee_.Initialize(), kDone); });
  ExpectUndisturbed();
}

GPIB_TEST(GpibHandlersTest, DetectsItself) {
  OnTrial(L"*VER", 1, [&] {
    recorder_->handlers.clear();
    Text inner;
    VARIANT_BOOL found = VARIANT_FALSE;
    EXPECT_EQ(ieee_.object->AutoDetect(inner.in_out(), dlAllCommands, soFindFirst, &found), S_OK);
    EXPECT_EQ(found, VARIANT_TRUE);
    EXPECT_EQ(inner.str(), L"KESP,GP488,SIM48802,2.0\n");
  });
  ExpectUndisturbed();
  EXPECT_EQ(recorder_->Count(L"AutoDetectBegin"), 2U);
  EXPECT_EQ(recorder_->Count(L"AutoDetectEnd"), 2U);
}

GPIB_TEST(GpibHandlersTest, Fails_NothingChanges) {
  recorder_->result = E_FAIL;
  ExpectUndisturbed();
}

GPIB_TEST(GpibHandlersTest, WritesAnyNumberButZeroIntoAbort) {
  recorder_->handlers[L"AutoDetectUpdate"] = [](DISPPARAMS& arguments) {
    *V_BOOLREF(&arguments.rgvarg[0]) = 1;
  };
  EXPECT_EQ(AutoDetect(), kDone);
  ExpectNothingFound(1);
  EXPECT_EQ(driver_.Record(), CallLines{});
}

// The next handler sees what the one before left.
GPIB_TEST(GpibHandlersTest, SecondHandlerTakesTheAbortBack) {
  const auto second = EventRecorder::Make(__uuidof(__CKespIEEE));
  const Connection connection(ieee_.object.Get(), __uuidof(__CKespIEEE), second.Get());
  recorder_->handlers[L"AutoDetectUpdate"] = [](DISPPARAMS& arguments) {
    *V_BOOLREF(&arguments.rgvarg[0]) = VARIANT_TRUE;
  };
  second->handlers[L"AutoDetectUpdate"] = [](DISPPARAMS& arguments) {
    EXPECT_EQ(*V_BOOLREF(&arguments.rgvarg[0]), VARIANT_TRUE);
    *V_BOOLREF(&arguments.rgvarg[0]) = VARIANT_FALSE;
  };
  ExpectUndisturbed();
}

GPIB_TEST(GpibHandlersTest, DisconnectsItself) {
  On(L"AutoDetectBegin", [&] { connection_.Disconnect(); });
  ExpectUndisturbed();
  EXPECT_EQ(journal(), Lines{L"AutoDetectBegin()"});
}

GPIB_TEST(GpibHandlersTest, DisconnectsTheNext_WhichIsNotCalledAnyMore) {
  const auto second = EventRecorder::Make(__uuidof(__CKespIEEE));
  Connection connection(ieee_.object.Get(), __uuidof(__CKespIEEE), second.Get());
  On(L"AutoDetectBegin", [&] { connection.Disconnect(); });
  ExpectUndisturbed();
  EXPECT_EQ(second->journal, Lines{});
  EXPECT_EQ(second->references(), 1U);
}

GPIB_TEST(GpibHandlersTest, ConnectsAnother_WhichHearsFromTheNextEventOn) {
  const auto second = EventRecorder::Make(__uuidof(__CKespIEEE));
  std::unique_ptr<Connection> connection;
  OnTrial(L"*IDN?", 2, [&] {
    connection = std::make_unique<Connection>(ieee_.object.Get(), __uuidof(__CKespIEEE), second.Get());
  });
  ExpectUndisturbed();
  EXPECT_EQ(second->journal, Lines{L"AutoDetectEnd()"});
}

// The object lives as long as the call that is on its way, and closes its device behind it.
class GpibLastReferenceTest : public GpibStage {
 protected:
  GpibLastReferenceTest() {
    driver_.Load(BusWith(kAnswersIdn));
    Connection(ieee_.object.Get(), __uuidof(__CKespIEEE), recorder_.Get()).Abandon();
  }

  // Lets go of the object at the n-th event of that name, in the middle of a detection.
  HRESULT DetectAndReleaseAt(const std::wstring& event, std::size_t number = 1) {
    recorder_->handlers[event] = [=, this](DISPPARAMS&) {
      if (recorder_->Count(event) == number) ieee_.object.Reset();
    };
    _CKespIEEE* const called = ieee_.object.Get();
    const HRESULT result = called->AutoDetect(result_.in_out(), dlAllCommands, soFindFirst, &found_);
    EXPECT_EQ(ieee_.object, nullptr) << "nothing let go: " << testing::PrintToString(recorder_->journal);
    EXPECT_EQ(recorder_->references(), 1U);
    EXPECT_EQ(driver_.OpenDescriptors(), 0) << driver_.RecordText();
    EXPECT_EQ(recorder_->Count(L"AutoDetectEnd"), 1U);
    return result;
  }

  ComPtr<EventRecorder> recorder_ = EventRecorder::Make(__uuidof(__CKespIEEE));
  Text result_;
  VARIANT_BOOL found_ = VARIANT_FALSE;
};

GPIB_TEST(GpibLastReferenceTest, ReleasedAtTheBeginning) {
  EXPECT_EQ(DetectAndReleaseAt(L"AutoDetectBegin"), S_OK);
  EXPECT_EQ(found_, VARIANT_TRUE);
  EXPECT_EQ(result_.str(), L"KESP,GP488,SIM48802,2.0\n");
}

GPIB_TEST(GpibLastReferenceTest, ReleasedInTheMiddle) {
  EXPECT_EQ(DetectAndReleaseAt(L"AutoDetectUpdate", 5), S_OK);
  EXPECT_EQ(found_, VARIANT_TRUE);
  EXPECT_EQ(result_.str(), L"KESP,GP488,SIM48802,2.0\n");
}

GPIB_TEST(GpibLastReferenceTest, ReleasedAtTheEnd) {
  EXPECT_EQ(DetectAndReleaseAt(L"AutoDetectEnd"), S_OK);
  EXPECT_EQ(found_, VARIANT_TRUE);
}

GPIB_TEST(GpibLastReferenceTest, ReleasedJustBeforeAnError) {
  driver_.Load(BusWith(kAnswersIdn, Failures(Failing("ibdev", 2))));
  EXPECT_EQ(DetectAndReleaseAt(L"AutoDetectEnd"), ERR_IBDEV);
  EXPECT_EQ(found_, VARIANT_FALSE);
}

}  // namespace
}  // namespace kesp::clients
