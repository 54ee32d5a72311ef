// The TCP/IP dialog, used in any order: what Cancel leaves as it was, and what OK writes.
#include <memory>
#include <optional>
#include <tuple>

#include "dialogs/frm_tcp_settings.h"
#include "network/socket_control_fake.h"
#include "support/environment_fake.h"
#include "tests/fuzz/form_user.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/require.h"

namespace kesp {
namespace {

class DialogInUse {
 public:
  explicit DialogInUse(FuzzInput& input)
      : input_(input), options_{.show_extended_page = input.Flag(), .help_context = 0} {
    const std::wstring address = WideText(input.Bytes(input.Below(20)));
    if (!address.empty()) tcp_.SetIPAddress(address);
    if (const auto port = static_cast<std::int16_t>(input.Word()); port > 0) tcp_.SetPort(port);
    tcp_.SetTimeOutmSecs(static_cast<std::int16_t>(input.Word()));
    tcp_.SetIPType(static_cast<EIPType>(input.Below(4)));
  }

  void Run() {
    const auto loaded = Settings();
    form_.FirstPaint();
    Require(Settings() == loaded, "loading changes no setting");
    FormUser user(form_, input_);
    while (input_.HasMore() && form_.is_open()) {
      const std::uint8_t step = input_.Byte();
      const auto before = Settings();
      if (step < 0xD0) {
        user.Use(user.ChooseControl());
        Require(Settings() == before, "using a control changes no setting");
        Require(form_.is_open(), "only OK and Cancel end the dialog");
      } else if (step < 0xF8) {
        Confirm(user, (step & 1) != 0);
      } else {
        user.Cancel();
        Require(!form_.is_open() && form_.bCancel(), "Cancel ends the dialog");
        Require(Settings() == before, "Cancel changes no setting");
      }
      RequireForm(form_);
      Require(!form_.optTCPType[0].selected() || !form_.optTCPType[1].selected(), "one option is selected");
    }
  }

 private:
  std::tuple<EIPType, std::wstring, std::int16_t, std::int16_t, bool> Settings() const {
    return {tcp_.IPType(), tcp_.IPAddress(), tcp_.Port(), tcp_.TimeOutmSecs(), tcp_.CreateLogFile()};
  }

  void Confirm(FormUser& user, bool by_mouse) {
    const std::size_t boxes = environment_.user.boxes().size();
    const std::int16_t port = tcp_.Port();
    user.Confirm(by_mouse);
    if (form_.is_open()) {
      Require(environment_.user.boxes().size() > boxes, "a user is told why OK did nothing");
      return;
    }
    Require(!form_.bCancel(), "OK is not Cancel");
    const bool is_known = form_.optTCPType[frmTCPSettings::kKnownAddress].selected();
    Require(tcp_.IPType() == (is_known ? EIPType::ipStatic : EIPType::ipDynamic),
            "the type is the one chosen");
    Require(!is_known || tcp_.Port() >= 1, "the port is one");
    Require(is_known || tcp_.Port() == port, "the port stays for the next time");
    if (options_.show_extended_page) {
      Require(tcp_.CreateLogFile() == form_.chkCreateLogFile.checked(), "the log is as checked");
    }
  }

  FuzzInput& input_;
  const TcpDialogOptions options_;
  EnvironmentFake environment_;
  CKespTCP tcp_{environment_.environment,
                [](SocketListener& listener) { return std::make_unique<SocketControlFake>(listener); },
                MakeInstrument};
  frmTCPSettings form_{environment_.user, tcp_, options_};
};

}  // namespace
}  // namespace kesp

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesp::FuzzInput input(data, size);
  kesp::DialogInUse(input).Run();
  return 0;
}
