// What one of Query, QueryBinary and Update does differently from the other two.
#pragma once

#include <functional>
#include <string>

namespace kesp {

// How Update and the queries trace a connection that could not be opened.
enum class InitializeTrace { kErrorInfoOnly, kWithFailedLine };

struct Exchange {
  std::wstring member;          // "Query"; names the operation in sources and trace lines
  std::wstring trap_action;     // what the error box says was being done
  std::wstring beginning_line;  // traced first; empty for none
  std::wstring exiting_line;    // traced last; empty for none
  std::wstring cmd;
  InitializeTrace initialize_trace = InitializeTrace::kErrorInfoOnly;

  std::wstring read_operation;                    // "ReadLine()"; names the read in trace lines
  std::function<bool()> read_network;             // empty: the operation does not read
  std::function<std::wstring()> reply_for_trace;  // empty: the reply is not traced
};

}  // namespace kesp
