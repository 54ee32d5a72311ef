// The commands of kesp, each in a file of its own (query_command.cpp and so on).
#pragma once

#include "console/options.h"
#include "console/surroundings.h"

namespace kesp::console {

// Each returns the exit code. What it throws is told to the user by RunCommand.
int Run(const QueryOptions& options, Surroundings& around);
int Run(const SendOptions& options, Surroundings& around);
int Run(const TerminalOptions& options, Surroundings& around);
int Run(const DetectOptions& options, Surroundings& around);
int Run(const DiscoverOptions& options, Surroundings& around);
int Run(const PortsOptions& options, Surroundings& around);
int Run(const DownloadOptions& options, Surroundings& around);
int Run(const EditOptions& options, Surroundings& around);
int Run(const LogOptions& options, Surroundings& around);
int Run(const SnippetOptions& options, Surroundings& around);
int Run(const DoctorOptions& options, Surroundings& around);
int Run(const CompletionOptions& options, Surroundings& around);

// Runs what was asked for. A failure becomes a message on standard error and an exit code:
//   kesp: Timeout (cfrTimeout, [CKespTCP - ReadLine()])
int RunCommand(const Options& options, Surroundings& around);

}  // namespace kesp::console
