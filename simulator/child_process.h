// A program started by a test, with its standard output and standard error in files of the test.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

namespace kesp::simulator {

// Starts the program when made. A program that still runs when this goes away is killed.
class ChildProcess {
 public:
  // command: the program's path and its arguments. environment: added to that of the test, "NAME=value".
  explicit ChildProcess(const std::vector<std::string>& command,
                        const std::vector<std::string>& environment = {});
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  pid_t id() const { return id_; }
  void Signal(int signal) const;

  // What it wrote so far.
  std::string Output() const;
  std::string Error() const;

  // The first line of standard output, without its line feed, as soon as it is whole; empty when it does not
  // come in time or the program ends before.
  std::string FirstLine();

  // Standard output as soon as it has so many whole lines; what there is when they do not come in time or the
  // program ends before.
  std::string OutputWithLines(std::ptrdiff_t count);

  // The exit code; 128 and the signal's number for a program ended by a signal; -1 when it does not end in
  // time.
  int Wait();

 private:
  bool Ended();

  std::string output_file_;
  std::string error_file_;
  pid_t id_ = -1;
  int code_ = -1;
  bool ended_ = false;
};

// Waits until there is no process with this id; false when there still is one at the deadline.
bool IsGone(pid_t id);

}  // namespace kesp::simulator
