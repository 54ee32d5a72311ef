// Scenarios of the network transport.
#pragma once

#include <memory>

#include "tests/faults/scenario.h"

namespace kesp::faults {

std::unique_ptr<Scenario> MakeTcpQuery();
std::unique_ptr<Scenario> MakeTcpBinary();
std::unique_ptr<Scenario> MakeTcpLines();
std::unique_ptr<Scenario> MakeTcpNobody();
std::unique_ptr<Scenario> MakeTcpName();
std::unique_ptr<Scenario> MakeTcpDetection();
std::unique_ptr<Scenario> MakeTcpDiscovery();
std::unique_ptr<Scenario> MakeTcpLogs();

}  // namespace kesp::faults
