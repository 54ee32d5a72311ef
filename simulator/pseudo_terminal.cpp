// A serial line made of a pseudo-terminal, to be found under a name.
#include "simulator/pseudo_terminal.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

namespace kesp::simulator {
namespace {

[[noreturn]] void Fail(int error, const std::string& what) {
  throw std::system_error(error, std::generic_category(), what);
}

void Close(int& descriptor) {
  if (descriptor >= 0) ::close(descriptor);
  descriptor = -1;
}

// Whether nothing is there, or a link that an earlier run left: to nowhere, or to a terminal that somebody
// else has by now.
bool MayBeReplaced(const std::filesystem::path& path) {
  std::error_code error;
  const auto status = std::filesystem::symlink_status(path, error);
  if (!std::filesystem::exists(status)) return true;
  if (!std::filesystem::is_symlink(status)) return false;
  const bool to_a_terminal = std::filesystem::read_symlink(path, error).string().rfind("/dev/pts/", 0) == 0;
  return to_a_terminal || !std::filesystem::exists(path, error);
}

}  // namespace

PseudoTerminal::PseudoTerminal(std::string link) : link_(std::move(link)) {
  try {
    OpenEnds();
    MakeLink();
  } catch (...) {
    Close(slave_);
    Close(master_);
    throw;
  }
}

PseudoTerminal::~PseudoTerminal() {
  Pull();
}

void PseudoTerminal::OpenEnds() {
  master_ = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (master_ < 0 || ::grantpt(master_) != 0 || ::unlockpt(master_) != 0) Fail(errno, "pseudo-terminal");
  std::array<char, 128> name{};
  const int error = ::ptsname_r(master_, name.data(), name.size());
  if (error != 0) Fail(error, "pseudo-terminal");
  device_ = name.data();
  // Held open, because the master reports a fault while no one has the other end.
  slave_ = ::open(device_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (slave_ < 0) Fail(errno, device_);
  termios settings{};
  if (::tcgetattr(slave_, &settings) != 0) Fail(errno, device_);
  ::cfmakeraw(&settings);
  if (::tcsetattr(slave_, TCSANOW, &settings) != 0) Fail(errno, device_);
}

void PseudoTerminal::MakeLink() const {
  if (!MayBeReplaced(link_)) Fail(EEXIST, link_);
  // A link cannot be overwritten, but it can be renamed over another one.
  const std::string fresh = link_ + ".new" + std::to_string(::getpid());
  ::unlink(fresh.c_str());
  if (::symlink(device_.c_str(), fresh.c_str()) != 0) Fail(errno, link_);
  if (::rename(fresh.c_str(), link_.c_str()) == 0) return;
  const int error = errno;
  ::unlink(fresh.c_str());
  Fail(error, link_);
}

int PseudoTerminal::TakeMaster() {
  return std::exchange(master_, -1);
}

void PseudoTerminal::Pull() {
  std::error_code error;
  if (slave_ >= 0 && std::filesystem::read_symlink(link_, error) == device_) ::unlink(link_.c_str());
  Close(slave_);
  Close(master_);
}

}  // namespace kesp::simulator
