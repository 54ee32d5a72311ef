// Ways from a client to instruments that answer "ECHO..." with the command itself.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/clients/comm_obj_client.h"

namespace kesp::threads {

// A communication object and the instrument that it talks to. Lives in the apartment in which it was made.
class Line {
 public:
  explicit Line(const std::wstring& name) : name_(name) {}
  virtual ~Line() = default;

  const std::wstring& name() const { return name_; }
  clients::OtherCommObj& client() { return client_; }

  // Whether the instrument answers with that very number.
  bool Answers(int number);

 private:
  std::wstring name_;
  clients::OtherCommObj client_;
};

std::unique_ptr<Line> NetworkLine(const std::wstring& host = {});
// On the simulated bus beside the program; devices 5 and 6 are there.
std::unique_ptr<Line> GpibLine(short device);
// On that COM port, which KESP_THREADS_PORTS must name.
std::unique_ptr<Line> SerialLine(short port);

// The COM ports with an instrument behind them: of KESP_THREADS_PORTS="60 61"; none without it.
std::vector<short> SerialPorts();

// All lines of the thread with that number, 0 or 1. No two threads share a device, but for the network's.
std::vector<std::unique_ptr<Line>> LinesOfThread(int number);

}  // namespace kesp::threads
