// The events of the network transport, as a listener.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace kesp {

// Receives the events of one CKespTCP, on its thread, from inside its calls or from the message pump. The
// names and arguments are those of the event interface __CKespTCP; in/out arguments are references.
class CKespTCPEvents {
 public:
  virtual ~CKespTCPEvents() = default;

  virtual void ConnectBegin() = 0;
  virtual void ConnectEnd() = 0;
  virtual void SendProgressBegin(std::int32_t bytesSent, std::int32_t bytesRemaining) = 0;
  virtual void SendProgressEnd() = 0;
  virtual void SendCompleteBegin() = 0;
  virtual void SendCompleteEnd() = 0;
  virtual void DataArrivalBegin(std::int32_t bytesTotal) = 0;
  virtual void DataArrivalEnd() = 0;
  virtual void ErrorBegin(std::int16_t Number, std::wstring& Description, std::int32_t Scode,
                          const std::wstring& Source, const std::wstring& HelpFile, std::int32_t HelpContext,
                          bool& CancelDisplay) = 0;
  virtual void ErrorEnd() = 0;
  virtual void CloseBegin() = 0;
  virtual void CloseEnd() = 0;
  virtual void AutoDetectUpdate(const std::wstring& cmd, const std::wstring& IPAddress, std::int16_t Port,
                                bool& Abort) = 0;
  virtual void AutoDetectBegin() = 0;
  virtual void AutoDetectEnd() = 0;
  virtual void ReadInvalidChars(const std::wstring& Buffer, std::int16_t pos,
                                const std::wstring& IPAddress) = 0;

  // Something that keeps the object alive whose events these are, held while a notification is handled.
  // Throws when another thread is destroying it.
  virtual std::shared_ptr<void> KeepAlive() = 0;
};

}  // namespace kesp
