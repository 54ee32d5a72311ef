// The stage of the serial transport's tests: all its settings, and one record of everything that happens.
#include "serial/kesp_com_port_fixture.h"

#include <tuple>
#include <utility>

namespace kesp {

namespace {

auto AllOf(const CKespCOMPort3& port) {
  return std::tuple(port.Port(), port.BaudRate(), port.MinBaudRate(), port.MaxBaudRate(), port.DataBits(),
                    port.StopBits(), port.Parity(), port.ControllerStyle(), port.TimeOut(), port.StripCRLF(),
                    port.TerminateOnLF(), port.CheckNonAscii(), port.UseSmartSwitch(), port.UseIRDongle(),
                    port.UseRFModem(), port.InstrAddr(), port.RFModemPropHCID(), port.UseRedirector(),
                    port.CreateLogFile(), port.LogFilename(), port.GetKey(), port.SmartSwitch());
}

}  // namespace

struct Settings::Values {
  decltype(AllOf(std::declval<const CKespCOMPort3&>())) all;
};

Settings::Settings(const CKespCOMPort3& port) : values_(std::make_shared<const Values>(AllOf(port))) {}

bool Settings::operator==(const Settings& other) const {
  return values_->all == other.values_->all;
}

CKespCOMPort3Test::CKespCOMPort3Test() = default;

CKespCOMPort3Test::~CKespCOMPort3Test() = default;

void CKespCOMPort3Test::AllowRates(std::int32_t lowest, std::int32_t highest, std::int32_t rate) {
  port_.SetMaxBaudRate(Rate(highest));
  port_.SetMinBaudRate(Rate(lowest));
  port_.SetBaudRate(Rate(rate));
}

void CKespCOMPort3Test::ExpectRefused(const std::function<void()>& set, std::int64_t value,
                                      const Raised& failure) {
  const Settings before(port_);
  EXPECT_EQ(RaisedBy(set), failure) << value;
  EXPECT_TRUE(Settings(port_) == before) << value;
}

SerialConversationTest::SerialConversationTest() {
  AllowRates(0, 13, 6);
  environment_.clock.SetStepPerReading(1);
  ports_.line.record = [this](const std::string& call) {
    record_.push_back(SystemCodePage().FromBytes(call));
  };
  events_.record = [this](const std::wstring& event) { record_.push_back(event); };
  environment_.files.OnAppend([this](const std::wstring&, std::string_view line) {
    const std::size_t message = line.find('\t', line.find('\t') + 1) + 1;
    record_.push_back(L"Log " + SystemCodePage().FromBytes(line.substr(message, line.size() - message - 2)));
  });
}

SerialConversationTest::~SerialConversationTest() {
  ports_.line.record = [](const std::string&) {};
  ports_.line.on_output = nullptr;
  ports_.line.on_poll = nullptr;
  events_.record = [](const std::wstring&) {};
  events_.handlers.clear();
  environment_.files.OnAppend([](const std::wstring&, std::string_view) {});
  environment_.pump.OnPump(nullptr);
}

void SerialConversationTest::Open() {
  port_.OpenPort();
  record_.clear();
}

void SerialConversationTest::StartLog() {
  port_.SetCreateLogFile(true);
}

Lines SerialConversationTest::LogLines() const {
  return Recorded(L"Log ", 4);
}

Lines SerialConversationTest::Outputs() const {
  return Recorded(L"Output ", 7);
}

Lines SerialConversationTest::Events() const {
  Lines events;
  for (const std::wstring& line : record_) {
    const bool event = line.ends_with(L')') && !line.starts_with(L"Log ") && !line.starts_with(L"Output ");
    if (event) events.push_back(line);
  }
  return events;
}

std::int32_t SerialConversationTest::Now() const {
  return environment_.clock.tick();
}

Lines SerialConversationTest::Recorded(const std::wstring& beginning, std::size_t dropped) const {
  Lines lines;
  for (const std::wstring& line : record_) {
    if (line.starts_with(beginning)) lines.push_back(line.substr(dropped));
  }
  return lines;
}

}  // namespace kesp
