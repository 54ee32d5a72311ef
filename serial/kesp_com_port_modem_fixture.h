// The stage of the radio modem's tests: an open port with a style that is to come back, and a modem that
// answers.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {

inline constexpr wchar_t kModemFile[] = L"C:\\Temp\\RFModem.ini";

class CKespCOMPort3ModemTest : public SerialConversationTest {
 protected:
  CKespCOMPort3ModemTest() {
    port_.SetControllerStyle(EKespControllerStyle3::CS_OMEGA);
    port_.SetDataBits(EKespDataBits3::DATA_8BITS);  // so that a preset that is applied shows
    port_.SetUseRFModem(true);
    port_.SetTimeOut(300);
    Open();
  }

  // The style is the one of before, without its preset; and the operation neither pumps nor shows anything.
  void ExpectLeftInOrder() {
    EXPECT_EQ(port_.ControllerStyle(), EKespControllerStyle3::CS_OMEGA);
    EXPECT_EQ(port_.DataBits(), EKespDataBits3::DATA_8BITS);
    EXPECT_EQ(environment_.user.pointer(), MousePointer::kDefault);
    EXPECT_TRUE(environment_.user.boxes().empty());
    EXPECT_EQ(environment_.pump.count(), 0);
  }

  void Confirms(const std::vector<std::string>& commands) {
    for (const std::string& command : commands) ports_.line.Answer(command, "OK\r");
  }
  void AnswersQuestions() {
    Confirms({"+++", "ATCN\r"});
    const std::pair<const char*, const char*> answers[] = {
        {"ATSH\r", "13A2\r"}, {"ATSL\r", "40B0C1D2\r"}, {"ATPL\r", "4\r"}, {"ATID\r", "3332\r"},
        {"ATCH\r", "C\r"},    {"ATMY\r", "1A\r"},       {"ATCT\r", "F\r"}};
    for (const auto& [question, answer] : answers) ports_.line.Answer(question, answer);
  }
  void ConfirmsAddress() { Confirms({"+++", "ATDH0\r", "ATDL1A\r", "ATWR\r", "ATCN\r"}); }

  std::wstring Remembered(const std::wstring& section = L"COM1") const {
    return environment_.settings.Value(kModemFile, section, L"InstrAddr");
  }

  static auto Texts(const RadioModemSettings& settings) {
    return std::vector<std::wstring>{settings.serial,  settings.power_level,   settings.pan_id,
                                     settings.channel, settings.modem_address, settings.timeout};
  }

  const RadioModemSettings untouched_{L"a", L"b", L"c", L"d", L"e", L"f"};
  RadioModemSettings settings_ = untouched_;
  const Lines questions_{L"+++",      L"ATSH<0D>", L"ATSL<0D>", L"ATPL<0D>", L"ATID<0D>",
                         L"ATCH<0D>", L"ATMY<0D>", L"ATCT<0D>", L"ATCN<0D>"};
};

}  // namespace kesp
