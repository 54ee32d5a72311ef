// The network transport's events on their way to the client's handlers.
#pragma once

#include "network/tcp_events.h"
#include "server/com_headers.h"
#include "server/connection_points.h"

namespace kesp {

// Raises each event of a CKespTCP on the connection point of the COM object that owns it.
class TcpEventBridge final : public CKespTCPEvents {
 public:
  TcpEventBridge(IUnknown* owner, EventSource& source) : owner_(owner), source_(source) {}

  void ConnectBegin() override;
  void ConnectEnd() override;
  void SendProgressBegin(std::int32_t bytesSent, std::int32_t bytesRemaining) override;
  void SendProgressEnd() override;
  void SendCompleteBegin() override;
  void SendCompleteEnd() override;
  void DataArrivalBegin(std::int32_t bytesTotal) override;
  void DataArrivalEnd() override;
  void ErrorBegin(std::int16_t Number, std::wstring& Description, std::int32_t Scode,
                  const std::wstring& Source, const std::wstring& HelpFile, std::int32_t HelpContext,
                  bool& CancelDisplay) override;
  void ErrorEnd() override;
  void CloseBegin() override;
  void CloseEnd() override;
  void AutoDetectUpdate(const std::wstring& cmd, const std::wstring& IPAddress, std::int16_t Port,
                        bool& Abort) override;
  void AutoDetectBegin() override;
  void AutoDetectEnd() override;
  void ReadInvalidChars(const std::wstring& Buffer, std::int16_t pos, const std::wstring& IPAddress) override;

  // A reference to the COM object.
  std::shared_ptr<void> KeepAlive() override;

 private:
  IUnknown* owner_;
  EventSource& source_;
};

}  // namespace kesp
