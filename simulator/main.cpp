// kesp-sim: simulates laboratory instruments.
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "simulator/conversation.h"
#include "simulator/device_reader.h"
#include "simulator/device_talk.h"
#include "simulator/event_log.h"
#include "simulator/instrument.h"
#include "simulator/making.h"
#include "simulator/options.h"
#include "simulator/personality_reader.h"
#include "simulator/platform.h"
#include "simulator/serving.h"
#include "simulator/wire.h"

namespace kesp::simulator {
namespace {

// A device has one line and one client.
void ServeDevice(const Options& options, Device& device, EventLog& log) {
  if (options.serial.empty())
    throw PersonalityError(options.file, "is a device at a serial line, which goes with --serial");
  ServeSerial(options.serial, device.Line(), [&device, &log](Carrier& carrier) {
    return std::make_unique<DeviceTalk>(carrier, device, log, 1);
  });
}

void Serve(const Options& options, EventLog& log) {
  if (options.command == Command::kWire) return ServeWire(options);
  const std::unique_ptr<Device> device = options.file.empty() ? nullptr : LoadDevice(options.file);
  if (device != nullptr) return ServeDevice(options, *device, log);
  Instrument instrument(options.file.empty() ? BuiltInPersonality() : LoadPersonality(options.file));
  if (options.serial.empty()) return ServeTcp(options, instrument, log);
  ServeSerial(options.serial, instrument.line(), [&instrument, &log](Carrier& carrier) {
    return std::make_unique<Conversation>(carrier, instrument, log, 1);
  });
}

int Run(const Options& options) {
  std::vector<std::ostream*> sinks;
  if (!options.quiet) sinks.push_back(&std::cerr);
  std::ofstream log_file;
  if (!options.log.empty()) {
    log_file.open(std::filesystem::path(options.log), std::ios::app);
    if (!log_file) {
      std::cerr << "kesp-sim: " << options.log << ": cannot be written\n";
      return kExitBadInput;
    }
    sinks.push_back(&log_file);
  }
  EventLog log(sinks, TimeOfDay);
  try {
    Serve(options, log);
  } catch (const PersonalityError& error) {
    std::cerr << "kesp-sim: " << error.what() << "\n";
    return kExitBadInput;
  } catch (const CannotError& error) {
    std::cerr << "kesp-sim: cannot " << error.what() << "\n";
    return kExitCannotListen;
  } catch (const std::exception& error) {
    std::cerr << "kesp-sim: " << error.what() << "\n";
    return kExitCannotListen;
  }
  return kExitDone;
}

}  // namespace
}  // namespace kesp::simulator

int main(int argc, char** argv) {
  using namespace kesp::simulator;
  const ParsedOptions parsed = ParseOptions(BeginProgram(argc, argv));
  std::cout << parsed.output << std::flush;
  std::cerr << parsed.error << std::flush;
  return parsed.options ? Run(*parsed.options) : parsed.exit_code;
}
