// A listener of the serial transport's events that writes down what it hears, and can answer back.
#pragma once

#include <cstdint>
#include <string>

#include "serial/com_port_events.h"
#include "support/event_record_fake.h"

namespace kesp {

class CKespCOMPort3EventsFake final : public CKespCOMPort3Events, public EventRecordFake {
 public:
  CKespCOMPort3EventsFake();
  ~CKespCOMPort3EventsFake() override;

  // The update (1 is the first of any kind) at which Abort is set; 0 for never.
  int abort_at_update = 0;

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
  void Answer(bool& Abort);

  int updates_ = 0;
};

}  // namespace kesp
