// The dialog of the radio modem's own settings, with a modem that answers anything, and what OK writes to it.
#include <string>

#include "dialogs/frm_rf_modem_settings.h"
#include "serial/serial_control_fake.h"
#include "support/environment_fake.h"
#include "tests/fuzz/form_user.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/require.h"

namespace kesp {
namespace {

// The parameter that the last command of that name wrote; nothing when there was none.
std::string LastWritten(const SerialLineFake& line, const std::string& name) {
  for (auto written = line.writes.rbegin(); written != line.writes.rend(); ++written) {
    if (written->starts_with(name) && written->size() > name.size() + 1) {
      return written->substr(name.size(), written->size() - name.size() - 1);
    }
  }
  return {};
}

bool IsIn(const std::string& hexadecimal, unsigned long lowest, unsigned long highest) {
  if (hexadecimal.empty()) return true;
  const unsigned long number = std::stoul(hexadecimal, nullptr, 16);
  return number >= lowest && number <= highest;
}

class DialogInUse {
 public:
  explicit DialogInUse(FuzzInput& input) : input_(input) {
    environment_.clock.SetStepPerReading(50);
    port_.SetMaxBaudRate(EKespBaudRate3::br115200);
    port_.SetBaudRate(EKespBaudRate3::br9600);
    port_.SetUseRFModem(true);
    port_.SetTimeOut(300);
    const std::uint8_t odd = input.Byte();
    const char* const questions[] = {"ATSH\r", "ATSL\r", "ATPL\r", "ATID\r", "ATCH\r", "ATMY\r", "ATCT\r"};
    ports_.line.Answer("+++", "OK\r");
    ports_.line.Answer("ATCN\r", "OK\r");
    for (std::size_t place = 0; place < std::size(questions); ++place) {
      const bool is_odd = (odd >> place & 1) != 0;
      ports_.line.Answer(questions[place],
                         is_odd ? std::string(input.Bytes(input.Below(12))) + "\r" : std::string("1A\r"));
    }
    ports_.line.on_output = [this](const std::string& written, const std::wstring&) {
      if (written.starts_with("AT") && !ports_.line.answers.contains(written)) ports_.line.Arrive("OK\r", 1);
    };
    if (input.Below(8) == 0) ports_.line.FailCall(static_cast<int>(input.Byte()), kSerialDeviceError);
  }

  void Run() {
    form_.FirstPaint();
    FormUser user(form_, input_);
    while (input_.HasMore() && form_.is_open()) {
      const std::uint8_t step = input_.Byte();
      const std::size_t writes = ports_.line.writes.size();
      if (step < 0xC0) {
        user.Use(user.ChooseControl());
        Require(ports_.line.writes.size() == writes, "only OK writes to the modem");
      } else if (step < 0xF8) {
        environment_.user.Answer(input_.Flag() ? kYesAnswer : 7);
        const std::size_t boxes = environment_.user.boxes().size();
        user.Confirm((step & 1) != 0);
        Require(!form_.is_open() || environment_.user.boxes().size() > boxes,
                "a user is told why OK did nothing");
      } else {
        user.Cancel();
        Require(!form_.is_open() && form_.bCancel(), "Cancel ends the dialog");
        Require(ports_.line.writes.size() == writes, "Cancel writes nothing");
      }
      Require(environment_.user.pointer() == MousePointer::kDefault, "the pointer is the plain one again");
      RequireForm(form_);
    }
    Require(IsIn(LastWritten(ports_.line, "ATID"), 1, 65535), "the network is one that there is");
    Require(IsIn(LastWritten(ports_.line, "ATCH"), 12, 24), "so is the channel");
    Require(IsIn(LastWritten(ports_.line, "ATMY"), 1, 65535), "so is the address");
    Require(IsIn(LastWritten(ports_.line, "ATCT"), 0, 656), "so is the timeout");
  }

 private:
  FuzzInput& input_;
  EnvironmentFake environment_;
  SerialPortsFake ports_{environment_.clock};
  CKespCOMPort3 port_{environment_.environment, ports_};
  frmRFModemSettings form_{environment_.user, port_, 4711};
};

}  // namespace
}  // namespace kesp

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesp::FuzzInput input(data, size);
  kesp::DialogInUse(input).Run();
  return 0;
}
