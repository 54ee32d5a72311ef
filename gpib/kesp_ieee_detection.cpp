// The IEEE-488 transport's detection: identification commands at one primary address after the other.
#include <exception>

#include "gpib/kesp_ieee.h"
#include "support/attempt.h"
#include "support/detection_commands.h"

namespace kesp {

bool CKespIEEE::AutoDetect(std::wstring& result, EDetectLevel DetectLevel, ESearchOption SearchOption) {
  result.clear();
  const ETimeOutSecs time_out = time_out_secs_;
  const std::int16_t present_address = address_.primary;
  time_out_secs_ = ETimeOutSecs::to1s;
  bool found = false;
  std::exception_ptr failure;
  try {
    Raise(&CKespIEEEEvents::AutoDetectBegin);
    found = Search(DetectionCommands(DetectLevel), SearchOption, result);
  } catch (...) {
    failure = std::current_exception();
  }
  if (!found) address_.primary = present_address;
  // A device that does not close takes nothing away from an answer.
  Try([&] { return Uninitialize(); });
  time_out_secs_ = time_out;
  Raise(&CKespIEEEEvents::AutoDetectEnd);
  if (failure) std::rethrow_exception(failure);
  return found;
}

bool CKespIEEE::Search(std::span<const wchar_t* const> commands, ESearchOption option, std::wstring& result) {
  // Without a command there is nothing to ask.
  if (commands.empty() || IsAborted(commands.front(), address_.primary)) return false;
  const int first_address = option == ESearchOption::soFindNext ? address_.primary + 1 : 1;
  for (int address = first_address; address <= kHighestDeviceAddress; ++address) {
    switch (TryAddress(commands, static_cast<std::int16_t>(address), result)) {
      case Found::kAnswer:
        return true;
      case Found::kAbort:
        return false;
      case Found::kNothing:
        break;
    }
  }
  return false;
}

CKespIEEE::Found CKespIEEE::TryAddress(std::span<const wchar_t* const> commands, std::int16_t address,
                                       std::wstring& result) {
  address_.primary = address;
  Initialize();
  for (const wchar_t* command : commands) {
    if (IsAborted(command, address)) return Found::kAbort;
    if (IsAnswered(command, result)) {
      // A handler may have set another one.
      address_.primary = address;
      return Found::kAnswer;
    }
  }
  Try([&] { return Uninitialize(); });
  return Found::kNothing;
}

bool CKespIEEE::IsAborted(const std::wstring& cmd, std::int16_t address) {
  bool abort = false;
  Raise(&CKespIEEEEvents::AutoDetectUpdate, cmd, address, abort);
  return abort;
}

bool CKespIEEE::IsAnswered(const std::wstring& cmd, std::wstring& result) {
  std::wstring reply;
  // Whatever fails here, be it a time-out or worse, the next command or address may do better.
  const Attempt exchange = Try([&] { return WriteLine(cmd) && ReadLine(reply); });
  if (exchange.succeeded) result = reply;
  return exchange.succeeded;
}

}  // namespace kesp
