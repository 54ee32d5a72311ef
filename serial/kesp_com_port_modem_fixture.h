// The stage of the tests of the radio modem: an open port, and a modem behind it.
#pragma once

#include <string>
#include <vector>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {

// The port has a style that is to come back without its preset.
class CKespCOMPort3ModemFixture : public SerialConversationFixture {
 protected:
  CKespCOMPort3ModemFixture();
  ~CKespCOMPort3ModemFixture() override;

  // The style is the one of before, without its preset; and the operation did not pump.
  void ExpectLeftInOrder();

  // The modem answers these with OK.
  void Confirms(const std::vector<std::string>& commands);
  // The modem tells its settings.
  void AnswersQuestions();

  // What it is asked for them, as Outputs() has it.
  const Lines questions_{L"+++",      L"ATSH<0D>", L"ATSL<0D>", L"ATPL<0D>", L"ATID<0D>",
                         L"ATCH<0D>", L"ATMY<0D>", L"ATCT<0D>", L"ATCN<0D>"};
};

}  // namespace kesp
