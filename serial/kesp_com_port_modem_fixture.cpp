// The stage of the tests of the radio modem: its port and its answers.
#include "serial/kesp_com_port_modem_fixture.h"

#include <utility>

namespace kesp {

CKespCOMPort3ModemFixture::CKespCOMPort3ModemFixture() {
  port_.SetControllerStyle(EKespControllerStyle3::CS_OMEGA);
  port_.SetDataBits(EKespDataBits3::DATA_8BITS);
  port_.SetUseRFModem(true);
  port_.SetTimeOut(300);
  Open();
}

CKespCOMPort3ModemFixture::~CKespCOMPort3ModemFixture() {
  ExpectLeftInOrder();
}

void CKespCOMPort3ModemFixture::ExpectLeftInOrder() {
  EXPECT_EQ(port_.ControllerStyle(), EKespControllerStyle3::CS_OMEGA);
  EXPECT_EQ(port_.DataBits(), EKespDataBits3::DATA_8BITS);
  EXPECT_EQ(environment_.user.pointer(), MousePointer::kDefault);
  EXPECT_EQ(environment_.pump.count(), 0);
}

void CKespCOMPort3ModemFixture::Confirms(const std::vector<std::string>& commands) {
  for (const std::string& command : commands) ports_.line.Answer(command, "OK\r");
}

void CKespCOMPort3ModemFixture::AnswersQuestions() {
  Confirms({"+++", "ATCN\r"});
  const std::pair<const char*, const char*> answers[] = {
      {"ATSH\r", "13A2\r"}, {"ATSL\r", "40B0C1D2\r"}, {"ATPL\r", "4\r"}, {"ATID\r", "3332\r"},
      {"ATCH\r", "C\r"},    {"ATMY\r", "1A\r"},       {"ATCT\r", "F\r"}};
  for (const auto& [question, answer] : answers) ports_.line.Answer(question, answer);
}

}  // namespace kesp
