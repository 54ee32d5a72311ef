// The listener that writes down the network transport's events: those with arguments.
#include "network/tcp_events_fake.h"

namespace kesp {

CKespTCPEventsFake::CKespTCPEventsFake() = default;

CKespTCPEventsFake::~CKespTCPEventsFake() = default;

void CKespTCPEventsFake::SendProgressBegin(std::int32_t bytesSent, std::int32_t bytesRemaining) {
  Heard(L"SendProgressBegin", {std::to_wstring(bytesSent), std::to_wstring(bytesRemaining)});
}

void CKespTCPEventsFake::DataArrivalBegin(std::int32_t bytesTotal) {
  Heard(L"DataArrivalBegin", {std::to_wstring(bytesTotal)});
}

void CKespTCPEventsFake::ErrorBegin(std::int16_t Number, std::wstring& Description, std::int32_t Scode,
                                    const std::wstring& Source, const std::wstring& HelpFile,
                                    std::int32_t HelpContext, bool& CancelDisplay) {
  Heard(L"ErrorBegin", {std::to_wstring(Number), Description, std::to_wstring(Scode), Source, HelpFile,
                        std::to_wstring(HelpContext), Text(CancelDisplay)});
  if (new_description.empty()) return;
  Description = new_description;
  CancelDisplay = true;
}

void CKespTCPEventsFake::AutoDetectUpdate(const std::wstring& cmd, const std::wstring& IPAddress,
                                          std::int16_t Port, bool& Abort) {
  Heard(L"AutoDetectUpdate", {cmd, IPAddress, std::to_wstring(Port), Text(Abort)});
  if (cmd == abort_at) Abort = true;
}

void CKespTCPEventsFake::ReadInvalidChars(const std::wstring& Buffer, std::int16_t pos,
                                          const std::wstring& IPAddress) {
  Heard(L"ReadInvalidChars", {Buffer, std::to_wstring(pos), IPAddress});
}

}  // namespace kesp
