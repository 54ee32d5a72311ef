// The list of all scenarios.
#include "tests/faults/scenario.h"

#include "tests/faults/scenarios.h"

namespace kesp::faults {

namespace {

constexpr ScenarioEntry kScenarios[] = {
    {"creation", "each class is made and used a little", &MakeCreation},
    {"tcp-query", "queries over the network, with a connection each", &MakeTcpQuery},
    {"tcp-binary", "binary queries over the network", &MakeTcpBinary},
    {"tcp-lines", "exchanges on a connection that stays open, with the log", &MakeTcpLines},
    {"tcp-nobody", "a query where nobody listens", &MakeTcpNobody},
    {"tcp-name", "a query of a name that is looked up", &MakeTcpName},
    {"tcp-detection", "the search for a device at an address", &MakeTcpDetection},
    {"discovery", "the search over the local network", &MakeTcpDiscovery, 5},
    {"tcp-logs", "a query with both logs", &MakeTcpLogs},
    {"late-calls", "calls by name, with replies in variables of each kind", &MakeLateCalls},
    {"late-events", "a query with a handler that calls back", &MakeEvents},
    {"serial-query", "queries at a COM port, which is closed each time or kept open", &MakeSerialQuery},
    {"serial-binary", "a binary query at a COM port", &MakeSerialBinary},
    {"serial-lines", "exchanges at a COM port that stays open, with the log", &MakeSerialLines},
    {"serial-download", "a download", &MakeSerialDownload, 4},
    {"serial-switch", "queries through the port switch", &MakeSerialSwitch},
    {"serial-memory", "the file that remembers where radio modems point", &MakeSerialMemory},
    {"serial-detection", "the search for a device at a COM port", &MakeSerialDetection},
    {"serial-nobody", "a query at a port that is not there", &MakeSerialNobody},
    {"gpib-query", "queries over IEEE-488", &MakeGpibQuery},
    {"gpib-lines", "exchanges over IEEE-488, with the log", &MakeGpibLines},
    {"gpib-detection", "the search for a device over IEEE-488", &MakeGpibDetection},
    {"cold-creation", "the first objects of a process", &MakeCreation, 40, true},
    {"cold-late-calls", "the first calls by name of a process", &MakeLateCalls, 40, true},
    {"registration", "registered for the user and taken away", &MakeRegistration},
    {"dialog-tcp", "the dialog of the network transport", &MakeTcpDialog},
    {"dialog-serial", "the dialog of the serial transport", &MakeSerialDialog, 8},
    {"dialog-modem", "the dialog of the serial transport with that of the radio modem", &MakeModemDialog, 1},
};

}  // namespace

std::span<const ScenarioEntry> Scenarios() {
  return kScenarios;
}

const ScenarioEntry* FindScenario(const std::string& name) {
  for (const ScenarioEntry& scenario : kScenarios) {
    if (name == scenario.name) return &scenario;
  }
  return nullptr;
}

}  // namespace kesp::faults
