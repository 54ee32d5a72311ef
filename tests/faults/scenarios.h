// What makes each scenario.
#pragma once

#include <memory>

#include "tests/faults/scenario.h"

namespace kesp::faults {

std::unique_ptr<Scenario> MakeCreation();
std::unique_ptr<Scenario> MakeRegistration();
std::unique_ptr<Scenario> MakeTcpQuery();
std::unique_ptr<Scenario> MakeTcpBinary();
std::unique_ptr<Scenario> MakeTcpLines();
std::unique_ptr<Scenario> MakeTcpNobody();
std::unique_ptr<Scenario> MakeTcpName();
std::unique_ptr<Scenario> MakeTcpDetection();
std::unique_ptr<Scenario> MakeTcpDiscovery();
std::unique_ptr<Scenario> MakeTcpLogs();
std::unique_ptr<Scenario> MakeLateCalls();
std::unique_ptr<Scenario> MakeEvents();
std::unique_ptr<Scenario> MakeSerialQuery();
std::unique_ptr<Scenario> MakeSerialBinary();
std::unique_ptr<Scenario> MakeSerialLines();
std::unique_ptr<Scenario> MakeSerialDownload();
std::unique_ptr<Scenario> MakeSerialSwitch();
std::unique_ptr<Scenario> MakeSerialMemory();
std::unique_ptr<Scenario> MakeSerialDetection();
std::unique_ptr<Scenario> MakeSerialNobody();
std::unique_ptr<Scenario> MakeGpibQuery();
std::unique_ptr<Scenario> MakeGpibLines();
std::unique_ptr<Scenario> MakeGpibDetection();
std::unique_ptr<Scenario> MakeTcpDialog();
std::unique_ptr<Scenario> MakeSerialDialog();
std::unique_ptr<Scenario> MakeModemDialog();

}  // namespace kesp::faults
