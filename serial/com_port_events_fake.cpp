// The listener that writes down the serial transport's events, each as a line of text.
#include "serial/com_port_events_fake.h"

namespace kesp {

CKespCOMPort3EventsFake::CKespCOMPort3EventsFake() = default;

CKespCOMPort3EventsFake::~CKespCOMPort3EventsFake() = default;

void CKespCOMPort3EventsFake::DownloadBegin(std::int16_t Port) {
  Heard(L"DownloadBegin", {std::to_wstring(Port)});
}

void CKespCOMPort3EventsFake::DownloadUpdate(std::int32_t CharsReceived, bool& Abort) {
  Heard(L"DownloadUpdate", {std::to_wstring(CharsReceived), Text(Abort)});
  Answer(Abort);
}

void CKespCOMPort3EventsFake::DownloadTimeOut(std::int16_t Port) {
  Heard(L"DownloadTimeOut", {std::to_wstring(Port)});
}

void CKespCOMPort3EventsFake::DownloadEnd() {
  Heard(L"DownloadEnd");
}

void CKespCOMPort3EventsFake::WriteBegin(const std::wstring& cmd, std::int16_t Port) {
  Heard(L"WriteBegin", {cmd, std::to_wstring(Port)});
}

void CKespCOMPort3EventsFake::WriteUpdate(std::int16_t OutBufferCount, std::int16_t Port) {
  Heard(L"WriteUpdate", {std::to_wstring(OutBufferCount), std::to_wstring(Port)});
}

void CKespCOMPort3EventsFake::WriteEnd() {
  Heard(L"WriteEnd");
}

void CKespCOMPort3EventsFake::ReadBegin(std::int16_t Port) {
  Heard(L"ReadBegin", {std::to_wstring(Port)});
}

void CKespCOMPort3EventsFake::ReadUpdate(std::int32_t CharsReceived, std::int16_t Port) {
  Heard(L"ReadUpdate", {std::to_wstring(CharsReceived), std::to_wstring(Port)});
}

void CKespCOMPort3EventsFake::ReadTimeOut(std::int16_t Port) {
  Heard(L"ReadTimeOut", {std::to_wstring(Port)});
}

void CKespCOMPort3EventsFake::ReadInvalidChars(const std::wstring& Buffer, std::int16_t pos,
                                               std::int16_t Port) {
  Heard(L"ReadInvalidChars", {Buffer, std::to_wstring(pos), std::to_wstring(Port)});
}

void CKespCOMPort3EventsFake::AutoDetectBegin(std::int16_t Port) {
  Heard(L"AutoDetectBegin", {std::to_wstring(Port)});
}

void CKespCOMPort3EventsFake::AutoDetectUpdate(std::int16_t Port, EKespBaudRate3 BaudRate,
                                               const std::wstring& cmd, bool& Abort) {
  Heard(L"AutoDetectUpdate",
        {std::to_wstring(Port), std::to_wstring(static_cast<std::int32_t>(BaudRate)), cmd, Text(Abort)});
  Answer(Abort);
}

void CKespCOMPort3EventsFake::AutoDetectEnd() {
  Heard(L"AutoDetectEnd");
}

void CKespCOMPort3EventsFake::Answer(bool& Abort) {
  if (++updates_ == abort_at_update) Abort = true;
}

}  // namespace kesp
