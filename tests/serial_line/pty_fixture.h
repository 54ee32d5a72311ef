// A pseudo-terminal for the tests: its master, and the name of its slave.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace kesp::serial_line {

class PtyFixture : public testing::Test {
 protected:
  PtyFixture() {
    EXPECT_EQ(grantpt(master_), 0);
    EXPECT_EQ(unlockpt(master_), 0);
    const char* name = ptsname(master_);
    slave_name_ = name != nullptr ? name : "";
  }
  ~PtyFixture() override { Unplug(); }

  // The other end goes, as when an adapter is pulled.
  void Unplug() {
    if (master_ >= 0) close(master_);
    master_ = -1;
  }

  int OpenSlave() const { return open(slave_name_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC); }

  int master() const { return master_; }
  const std::string& slave_name() const { return slave_name_; }

 private:
  int master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  std::string slave_name_;
};

}  // namespace kesp::serial_line
