// Which pairs of a member and a way to hang have no cell, and why.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace kesp::hangs {

// The ways that each transport knows, by parts of their names, and the class of its own.
struct WaysOfTransport {
  std::string transport;
  std::string own_class;
  std::vector<std::string> ways;
};

inline const std::vector<WaysOfTransport> kWays{
    {"TCP",
     "CKespTCP",
     {"silent", "one byte a second", "endless data", "never reads", "closed", "reset", "refused connection",
      "dropped connection", "look-up that hangs"}},
    {"serial",
     "CKespCOMPort3",
     {"silent", "one byte a second", "endless data", "line ", "port pulled", "driver that does not release"}},
    {"GPIB",
     "CKespIEEE",
     {"silent", "one byte a second", "endless data", "no device", "device lost",
      "driver that does not return"}},
};

// Regular expressions over names of cells; only one fits each.
inline const std::map<std::string, std::string> kMakesNoSense{
    {R"(^TCP: .*\.(ReadLine|ReadLineBinary|WriteLine|Uninitialize|CommStyle) \((refused|dropped|look-up))",
     "does not connect"},
    {R"(^TCP: .*\.(ReadLine|ReadLineBinary|AutoDetect|DetectInstrument) \(never reads)",
     "does not send, or too little to fill anything"},
    {R"(^TCP: .*\.Initialize \((silent|one byte|endless|never reads))", "is over when there is a connection"},
    {R"(^TCP: .*\.Update \((silent|one byte|endless))", "does not read"},
    {R"(^TCP: .*\.(WriteLine|Uninitialize|CommStyle) \(one byte)",
     "does not read; endless data is more of it"},
    {R"(^serial: .*\.(ClearBuffers|ClosePort|WriteLine|ReadLine|ReadLineBinary|Download|CommStyle) \(driver)",
     "needs a port that is open"},
    {R"(^serial: .*\.(RFWriteModemSettings|RFWriteModemInstrAddress) \(driver)", "needs a port that is open"},
    {R"(^serial: .*\.(ReadLine|ReadLineBinary|Download) \(line )", "does not send"},
    {R"(^serial: .*\.(ClearBuffers|OpenPort|ClosePort|PortExists|IsPortAvailable|Edit) \(one byte)",
     "does not read; endless data is more of it"},
    {R"(^serial: .*\.(TestSmartSwitch|WriteLine|CommStyle) \(one byte)",
     "does not read; endless data is more of it"},
    {R"(^GPIB: .*\.QueryBinary)", "is refused at once"},
    {R"(^GPIB: .*\.CommStyle \((silent|one byte|endless|no device|driver))", "does not call the driver"},
    {R"(^GPIB: .*\.(Initialize|Uninitialize|WriteLine|Update) \((silent|one byte|endless))", "does not read"},
    {R"(^GPIB: .*\.(Initialize|Update|AutoDetect) \(device lost)",
     "opens the device, and one that is lost is no device"},
    {R"(^GPIB: .*\.AutoDetect \(no device)", "each search asks addresses without one"},
    {R"(^GPIB: .*\.AutoDetect \(endless)", "the first bytes of it are an answer"},
    {R"(^GPIB: .*\.DetectInstrument \((one byte|endless|no device|device lost))", "is AutoDetect"},
};

}  // namespace kesp::hangs
