// The stage of the detection's tests: an instrument that answers at one rate, and what was tried.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {

using Attempts = std::vector<std::pair<std::int32_t, std::wstring>>;

class CKespCOMPort3DetectionTest : public SerialConversationTest {
 protected:
  CKespCOMPort3DetectionTest() {
    port_.SetTimeOut(777);
    port_.SetCheckNonAscii(false);
    environment_.clock.SetStepPerReading(20);
  }

  // The instrument gives this reply to this command while the line has this rate, and nothing otherwise.
  void AnswersAt(const std::wstring& rate, const std::string& cmd, const std::string& reply) {
    ports_.line.on_output = [=, this](const std::string& written, const std::wstring& settings) {
      if (written == cmd + "\r" && settings == rate + L",N,8,1") ports_.line.Arrive(reply, 1);
    };
  }

  bool Detect(EDetectLevel level = EDetectLevel::dlAllCommands) {
    record_.clear();
    return port_.AutoDetect(buffer_, level);
  }

  // What was tried, as AutoDetectUpdate told it: the rates' indices and the commands.
  Attempts Tried() const {
    const std::wstring beginning = L"AutoDetectUpdate(1,";
    Attempts attempts;
    for (const std::wstring& line : record_) {
      if (!line.starts_with(beginning)) continue;
      const std::size_t comma = line.find(L',', beginning.size());
      attempts.emplace_back(std::stoi(line.substr(beginning.size())),
                            line.substr(comma + 1, line.rfind(L',') - comma - 1));
    }
    return attempts;
  }

  // Whatever it came to, the end is told once, the port is closed, and the client's settings are back.
  void ExpectLeftInOrder() {
    EXPECT_EQ(port_.TimeOut(), 777);
    EXPECT_FALSE(port_.CheckNonAscii());
    EXPECT_FALSE(ports_.line.open);
    EXPECT_EQ(environment_.user.pointer(), MousePointer::kDefault);
    EXPECT_TRUE(environment_.user.boxes().empty());
    EXPECT_EQ(std::count(record_.begin(), record_.end(), L"AutoDetectBegin(1)"), 1);
    EXPECT_EQ(std::count(record_.begin(), record_.end(), L"AutoDetectEnd()"), 1);
  }

  // A radio modem that confirms everything.
  void ModemConfirms() {
    port_.SetUseRFModem(true);
    port_.SetInstrAddr(26);
    for (const char* command : {"+++", "ATDH0\r", "ATDL1A\r", "ATWR\r", "ATCN\r"}) {
      ports_.line.Answer(command, "OK\r");
    }
  }

  std::wstring buffer_ = L"before";
};

}  // namespace kesp
