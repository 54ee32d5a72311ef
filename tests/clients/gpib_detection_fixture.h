// A transport for IEEE-488 that looks for its device, and a handler of its events.
#pragma once

#include <string>
#include <vector>

#include "tests/clients/event_recorder.h"
#include "tests/clients/gpib_fixture.h"

namespace kesp::clients {

// Devices that know one identification command each. They stay silent at others, for the second that a
// detection waits.
inline constexpr char kAnswersIdn[] =
    R"({"gpib": {"primary": 2}, "commands": {"*IDN?": "KESP,GP488,SIM48802,2.0"}, "default": "ERR 02"})";
inline constexpr char kAnswersVer[] = R"({"gpib": {"primary": 3}, "commands": {"*VER": "2.0"}})";
inline constexpr char kAnswersT[] = R"({"gpib": {"primary": 4}, "commands": {"t": "23.5"}})";

class GpibDetectionStage : public GpibStage {
 protected:
  GpibDetectionStage() {
    ieee_.SetAddress(1);
    ieee_.SetTimeOut(to10s);
  }

  // The result is in result_ and found_.
  Refusal AutoDetect(EDetectLevel level = dlAllCommands, ESearchOption option = soFindFirst) {
    found_ = 5;
    return RefusalOf(ieee_.object->AutoDetect(result_.in_out(), level, option, &found_));
  }
  // True, that device's answer, its address, and everything else as before.
  void ExpectFound(short address, const std::wstring& answer) {
    EXPECT_EQ(found_, VARIANT_TRUE);
    EXPECT_EQ(result_.str(), answer);
    ExpectLeft(address);
  }
  void ExpectNothingFound(short address) {
    EXPECT_EQ(found_, VARIANT_FALSE);
    EXPECT_EQ(result_.str(), L"");
    ExpectLeft(address);
  }
  void ExpectLeft(short address) {
    EXPECT_EQ(ieee_.Address(), address);
    EXPECT_EQ(ieee_.TimeOut(), to10s);
    EXPECT_EQ(driver_.OpenDescriptors(), 0) << driver_.RecordText();
  }

  const Lines& journal() const { return recorder_->journal; }
  // The entry of an update when nobody aborts.
  static std::wstring Trial(const std::wstring& cmd, int address) {
    return L"AutoDetectUpdate(" + cmd + L"," + std::to_wstring(address) + L",&False)";
  }
  // An address and the commands that a detection asks there: "3: *IDN? *VER".
  CallLines Asked() const {
    CallLines asked;
    for (const std::string& call : driver_.Calls()) {
      if (call.starts_with("ibdev(0,")) asked.push_back(call.substr(8, call.find(',', 8) - 8) + ":");
      if (!call.starts_with("ibwrt(") || asked.empty()) continue;
      const std::size_t begin = call.find('"') + 1;
      asked.back() += " " + call.substr(begin, call.find("\\n\"") - begin);
    }
    return asked;
  }
  // Sets Abort at the n-th update.
  void AbortAt(std::size_t update) {
    recorder_->handlers[L"AutoDetectUpdate"] = [this, update](DISPPARAMS& arguments) {
      if (recorder_->Count(L"AutoDetectUpdate") == update) {
        *V_BOOLREF(&arguments.rgvarg[0]) = VARIANT_TRUE;
      }
    };
  }

  Text result_{L"before"};
  VARIANT_BOOL found_ = VARIANT_FALSE;
  ComPtr<EventRecorder> recorder_ = EventRecorder::Make(__uuidof(__CKespIEEE));
  Connection connection_{ieee_.object.Get(), __uuidof(__CKespIEEE), recorder_.Get()};
};

}  // namespace kesp::clients
