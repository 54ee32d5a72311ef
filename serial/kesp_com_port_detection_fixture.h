// The stage of the detection's tests: an instrument that answers at one rate, and what was tried.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {

using Attempts = std::vector<std::pair<std::int32_t, std::wstring>>;

class CKespCOMPort3DetectionTest : public SerialConversationTest {
 protected:
  CKespCOMPort3DetectionTest();
  ~CKespCOMPort3DetectionTest() override;

  // The instrument gives this reply to this command while the line has this rate, and nothing otherwise.
  void AnswersAt(const std::wstring& rate, const std::string& cmd, const std::string& reply);

  bool Detect(EDetectLevel level = EDetectLevel::dlAllCommands);

  // What was tried, as AutoDetectUpdate told it: the rates' indices and the commands.
  Attempts Tried() const;

  // Whatever it came to, the end is told once, the port is closed, and the client's settings are back.
  void ExpectLeftInOrder();

  // A radio modem that confirms everything.
  void ModemConfirms();

  std::wstring buffer_ = L"before";
};

}  // namespace kesp
