// Every event of the transports, with its arguments; an event's dispatch identifier is its position, from 1.
#pragma once

#include <vector>

#include "KespCommObj.h"
#include "tests/clients/automation.h"

namespace kesp::clients {

enum class ArgumentKind { kInteger16, kInteger32, kText, kTextInOut, kBooleanInOut, kBaudRate };

struct EventArgument {
  const wchar_t* name;
  ArgumentKind kind;
};

struct PublicEvent {
  const wchar_t* name;
  std::vector<EventArgument> arguments;
};

struct PublicEvents {
  const IID& iid;
  std::vector<PublicEvent> events;
};

inline const std::vector<PublicEvents>& AllPublicEvents() {
  using enum ArgumentKind;
  static const std::vector<PublicEvents> all = {
      {__uuidof(__CKespCOMPort3),
       {{L"DownloadBegin", {{L"Port", kInteger16}}},
        {L"DownloadUpdate", {{L"CharsReceived", kInteger32}, {L"Abort", kBooleanInOut}}},
        {L"DownloadTimeOut", {{L"Port", kInteger16}}},
        {L"DownloadEnd", {}},
        {L"WriteBegin", {{L"cmd", kText}, {L"Port", kInteger16}}},
        {L"WriteUpdate", {{L"OutBufferCount", kInteger16}, {L"Port", kInteger16}}},
        {L"WriteEnd", {}},
        {L"ReadBegin", {{L"Port", kInteger16}}},
        {L"ReadUpdate", {{L"CharsReceived", kInteger32}, {L"Port", kInteger16}}},
        {L"ReadTimeOut", {{L"Port", kInteger16}}},
        {L"ReadInvalidChars", {{L"Buffer", kText}, {L"pos", kInteger16}, {L"Port", kInteger16}}},
        {L"ReadEnd", {}},
        {L"AutoDetectBegin", {{L"Port", kInteger16}}},
        {L"AutoDetectUpdate",
         {{L"Port", kInteger16}, {L"BaudRate", kBaudRate}, {L"cmd", kText}, {L"Abort", kBooleanInOut}}},
        {L"AutoDetectEnd", {}}}},
      {__uuidof(__CKespTCP),
       {{L"ConnectBegin", {}},
        {L"ConnectEnd", {}},
        {L"SendProgressBegin", {{L"bytesSent", kInteger32}, {L"bytesRemaining", kInteger32}}},
        {L"SendProgressEnd", {}},
        {L"SendCompleteBegin", {}},
        {L"SendCompleteEnd", {}},
        {L"DataArrivalBegin", {{L"bytesTotal", kInteger32}}},
        {L"DataArrivalEnd", {}},
        {L"ErrorBegin",
         {{L"Number", kInteger16},
          {L"Description", kTextInOut},
          {L"Scode", kInteger32},
          {L"Source", kText},
          {L"HelpFile", kText},
          {L"HelpContext", kInteger32},
          {L"CancelDisplay", kBooleanInOut}}},
        {L"ErrorEnd", {}},
        {L"CloseBegin", {}},
        {L"CloseEnd", {}},
        {L"AutoDetectUpdate",
         {{L"cmd", kText}, {L"IPAddress", kText}, {L"Port", kInteger16}, {L"Abort", kBooleanInOut}}},
        {L"AutoDetectBegin", {}},
        {L"AutoDetectEnd", {}},
        {L"ReadInvalidChars", {{L"Buffer", kText}, {L"pos", kInteger16}, {L"IPAddress", kText}}}}},
      {__uuidof(__CKespIEEE),
       {{L"ReadBegin", {{L"Address", kText}}},
        {L"ReadEnd", {}},
        {L"ReadTimeOut", {{L"Address", kText}}},
        {L"ReadUpdate", {{L"CharsReceived", kInteger32}, {L"Address", kText}}},
        {L"WriteBegin", {{L"cmd", kText}, {L"Address", kText}}},
        {L"WriteEnd", {}},
        {L"WriteUpdate", {{L"Address", kText}}},
        {L"AutoDetectUpdate", {{L"cmd", kText}, {L"Address", kInteger16}, {L"Abort", kBooleanInOut}}},
        {L"AutoDetectBegin", {}},
        {L"AutoDetectEnd", {}}}},
  };
  return all;
}

}  // namespace kesp::clients
