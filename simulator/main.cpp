// kesp-sim: simulates laboratory instruments.
#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "simulator/bytes_text.h"
#include "simulator/description.h"
#include "simulator/description_error.h"
#include "simulator/event_log.h"
#include "simulator/examples.h"
#include "simulator/instrument.h"
#include "simulator/making.h"
#include "simulator/options.h"
#include "simulator/platform.h"
#include "simulator/played_device.h"
#include "simulator/serving.h"
#include "simulator/wire.h"

namespace kesp::simulator {
namespace {

std::filesystem::path PathOf(const std::string& utf8) {
  return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

Description DescriptionOf(const Options& options) {
  if (options.file.empty()) return BuiltInInstrument();
  return LoadDescription(PathOf(options.file));
}

// Why a description cannot be served as the options ask; empty when it can.
struct Objection {
  const Options& options;

  std::string operator()(const Personality& personality) const {
    return personality.terminator.empty() ? "has an empty terminator, which goes on a bus only" : "";
  }
  std::string operator()(const std::unique_ptr<Device>& /*device*/) const {
    return options.serial.empty() ? "is a device at a serial line, which goes with --serial" : "";
  }
  std::string operator()(const gpib::BusDescription& /*bus*/) const {
    return "is a bus, which the simulated GPIB driver plays (Gpib-32.json)";
  }
  std::string operator()(const NetworkDescription& /*network*/) const {
    const Options usual;
    const bool has_an_address = !options.serial.empty() || options.port != usual.port ||
                                options.bind != usual.bind || options.discovery_from;
    return has_an_address
               ? "is a network with addresses of its own, which goes without --port, --bind, --serial "
                 "and --discovery-from"
               : "";
  }
};

// Serves what there is no objection to.
struct Serve {
  const Options& options;
  EventLog& log;

  void operator()(const Personality& personality) const {
    const auto instrument = std::make_shared<Instrument>(personality);
    if (options.serial.empty()) return ServeTcp(options, {{{options.bind, options.port}, instrument}}, log);
    PlayedDevice device(instrument, Place::kOwnLine);
    ServeSerial(options.serial, device, log);
  }
  void operator()(const std::unique_ptr<Device>& device) const { ServeSerial(options.serial, *device, log); }
  void operator()(const gpib::BusDescription& /*bus*/) const {}
  void operator()(const NetworkDescription& network) const {
    std::vector<Station> stations;
    for (const auto& [address, personality] : network.devices)
      stations.push_back({address, std::make_shared<Instrument>(personality)});
    ServeTcp(options, stations, log);
  }
};

// "an instrument", for what was read without a mistake.
struct KindOf {
  std::string operator()(const Personality& personality) const {
    return "an instrument with " +
           Counted(personality.commands.size() + personality.prefixes.size(), "command");
  }
  std::string operator()(const std::unique_ptr<Device>& /*device*/) const {
    return "a device at a serial line";
  }
  std::string operator()(const gpib::BusDescription& bus) const {
    return "a bus with " + Counted(bus.devices.size(), "device");
  }
  std::string operator()(const NetworkDescription& network) const {
    return "a network with " + Counted(network.devices.size(), "device");
  }
};

void Check(const Options& options) {
  const Description description = LoadDescription(PathOf(options.file));
  std::cout << options.file << ": " << std::visit(KindOf(), description) << "\n";
}

void WriteExample(const Options& options) {
  const auto example = std::find_if(Examples().begin(), Examples().end(),
                                    [&options](const Example& each) { return each.kind == options.kind; });
  if (options.file.empty()) {
    std::cout << example->text;
    return;
  }
  const std::filesystem::path path = PathOf(options.file);
  if (std::filesystem::exists(path)) throw DescriptionError(options.file + ": is there already");
  std::ofstream stream(path);
  if (!(stream << example->text << std::flush)) throw DescriptionError(options.file + ": cannot be written");
}

void ServeWithLog(const Options& options) {
  // First, so that a mistake in it leaves no log behind.
  const Description description = DescriptionOf(options);
  const std::string objection = std::visit(Objection{options}, description);
  if (!objection.empty()) throw DescriptionError(options.file + ": " + objection);
  std::vector<std::ostream*> sinks;
  if (!options.quiet) sinks.push_back(&std::cerr);
  std::ofstream log_file;
  if (!options.log.empty()) {
    log_file.open(PathOf(options.log), std::ios::app);
    if (!log_file) {
      throw DescriptionError(options.log + ": cannot be written");
    }
    sinks.push_back(&log_file);
  }
  EventLog log(sinks, TimeOfDay);
  std::visit(Serve{options, log}, description);
}

void Do(const Options& options) {
  switch (options.command) {
    case Command::kServe:
      return ServeWithLog(options);
    case Command::kWire:
      return ServeWire(options);
    case Command::kCheck:
      return Check(options);
    case Command::kExample:
      return WriteExample(options);
  }
}

int Run(const Options& options) {
  try {
    Do(options);
  } catch (const DescriptionError& error) {
    std::cerr << error.what() << "\n";
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
