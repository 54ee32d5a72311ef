// The serial transport's detection: identification commands at one bit rate after the other.
#include <cstddef>

#include "serial/kesp_com_port.h"
#include "support/attempt.h"
#include "support/busy_pointer.h"
#include "support/detection_commands.h"
#include "support/error_numbers.h"

namespace kesp {

namespace {

// Long enough for a slow instrument's answer, short enough for 3 commands at each of 14 rates.
constexpr std::int32_t kDetectionTimeOutMs = 2000;

// The last command is that of old, slow instruments.
constexpr std::size_t kSlowCommand = 2;
constexpr EKespBaudRate3 kFirstFastRate = EKespBaudRate3::br4800;

EKespBaudRate3 NextLower(EKespBaudRate3 rate) {
  return static_cast<EKespBaudRate3>(static_cast<std::int32_t>(rate) - 1);
}

}  // namespace

bool CKespCOMPort3::AutoDetect(std::wstring& Buffer, EDetectLevel DetectLevel,
                               const std::wstring& OmegaAddress) {
  const BusyPointer busy(environment_.user);
  Raise(&CKespCOMPort3Events::AutoDetectBegin, port_);
  const std::int32_t time_out = time_out_;
  const bool check_non_ascii = check_non_ascii_;
  time_out_ = kDetectionTimeOutMs;
  // A wrong rate shows up at once as characters that are not allowed.
  check_non_ascii_ = true;
  bool found = false;
  try {
    found = Search({.level = DetectLevel, .omega_address = OmegaAddress}, Buffer);
  } catch (...) {
    // A port that fails is no place to find an instrument.
  }
  check_non_ascii_ = check_non_ascii;
  time_out_ = time_out;
  const Attempt end = Try([&] { return Raise(&CKespCOMPort3Events::AutoDetectEnd), true; });
  Try([&] { return ClosePort(), true; });
  if (end.error) throw Failure(*end.error);
  return found;
}

bool CKespCOMPort3::Search(const Detection& detection, std::wstring& answer) {
  const EKespBaudRate3 present_rate = baud_rate_;
  Found found = TryRate(detection, SearchPhase::kPresentRate, answer);
  // A radio link has one rate.
  if (!use_rf_modem_) {
    const EKespBaudRate3 lowest = min_baud_rate_;
    for (EKespBaudRate3 rate = max_baud_rate_; rate >= lowest && found == Found::kNothing;
         rate = NextLower(rate)) {
      if (rate == present_rate) continue;
      baud_rate_ = rate;
      found = TryRate(detection, SearchPhase::kSweep, answer);
      if (found == Found::kNothing) environment_.pump.PumpOnce();
    }
  }
  if (found == Found::kNothing) baud_rate_ = present_rate;
  return found == Found::kAnswer;
}

// Never kGarbage: that is nothing, as far as the rate is concerned.
CKespCOMPort3::Found CKespCOMPort3::TryRate(const Detection& detection, SearchPhase phase,
                                            std::wstring& answer) {
  Found found = Found::kNothing;
  const auto commands = DetectionCommands(detection.level);
  for (std::size_t i = 0; i < commands.size() && found == Found::kNothing; ++i) {
    if (i == kSlowCommand && baud_rate_ >= kFirstFastRate) continue;
    found = TryCommand(detection, phase, commands[i], answer);
  }
  // A port that does not close takes nothing away from an answer, and fails at the next opening otherwise.
  if (found != Found::kEnd) Try([&] { return ClosePort(), true; });
  return found == Found::kGarbage ? Found::kNothing : found;
}

CKespCOMPort3::Found CKespCOMPort3::TryCommand(const Detection& detection, SearchPhase phase,
                                               const std::wstring& cmd, std::wstring& answer) {
  bool abort = false;
  Raise(&CKespCOMPort3Events::AutoDetectUpdate, port_, baud_rate_, cmd, abort);
  if (abort) return Found::kEnd;
  OpenPort();
  if (phase == SearchPhase::kPresentRate && use_rf_modem_ && !RFWriteModemInstrAddress(instr_addr_)) {
    return Found::kEnd;
  }
  WriteLine(cmd, detection.omega_address);
  std::wstring reply;
  const Attempt read = Try([&] { return ReadLine(reply); });
  if (read.succeeded) {
    answer = reply;
    return Found::kAnswer;
  }
  if (read.number() == com_port_error::ERR_INVALID_CHARACTERS) return Found::kGarbage;
  ClosePort();
  environment_.pump.PumpOnce();
  return Found::kNothing;
}

}  // namespace kesp
