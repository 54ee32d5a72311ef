// A command with everything around it made for the test.
#pragma once

#include <gtest/gtest.h>

#include "console/clock_fake.h"
#include "console/commands.h"
#include "console/console_fake.h"
#include "console/library_fake.h"

namespace kesp::console {

class CommandFixture : public testing::Test {
 protected:
  // As the program does it, failures included.
  template <class CommandOptions>
  int Run(const CommandOptions& options) {
    Options all;
    all.command = options;
    return RunCommand(all, around_);
  }

  ConsoleFake console_;
  ClockFake clock_;
  LibraryFake library_;
  std::optional<BroadcastAdapter> adapter_;

 private:
  // No command of these tests looks at the machine.
  char no_machine_ = 0;

 protected:
  Surroundings around_{console_, clock_, reinterpret_cast<Machine&>(no_machine_),
                       [this]() -> Library& { return library_; }, [this] { return adapter_; }};
};

}  // namespace kesp::console
