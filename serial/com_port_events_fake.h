// A listener of the serial transport's events that writes down what it hears, and can answer back.
#pragma once

#include <functional>
#include <map>
#include <string>

#include "serial/com_port_events.h"

namespace kesp {

class CKespCOMPort3EventsFake final : public CKespCOMPort3Events {
 public:
  // Told each event as its name and arguments, for example "WriteUpdate(5,1)".
  std::function<void(std::wstring)> record = [](const std::wstring&) {};
  // Handlers by the event's name, run after it was recorded.
  std::map<std::wstring, std::function<void()>> handlers;
  // The update (1 is the first of any kind) at which Abort is set; 0 for never.
  int abort_at_update = 0;

  void DownloadBegin(std::int16_t Port) override { Heard(L"DownloadBegin", Port); }
  void DownloadUpdate(std::int32_t CharsReceived, bool& Abort) override {
    Heard(L"DownloadUpdate", CharsReceived, Abort ? L"True" : L"False");
    Answer(Abort);
  }
  void DownloadTimeOut(std::int16_t Port) override { Heard(L"DownloadTimeOut", Port); }
  void DownloadEnd() override { Heard(L"DownloadEnd"); }
  void WriteBegin(const std::wstring& cmd, std::int16_t Port) override { Heard(L"WriteBegin", cmd, Port); }
  void WriteUpdate(std::int16_t OutBufferCount, std::int16_t Port) override {
    Heard(L"WriteUpdate", OutBufferCount, Port);
  }
  void WriteEnd() override { Heard(L"WriteEnd"); }
  void ReadBegin(std::int16_t Port) override { Heard(L"ReadBegin", Port); }
  void ReadUpdate(std::int32_t CharsReceived, std::int16_t Port) override {
    Heard(L"ReadUpdate", CharsReceived, Port);
  }
  void ReadTimeOut(std::int16_t Port) override { Heard(L"ReadTimeOut", Port); }
  void ReadInvalidChars(const std::wstring& Buffer, std::int16_t pos, std::int16_t Port) override {
    Heard(L"ReadInvalidChars", Buffer, pos, Port);
  }
  void AutoDetectBegin(std::int16_t Port) override { Heard(L"AutoDetectBegin", Port); }
  void AutoDetectUpdate(std::int16_t Port, EKespBaudRate3 BaudRate, const std::wstring& cmd,
                        bool& Abort) override {
    Heard(L"AutoDetectUpdate", Port, static_cast<std::int32_t>(BaudRate), cmd, Abort ? L"True" : L"False");
    Answer(Abort);
  }
  void AutoDetectEnd() override { Heard(L"AutoDetectEnd"); }

 private:
  static std::wstring Text(const std::wstring& text) { return text; }
  static std::wstring Text(const wchar_t* text) { return text; }
  static std::wstring Text(std::int32_t number) { return std::to_wstring(number); }

  template <typename... Arguments>
  void Heard(const std::wstring& name, const Arguments&... arguments) {
    std::wstring list;
    ((list += L"," + Text(arguments)), ...);
    record(name + L"(" + (list.empty() ? list : list.substr(1)) + L")");
    const auto found = handlers.find(name);
    if (found == handlers.end()) return;
    const std::function<void()> handler = found->second;  // it may take itself out of the map
    handler();
  }

  void Answer(bool& Abort) {
    if (++updates_ == abort_at_update) Abort = true;
  }

  int updates_ = 0;
};

}  // namespace kesp
