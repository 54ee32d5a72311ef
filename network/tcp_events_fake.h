// A listener of the network transport's events that writes down what it hears, and can answer back.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>

#include "network/tcp_events.h"

namespace kesp {

class CKespTCPEventsFake final : public CKespTCPEvents {
 public:
  // Told each event as its name and arguments, for example "SendProgressBegin(3,0)".
  std::function<void(std::wstring)> record = [](const std::wstring&) {};
  // Handlers by the event's name, run after it was recorded.
  std::map<std::wstring, std::function<void()>> handlers;
  // When set, ErrorBegin puts it into Description and sets CancelDisplay.
  std::wstring new_description;
  // AutoDetectUpdate sets Abort at this command.
  std::optional<std::wstring> abort_at;
  std::shared_ptr<void> keep_alive;

  void ConnectBegin() override { Heard(L"ConnectBegin"); }
  void ConnectEnd() override { Heard(L"ConnectEnd"); }
  void SendProgressBegin(std::int32_t bytesSent, std::int32_t bytesRemaining) override {
    Heard(L"SendProgressBegin", std::to_wstring(bytesSent) + L"," + std::to_wstring(bytesRemaining));
  }
  void SendProgressEnd() override { Heard(L"SendProgressEnd"); }
  void SendCompleteBegin() override { Heard(L"SendCompleteBegin"); }
  void SendCompleteEnd() override { Heard(L"SendCompleteEnd"); }
  void DataArrivalBegin(std::int32_t bytesTotal) override {
    Heard(L"DataArrivalBegin", std::to_wstring(bytesTotal));
  }
  void DataArrivalEnd() override { Heard(L"DataArrivalEnd"); }
  void ErrorBegin(std::int16_t Number, std::wstring& Description, std::int32_t Scode,
                  const std::wstring& Source, const std::wstring& HelpFile, std::int32_t HelpContext,
                  bool& CancelDisplay) override {
    Heard(L"ErrorBegin", std::to_wstring(Number) + L"," + Description + L"," + std::to_wstring(Scode) + L"," +
                             Source + L"," + HelpFile + L"," + std::to_wstring(HelpContext) + L"," +
                             (CancelDisplay ? L"True" : L"False"));
    if (new_description.empty()) return;
    Description = new_description;
    CancelDisplay = true;
  }
  void ErrorEnd() override { Heard(L"ErrorEnd"); }
  void CloseBegin() override { Heard(L"CloseBegin"); }
  void CloseEnd() override { Heard(L"CloseEnd"); }
  void AutoDetectUpdate(const std::wstring& cmd, const std::wstring& IPAddress, std::int16_t Port,
                        bool& Abort) override {
    Heard(L"AutoDetectUpdate",
          cmd + L"," + IPAddress + L"," + std::to_wstring(Port) + L"," + (Abort ? L"True" : L"False"));
    if (cmd == abort_at) Abort = true;
  }
  void AutoDetectBegin() override { Heard(L"AutoDetectBegin"); }
  void AutoDetectEnd() override { Heard(L"AutoDetectEnd"); }
  void ReadInvalidChars(const std::wstring& Buffer, std::int16_t pos,
                        const std::wstring& IPAddress) override {
    Heard(L"ReadInvalidChars", Buffer + L"," + std::to_wstring(pos) + L"," + IPAddress);
  }
  std::shared_ptr<void> KeepAlive() override { return keep_alive; }

 private:
  void Heard(const std::wstring& name, const std::wstring& arguments = {}) {
    record(name + L"(" + arguments + L")");
    const auto found = handlers.find(name);
    if (found == handlers.end()) return;
    const std::function<void()> handler = found->second;  // it may take itself out of the map
    handler();
  }
};

}  // namespace kesp
