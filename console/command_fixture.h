// A command with everything around it made for the test.
#pragma once

#include <gtest/gtest.h>

#include "console/clock_fake.h"
#include "console/commands.h"
#include "console/console_fake.h"
#include "console/library_fake.h"
#include "console/machine_fake.h"

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
  MachineFake machine_;
  Surroundings around_{console_, clock_, machine_, [this]() -> Library& { return library_; },
                       [this] { return adapter_; }};
};

}  // namespace kesp::console
