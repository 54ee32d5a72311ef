// A program started by a test, with its standard output and standard error in files of the test.
#include "simulator/child_process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <system_error>
#include <thread>

namespace kesp::simulator {
namespace {

constexpr std::chrono::seconds kDeadline(30);

bool Eventually(const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + kDeadline;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}

std::string ContentsOf(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

std::string NewFileName() {
  static int count = 0;
  return testing::TempDir() + "kesp_child_" + std::to_string(::getpid()) + "_" + std::to_string(++count);
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command,
                           const std::vector<std::string>& environment)
    : output_file_(NewFileName()), error_file_(NewFileName()) {
  std::vector<std::string> arguments = command;
  std::vector<std::string> variables = environment;
  for (char** variable = environ; *variable != nullptr; ++variable) variables.emplace_back(*variable);

  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&files, 1, output_file_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_addopen(&files, 2, error_file_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  // A test run in the background of a shell ignores the keyboard's signals, and so would the program.
  sigset_t defaults;
  sigemptyset(&defaults);
  for (const int signal : {SIGINT, SIGHUP, SIGTERM, SIGPIPE}) sigaddset(&defaults, signal);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setsigdefault(&attributes, &defaults);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);

  const int error = posix_spawn(&id_, command.front().c_str(), &files, &attributes,
                                Pointers(arguments).data(), Pointers(variables).data());
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&files);
  if (error != 0) throw std::system_error(error, std::generic_category(), command.front());
}

ChildProcess::~ChildProcess() {
  if (!Ended()) {
    ::kill(id_, SIGKILL);
    ::waitpid(id_, nullptr, 0);
  }
  std::remove(output_file_.c_str());
  std::remove(error_file_.c_str());
}

void ChildProcess::Signal(int signal) const {
  if (!ended_) ::kill(id_, signal);
}

std::string ChildProcess::Output() const {
  return ContentsOf(output_file_);
}
std::string ChildProcess::Error() const {
  return ContentsOf(error_file_);
}

std::string ChildProcess::FirstLine() {
  const std::string output = OutputWithLines(1);
  const std::size_t end = output.find('\n');
  return end == std::string::npos ? std::string() : output.substr(0, end);
}

std::string ChildProcess::OutputWithLines(std::ptrdiff_t count) {
  std::string output;
  Eventually([&] {
    const bool ended = Ended();  // asked first: what it wrote before it ended must count
    output = Output();
    return ended || std::count(output.begin(), output.end(), '\n') >= count;
  });
  return output;
}

int ChildProcess::Wait() {
  Eventually([&] { return Ended(); });
  return code_;
}

bool ChildProcess::Ended() {
  int status = 0;
  if (ended_ || ::waitpid(id_, &status, WNOHANG) != id_) return ended_;
  ended_ = true;
  code_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return true;
}

bool IsGone(pid_t id) {
  return Eventually([id] { return ::kill(id, 0) != 0 && errno == ESRCH; });
}

}  // namespace kesp::simulator
