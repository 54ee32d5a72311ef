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
  CKespCOMPort3ModemTest();
  ~CKespCOMPort3ModemTest() override;

  // The style is the one of before, without its preset; and the operation neither pumps nor shows anything.
  void ExpectLeftInOrder();

  void Confirms(const std::vector<std::string>& commands);
  void AnswersQuestions();
  void ConfirmsAddress();

  std::wstring Remembered(const std::wstring& section = L"COM1") const;

  static std::vector<std::wstring> Texts(const RadioModemSettings& settings);

  const RadioModemSettings untouched_{L"a", L"b", L"c", L"d", L"e", L"f"};
  RadioModemSettings settings_ = untouched_;
  const Lines questions_{L"+++",      L"ATSH<0D>", L"ATSL<0D>", L"ATPL<0D>", L"ATID<0D>",
                         L"ATCH<0D>", L"ATMY<0D>", L"ATCT<0D>", L"ATCN<0D>"};
};

}  // namespace kesp
