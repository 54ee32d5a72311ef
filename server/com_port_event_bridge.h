// The serial transport's events on their way to the client's handlers.
#pragma once

#include "serial/com_port_events.h"
#include "server/connection_points.h"

namespace kesp {

// Raises each event of a CKespCOMPort3 on the connection point of the COM object that owns it.
class ComPortEventBridge final : public CKespCOMPort3Events {
 public:
  explicit ComPortEventBridge(EventSource& source) : source_(source) {}

  void DownloadBegin(std::int16_t Port) override;
  void DownloadUpdate(std::int32_t CharsReceived, bool& Abort) override;
  void DownloadTimeOut(std::int16_t Port) override;
  void DownloadEnd() override;
  void WriteBegin(const std::wstring& cmd, std::int16_t Port) override;
  void WriteUpdate(std::int16_t OutBufferCount, std::int16_t Port) override;
  void WriteEnd() override;
  void ReadBegin(std::int16_t Port) override;
  void ReadUpdate(std::int32_t CharsReceived, std::int16_t Port) override;
  void ReadTimeOut(std::int16_t Port) override;
  void ReadInvalidChars(const std::wstring& Buffer, std::int16_t pos, std::int16_t Port) override;
  void AutoDetectBegin(std::int16_t Port) override;
  void AutoDetectUpdate(std::int16_t Port, EKespBaudRate3 BaudRate, const std::wstring& cmd,
                        bool& Abort) override;
  void AutoDetectEnd() override;

 private:
  // One event without in/out arguments.
  template <typename... Arguments>
  void Raise(DISPID event, const Arguments&... arguments);

  EventSource& source_;
};

}  // namespace kesp
