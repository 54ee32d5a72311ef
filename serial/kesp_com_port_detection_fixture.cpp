// The stage of the detection's tests: the instrument, and what was tried.
#include "serial/kesp_com_port_detection_fixture.h"

#include <algorithm>

namespace kesp {

CKespCOMPort3DetectionTest::CKespCOMPort3DetectionTest() {
  port_.SetTimeOut(777);
  port_.SetCheckNonAscii(false);
  environment_.clock.SetStepPerReading(20);
}

CKespCOMPort3DetectionTest::~CKespCOMPort3DetectionTest() = default;

void CKespCOMPort3DetectionTest::AnswersAt(const std::wstring& rate, const std::string& cmd,
                                           const std::string& reply) {
  ports_.line.on_output = [=, this](const std::string& written, const std::wstring& settings) {
    if (written == cmd + "\r" && settings == rate + L",N,8,1") ports_.line.Arrive(reply, 1);
  };
}

bool CKespCOMPort3DetectionTest::Detect(EDetectLevel level) {
  record_.clear();
  return port_.AutoDetect(buffer_, level);
}

Attempts CKespCOMPort3DetectionTest::Tried() const {
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

void CKespCOMPort3DetectionTest::ExpectLeftInOrder() {
  EXPECT_EQ(port_.TimeOut(), 777);
  EXPECT_FALSE(port_.CheckNonAscii());
  EXPECT_FALSE(ports_.line.open);
  EXPECT_EQ(environment_.user.pointer(), MousePointer::kDefault);
  EXPECT_TRUE(environment_.user.boxes().empty());
  EXPECT_EQ(std::count(record_.begin(), record_.end(), L"AutoDetectBegin(1)"), 1);
  EXPECT_EQ(std::count(record_.begin(), record_.end(), L"AutoDetectEnd()"), 1);
}

void CKespCOMPort3DetectionTest::ModemConfirms() {
  port_.SetUseRFModem(true);
  port_.SetInstrAddr(26);
  for (const char* command : {"+++", "ATDH0\r", "ATDL1A\r", "ATWR\r", "ATCN\r"}) {
    ports_.line.Answer(command, "OK\r");
  }
}

}  // namespace kesp
