// One exchange with an instrument, as a trace tells it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace kesp::console {

struct Exchange {
  // kCall: of a transport, without the communication object; the searches consist of these. kOpening: a
  // connection or device that could not be opened, without a command. kDiscovery: a broadcast and what
  // answered it.
  enum class Kind { kQuery, kBinaryQuery, kUpdate, kCall, kOpening, kDiscovery };

  Kind kind = Kind::kCall;
  std::string when;          // its first line's date and time, in the system's regional form
  std::int32_t counter = 0;  // of its first line
  std::uint32_t duration_ms = 0;
  std::string place;     // "tcp:127.0.0.1:10001", "com3", "gpib"; empty where the trace does not tell
  std::string settings;  // of the COM port: "9600,N,8,1"
  std::string omega_address;

  // Texts are bytes in the code page of the trace.
  std::optional<std::string> command;  // a call over the network does not tell it
  std::size_t sent_bytes = 0;          // of such a call
  std::optional<std::string> frame;    // what went to the COM port
  bool was_sent = false;
  bool was_read = false;  // a call at a COM port: a reply was waited for

  std::optional<std::string> reply;  // what the client got
  std::optional<std::string>
      received;           // the bytes that came, with their line end, where the trace tells them
  bool is_whole = false;  // whether `received` is a complete reply, and all of it is known
  // From the command to the reply; nothing where the client's own waiting is part of it.
  std::optional<std::uint32_t> delay_ms;
  bool was_closed = false;  // by the instrument, after the command

  bool is_unfinished = false;  // a query of which the trace does not tell what came of it
  bool has_failed = false;
  std::string source;       // of the failure
  std::string description;  // of the failure
  bool is_modem = false;    // the radio modem itself was spoken to
};

}  // namespace kesp::console
