// A listener of the network transport's events that writes down what it hears, and can answer back.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "network/tcp_events.h"
#include "support/event_record_fake.h"

namespace kesp {

class CKespTCPEventsFake final : public CKespTCPEvents, public EventRecordFake {
 public:
  CKespTCPEventsFake();
  ~CKespTCPEventsFake() override;

  // When set, ErrorBegin puts it into Description and sets CancelDisplay.
  std::wstring new_description;
  // AutoDetectUpdate sets Abort at this command.
  std::optional<std::wstring> abort_at;
  std::shared_ptr<void> keep_alive;

  void ConnectBegin() override { Heard(L"ConnectBegin"); }
  void ConnectEnd() override { Heard(L"ConnectEnd"); }
  void SendProgressBegin(std::int32_t bytesSent, std::int32_t bytesRemaining) override;
  void SendProgressEnd() override { Heard(L"SendProgressEnd"); }
  void SendCompleteBegin() override { Heard(L"SendCompleteBegin"); }
  void SendCompleteEnd() override { Heard(L"SendCompleteEnd"); }
  void DataArrivalBegin(std::int32_t bytesTotal) override;
  void DataArrivalEnd() override { Heard(L"DataArrivalEnd"); }
  void ErrorBegin(std::int16_t Number, std::wstring& Description, std::int32_t Scode,
                  const std::wstring& Source, const std::wstring& HelpFile, std::int32_t HelpContext,
                  bool& CancelDisplay) override;
  void ErrorEnd() override { Heard(L"ErrorEnd"); }
  void CloseBegin() override { Heard(L"CloseBegin"); }
  void CloseEnd() override { Heard(L"CloseEnd"); }
  void AutoDetectUpdate(const std::wstring& cmd, const std::wstring& IPAddress, std::int16_t Port,
                        bool& Abort) override;
  void AutoDetectBegin() override { Heard(L"AutoDetectBegin"); }
  void AutoDetectEnd() override { Heard(L"AutoDetectEnd"); }
  void ReadInvalidChars(const std::wstring& Buffer, std::int16_t pos, const std::wstring& IPAddress) override;
  std::shared_ptr<void> KeepAlive() override { return keep_alive; }
};

}  // namespace kesp
