// The events of the serial transport, as a listener.
#pragma once

#include <cstdint>
#include <string>

#include "support/enumerations.h"

namespace kesp {

// Receives the events of one CKespCOMPort3, on its thread, from inside its calls. The names and arguments are
// those of the event interface __CKespCOMPort3; in/out arguments are references. ReadEnd of that interface is
// never raised, so it is missing here.
class CKespCOMPort3Events {
 public:
  virtual ~CKespCOMPort3Events() = default;

  virtual void DownloadBegin(std::int16_t Port) = 0;
  virtual void DownloadUpdate(std::int32_t CharsReceived, bool& Abort) = 0;
  virtual void DownloadTimeOut(std::int16_t Port) = 0;
  virtual void DownloadEnd() = 0;
  virtual void WriteBegin(const std::wstring& cmd, std::int16_t Port) = 0;
  virtual void WriteUpdate(std::int16_t OutBufferCount, std::int16_t Port) = 0;
  virtual void WriteEnd() = 0;
  virtual void ReadBegin(std::int16_t Port) = 0;
  virtual void ReadUpdate(std::int32_t CharsReceived, std::int16_t Port) = 0;
  virtual void ReadTimeOut(std::int16_t Port) = 0;
  virtual void ReadInvalidChars(const std::wstring& Buffer, std::int16_t pos, std::int16_t Port) = 0;
  virtual void AutoDetectBegin(std::int16_t Port) = 0;
  virtual void AutoDetectUpdate(std::int16_t Port, EKespBaudRate3 BaudRate, const std::wstring& cmd,
                                bool& Abort) = 0;
  virtual void AutoDetectEnd() = 0;
};

}  // namespace kesp
