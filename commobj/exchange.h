// What one of Query, QueryBinary and Update does differently from the other two.
#pragma once

#include <functional>
#include <string>

namespace kesp {

// How Update and the queries trace a connection that could not be opened.
enum class InitializeTrace { kErrorInfoOnly, kWithFailedLine };

// How the serial port is opened.
enum class SerialOpening {
  kRetried,         // a port that is in use is tried three times; one that was left open is used as it is
  kOnce,            // opened anew in every case, and tried once
  kRetriedQuietly,  // as kRetried, but only retries and the error are traced
};

struct Exchange {
  std::wstring member;  // "Query"; names the operation in the trace line of a port that is open already
  std::wstring beginning_line;  // traced first; empty for none
  std::wstring exiting_line;    // traced last; empty for none
  std::wstring cmd;
  std::wstring OmegaAddress;  // serial only
  std::wstring OmegaValue;    // serial only
  SerialOpening serial_opening = SerialOpening::kRetried;
  InitializeTrace initialize_trace = InitializeTrace::kErrorInfoOnly;
  std::wstring ieee_write_operation = L"WriteLine";  // names the write in the IEEE-488 trace line

  std::wstring read_operation;                    // "ReadLine()"; names the read in trace lines
  std::function<bool()> read_serial;              // empty: the operation does not read
  std::function<bool()> read_network;             // likewise
  std::function<bool()> read_ieee;                // likewise
  std::function<std::wstring()> reply_for_trace;  // empty: the reply is not traced
  // What a read that timed out had got, for the trace; empty: not traced.
  std::function<std::wstring()> partial_reply_for_trace;
};

}  // namespace kesp
