// The stage of the radio modem's tests: what the modem answers.
#include "serial/kesp_com_port_modem_fixture.h"

#include <utility>

namespace kesp {

CKespCOMPort3ModemTest::CKespCOMPort3ModemTest() {
  port_.SetControllerStyle(EKespControllerStyle3::CS_OMEGA);
  port_.SetDataBits(EKespDataBits3::DATA_8BITS);  // so that a preset that is applied shows
  port_.SetUseRFModem(true);
  port_.SetTimeOut(300);
  Open();
}

CKespCOMPort3ModemTest::~CKespCOMPort3ModemTest() = default;

void CKespCOMPort3ModemTest::ExpectLeftInOrder() {
  EXPECT_EQ(port_.ControllerStyle(), EKespControllerStyle3::CS_OMEGA);
  EXPECT_EQ(port_.DataBits(), EKespDataBits3::DATA_8BITS);
  EXPECT_EQ(environment_.user.pointer(), MousePointer::kDefault);
  EXPECT_TRUE(environment_.user.boxes().empty());
  EXPECT_EQ(environment_.pump.count(), 0);
}

void CKespCOMPort3ModemTest::Confirms(const std::vector<std::string>& commands) {
  for (const std::string& command : commands) ports_.line.Answer(command, "OK\r");
}

void CKespCOMPort3ModemTest::AnswersQuestions() {
  Confirms({"+++", "ATCN\r"});
  const std::pair<const char*, const char*> answers[] = {
      {"ATSH\r", "13A2\r"}, {"ATSL\r", "40B0C1D2\r"}, {"ATPL\r", "4\r"}, {"ATID\r", "3332\r"},
      {"ATCH\r", "C\r"},    {"ATMY\r", "1A\r"},       {"ATCT\r", "F\r"}};
  for (const auto& [question, answer] : answers) ports_.line.Answer(question, answer);
}

void CKespCOMPort3ModemTest::ConfirmsAddress() {
  Confirms({"+++", "ATDH0\r", "ATDL1A\r", "ATWR\r", "ATCN\r"});
}

std::wstring CKespCOMPort3ModemTest::Remembered(const std::wstring& section) const {
  return environment_.settings.Value(kModemFile, section, L"InstrAddr");
}

std::vector<std::wstring> CKespCOMPort3ModemTest::Texts(const RadioModemSettings& settings) {
  return {settings.serial,  settings.power_level,   settings.pan_id,
          settings.channel, settings.modem_address, settings.timeout};
}

}  // namespace kesp
