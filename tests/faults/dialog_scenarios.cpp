// Dialogs that are opened, used a little, and closed.
#include "dialogs/dialog_ids.h"
#include "tests/faults/dialog_hand.h"
#include "tests/faults/scenarios.h"
#include "tests/faults/serial_stage.h"
#include "tests/faults/tcp_stage.h"

namespace kesp::faults {

namespace {

// Shows the dialog of that object while the hand does its steps, the last of which confirms.
void Edit(_CKespCommObj* comm, long flags, std::vector<HandStep> steps, Verdict& verdict) {
  VARIANT_BOOL answer = kUnset;
  DialogHand hand(std::move(steps));
  const HRESULT result = comm->Edit(static_cast<EEditCommFlags>(flags), nullptr, 0, &answer);
  verdict.Answered(result, answer, "Edit");
  verdict.ExpectUndisturbed(hand.Finish(), "the dialog does not take every step");
}

class TcpDialog : public TcpScenario {
 public:
  void Run(Verdict& verdict) override {
    if (!Begin(verdict)) return;
    Edit(comm_.Get(), ecfShowTCPExtendedTab,
         {{.control = ID_TAB_SETTINGS, .page = 1},
          {.control = ID_CHK_TCP_LOG_FILE},
          {.control = ID_CHK_TCP_LOG_FILE},
          {.control = ID_TAB_SETTINGS, .page = 0},
          {.control = ID_OK}},
         verdict);
  }
};

constexpr long kAllPages = ecfShowRS232ExtendedTab | ecfShowRS232SmartSwitchTab | ecfShowRS232IRDongle;

class SerialDialog : public SerialScenario {
 public:
  void Run(Verdict& verdict) override {
    if (!Begin(verdict)) return;
    Edit(comm_.Get(), kAllPages,
         {{.control = ID_TAB_SETTINGS, .page = 1},
          {.control = ID_TAB_SETTINGS, .page = 2},
          {.control = ID_CHK_CHECK_NON_ASCII},
          {.control = ID_TAB_SETTINGS, .page = 0},
          {.control = ID_OK}},
         verdict);
  }
};

// With that of the radio modem, which is at the port.
class ModemDialog : public SerialScenario {
 public:
  void Run(Verdict& verdict) override {
    if (!Begin(verdict)) return;
    Edit(comm_.Get(), 0,
         {{.control = ID_CHK_USE_RF_MODEM},
          {.control = ID_CMD_RF_PROPERTIES},
          // The last box that is filled with what was read.
          {.control = ID_OK, .shown = ID_TXT_RF_TIMEOUT},
          // Without an instrument's address the modem cannot be used.
          {.control = ID_CHK_USE_RF_MODEM, .shown = ID_CHK_USE_RF_MODEM},
          {.control = ID_OK}},
         verdict);
  }
  // What answers at the port is the modem.
  void WorkAgain(Verdict& verdict) override {
    if (comm_ == nullptr) return;
    transport_ = Use<_CKespCOMPort3>(comm_.Get(), csRS232, verdict);
    if (transport_ == nullptr || !SerialStage::Point(transport_.Get(), verdict)) return;
    ReadModem(verdict);
  }

 private:
  void ReadModem(Verdict& verdict) const {
    Text texts[6];
    VARIANT_BOOL answer = kUnset;
    const HRESULT read =
        transport_->RFReadModemSettings(texts[0].in_out(), texts[1].in_out(), texts[2].in_out(),
                                        texts[3].in_out(), texts[4].in_out(), texts[5].in_out(), &answer);
    if (!verdict.Answered(read, answer, "RFReadModemSettings")) return;
    verdict.Expect(!texts[0].str().empty(), "the modem tells no serial number");
  }
};

}  // namespace

std::unique_ptr<Scenario> MakeTcpDialog() {
  return std::make_unique<TcpDialog>();
}
std::unique_ptr<Scenario> MakeSerialDialog() {
  return std::make_unique<SerialDialog>();
}
std::unique_ptr<Scenario> MakeModemDialog() {
  return std::make_unique<ModemDialog>();
}

}  // namespace kesp::faults
