// The serial transport's conversation with a radio modem: its command mode, its settings, and where it
// points.
#include <algorithm>
#include <string_view>
#include <utility>

#include "serial/hexadecimal.h"
#include "serial/kesp_com_port.h"
#include "support/attempt.h"
#include "support/busy_pointer.h"
#include "support/text_edit.h"
#include "support/timing.h"

namespace kesp {

namespace {

// The silence before "+++" by which the modem tells it from data.
constexpr std::int32_t kGuardMs = 1000;

// The modem counts its time-out in tenths of a second.
constexpr int kMsPerTimeOutUnit = 100;

// What confirms a command.
constexpr std::string_view kOk = "OK\r";

constexpr wchar_t kAddressKey[] = L"InstrAddr";
constexpr wchar_t kUnknownAddress[] = L"-1";

}  // namespace

bool CKespCOMPort3::RFReadModemSettings(RadioModemSettings& settings) {
  const BusyPointer busy(environment_.user);
  RadioModemSettings read;
  const bool succeeded = Try([&] { return OpenPort(); }).succeeded && WithModemStyle([&] {
                           return InCommandMode([&] {
                             read.serial = AskModem(L"ATSH");
                             read.serial += AskModem(L"ATSL");
                             read.power_level = AskModem(L"ATPL");
                             read.pan_id = std::to_wstring(FromHexadecimal(AskModem(L"ATID")));
                             read.channel = std::to_wstring(FromHexadecimal(AskModem(L"ATCH")));
                             read.modem_address = std::to_wstring(FromHexadecimal(AskModem(L"ATMY")));
                             read.timeout =
                                 std::to_wstring(FromHexadecimal(AskModem(L"ATCT")) * kMsPerTimeOutUnit);
                           });
                         });
  if (succeeded) settings = std::move(read);
  return succeeded;
}

bool CKespCOMPort3::RFWriteModemSettings(double dPANID, std::int16_t iChannel, double dModemAddress,
                                         double dTimeout, bool bWriteToNVRAM) {
  const BusyPointer busy(environment_.user);
  return WithModemStyle([&] {
    // Before the modem is spoken to: a number that cannot be sent is to change none of its settings.
    const std::wstring settings[] = {L"ATID" + ToHexadecimal(dPANID), L"ATCH" + ToHexadecimal(iChannel),
                                     L"ATMY" + ToHexadecimal(dModemAddress),
                                     L"ATCT" + ToHexadecimal(dTimeout / kMsPerTimeOutUnit)};
    InCommandMode([&] {
      for (const std::wstring& command : settings) TellModem(command);
      if (bWriteToNVRAM) TellModem(L"ATWR");
    });
    return true;
  });
}

bool CKespCOMPort3::RFWriteModemInstrAddress(std::int16_t iInstrAddr) {
  return WithModemStyle([&] {
    const std::wstring address = std::to_wstring(iInstrAddr);
    const std::int16_t port = port_;  // a handler may set another one
    if (ModemTarget(port) == address) return true;
    const bool told = InCommandMode([&] {
      TellModem(L"ATDH0");
      TellModem(L"ATDL" + ToHexadecimal(iInstrAddr));
      TellModem(L"ATWR");
    });
    if (told) RememberModemTarget(port, address);
    return told;
  });
}

// While it runs, commands go out as they are; the style comes back without its preset.
bool CKespCOMPort3::WithModemStyle(const std::function<bool()>& operation) {
  const EKespControllerStyle3 style = controller_style_;
  controller_style_ = EKespControllerStyle3::CS_MAXSTREAM;
  const Attempt attempt = Try(operation);
  controller_style_ = style;
  return attempt.succeeded;
}

bool CKespCOMPort3::InCommandMode(const std::function<void()>& conversation) {
  const Wait guard(environment_.clock, kGuardMs);
  while (!guard.IsOver()) {
  }
  // The plusses may have gone out before a failure.
  const Attempt plusses = Try([&] { return WriteLine(L"+++"); });
  const Attempt talk = Try([&] {
    if (!AwaitOk()) return false;
    if (!plusses.error) conversation();
    return true;
  });
  // A modem that has heard them would take the next commands for its own. One that does not confirm has not
  // understood; "ATCN" would go to the instrument.
  const bool may_listen = talk.succeeded || talk.error;
  const Attempt leaving = Try([&] { return may_listen && (TellModem(L"ATCN"), true); });
  for (const Attempt* attempt : {&plusses, &talk, &leaving}) {
    if (attempt->error) throw Failure(*attempt->error);
  }
  return talk.succeeded;
}

// What the modem does not confirm is only logged: the next commands go out all the same.
void CKespCOMPort3::TellModem(const std::wstring& command) {
  WriteLine(command + L'\r');
  AwaitOk();
}

std::wstring CKespCOMPort3::AskModem(const std::wstring& command) {
  WriteLine(command + L'\r');
  std::wstring answer;
  ReadLine(answer);
  return StripLineEnds(answer);
}

bool CKespCOMPort3::AwaitOk() {
  Log(L"Waiting for 'OK'");
  const std::int32_t start = environment_.clock.TickCount();
  std::string reply;
  do {
    const std::string chunk = TakeInput(reply.size());
    if (chunk.empty()) continue;
    const std::size_t searched = reply.size() - std::min(reply.size(), kOk.size() - 1);
    reply += chunk;
    if (reply.find(kOk, searched) == std::string::npos) continue;
    Log(L"Received 'OK'");
    return true;
  } while (!IsPast(environment_.clock, start, time_out_));
  Log(L"Timed out waiting for 'OK'");
  return false;
}

std::wstring CKespCOMPort3::ModemTarget(std::int16_t port) {
  if (modem_file_.empty()) return kUnknownAddress;
  return environment_.settings.Read(modem_file_, L"COM" + std::to_wstring(port), kAddressKey,
                                    kUnknownAddress);
}

void CKespCOMPort3::RememberModemTarget(std::int16_t port, const std::wstring& address) {
  if (modem_file_.empty()) return;
  environment_.settings.Write(modem_file_, L"COM" + std::to_wstring(port), kAddressKey, address);
}

}  // namespace kesp
