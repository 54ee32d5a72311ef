// The stage of the serial transport's tests: what is expected of it, and one record of everything that
// happens.
#include "serial/kesp_com_port_fixture.h"

namespace kesp {

CKespCOMPort3Fixture::CKespCOMPort3Fixture() = default;

CKespCOMPort3Fixture::~CKespCOMPort3Fixture() = default;

void CKespCOMPort3Fixture::AllowRates(std::int32_t lowest, std::int32_t highest, std::int32_t rate) {
  port_.SetMaxBaudRate(Rate(highest));
  port_.SetMinBaudRate(Rate(lowest));
  port_.SetBaudRate(Rate(rate));
}

void CKespCOMPort3Fixture::ExpectRefused(const std::function<void()>& set, const Raised& failure) {
  const auto before = SettingsOf(port_);
  EXPECT_EQ(RaisedBy(set), failure);
  EXPECT_TRUE(SettingsOf(port_) == before);
}

void CKespCOMPort3Fixture::ExpectBox(const std::wstring& action, const std::wstring& error,
                                     std::size_t count) {
  ASSERT_EQ(environment_.user.boxes().size(), count);
  const MessageBoxRequest& box = environment_.user.boxes().back();
  EXPECT_EQ(box.title, L"Kesp Communications Error");
  EXPECT_EQ(box.style, 16u);
  EXPECT_EQ(box.text, L"An error occurred while " + action + L".\r\nError: " + error);
}

std::wstring CKespCOMPort3Fixture::Remembered(const std::wstring& section) const {
  return environment_.settings.Value(kModemFile, section, L"InstrAddr");
}

SerialConversationFixture::SerialConversationFixture() {
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

SerialConversationFixture::~SerialConversationFixture() {
  ports_.line.record = [](const std::string&) {};
  ports_.line.on_output = nullptr;
  ports_.line.on_poll = nullptr;
  events_.record = [](const std::wstring&) {};
  events_.handlers.clear();
  environment_.files.OnAppend([](const std::wstring&, std::string_view) {});
  environment_.pump.OnPump(nullptr);
}

void SerialConversationFixture::Open() {
  port_.OpenPort();
  record_.clear();
}

void SerialConversationFixture::StartLog() {
  port_.SetCreateLogFile(true);
}

Lines SerialConversationFixture::LogLines() const {
  return Recorded(L"Log ", 4);
}

Lines SerialConversationFixture::Outputs() const {
  return Recorded(L"Output ", 7);
}

Lines SerialConversationFixture::Events() const {
  Lines events;
  for (const std::wstring& line : record_) {
    const bool event = line.ends_with(L')') && !line.starts_with(L"Log ") && !line.starts_with(L"Output ");
    if (event) events.push_back(line);
  }
  return events;
}

std::int32_t SerialConversationFixture::Now() const {
  return environment_.clock.tick();
}

void SerialConversationFixture::Run(const std::function<bool()>& read) {
  const std::int32_t start = Now();
  raised_ = RaisedBy([&] { returned_ = read(); });
  // The counter may turn negative meanwhile.
  lasted_ =
      static_cast<std::int32_t>(static_cast<std::uint32_t>(Now()) - static_cast<std::uint32_t>(start)) - 1;
}

Lines SerialConversationFixture::Recorded(const std::wstring& beginning, std::size_t dropped) const {
  Lines lines;
  for (const std::wstring& line : record_) {
    if (line.starts_with(beginning)) lines.push_back(line.substr(dropped));
  }
  return lines;
}

}  // namespace kesp
