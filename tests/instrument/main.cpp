// kesp-instrument: plays a laboratory instrument over TCP or on a serial line.
#include <csignal>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "tests/instrument/conversation.h"
#include "tests/instrument/device_reader.h"
#include "tests/instrument/device_talk.h"
#include "tests/instrument/event_log.h"
#include "tests/instrument/instrument.h"
#include "tests/instrument/options.h"
#include "tests/instrument/personality_reader.h"
#include "tests/instrument/serving.h"

namespace kesp::simulator {
namespace {

// A device has one line and one client.
void ServeDevice(const Options& options, Device& device, EventLog& log) {
  if (options.serial.empty())
    throw PersonalityError(options.personality, "is a device at a serial line, which goes with --serial");
  ServeSerial(options.serial, [&device, &log](Carrier& carrier) {
    return std::make_unique<DeviceTalk>(carrier, device, log, 1);
  });
}

void Serve(const Options& options, EventLog& log) {
  const std::unique_ptr<Device> device =
      options.personality.empty() ? nullptr : LoadDevice(options.personality);
  if (device != nullptr) return ServeDevice(options, *device, log);
  Instrument instrument(options.personality.empty() ? BuiltInPersonality()
                                                    : LoadPersonality(options.personality));
  if (options.serial.empty()) return ServeTcp(options, instrument, log);
  ServeSerial(options.serial, [&instrument, &log](Carrier& carrier) {
    return std::make_unique<Conversation>(carrier, instrument, log, 1);
  });
}

int Run(const Options& options) {
  std::vector<std::ostream*> sinks;
  if (!options.quiet) sinks.push_back(&std::cerr);
  std::ofstream log_file;
  if (!options.log.empty()) {
    log_file.open(options.log, std::ios::app);
    if (!log_file) {
      std::cerr << "kesp-instrument: " << options.log << ": cannot be written\n";
      return kExitBadInput;
    }
    sinks.push_back(&log_file);
  }
  EventLog log(sinks, TimeOfDay);
  try {
    Serve(options, log);
  } catch (const PersonalityError& error) {
    std::cerr << "kesp-instrument: " << error.what() << "\n";
    return kExitBadInput;
  } catch (const std::system_error& error) {
    std::cerr << "kesp-instrument: cannot " << error.what() << "\n";
    return kExitCannotListen;
  }
  return kExitDone;
}

}  // namespace
}  // namespace kesp::simulator

int main(int argc, char** argv) {
  // A reader of the log that goes away must not take the instrument along.
  std::signal(SIGPIPE, SIG_IGN);
  const kesp::simulator::ParsedOptions parsed =
      kesp::simulator::ParseOptions(std::vector<std::string>(argv + 1, argv + argc));
  std::cout << parsed.output << std::flush;
  std::cerr << parsed.error << std::flush;
  return parsed.options ? kesp::simulator::Run(*parsed.options) : parsed.exit_code;
}
