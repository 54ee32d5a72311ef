// kesp-sim: simulates laboratory instruments.
#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <utility>
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

void ServeInstrument(const Options& options, Personality personality, EventLog& log) {
  const auto instrument = std::make_shared<Instrument>(std::move(personality));
  if (options.serial.empty()) return ServeTcp(options, instrument, log);
  PlayedDevice device(instrument, Place::kOwnLine);
  ServeSerial(options.serial, device, log);
}

// A device has one line and one client.
void ServeDevice(const Options& options, Device& device, EventLog& log) {
  if (options.serial.empty())
    throw DescriptionError(options.file + ": is a device at a serial line, which goes with --serial");
  ServeSerial(options.serial, device, log);
}

std::filesystem::path PathOf(const std::string& utf8) {
  return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

Description DescriptionOf(const Options& options) {
  if (options.file.empty()) return BuiltInInstrument();
  return LoadDescription(PathOf(options.file));
}

void Serve(const Options& options, Description description, EventLog& log) {
  if (const auto* device = std::get_if<std::unique_ptr<Device>>(&description))
    return ServeDevice(options, **device, log);
  if (auto* personality = std::get_if<Personality>(&description))
    return ServeInstrument(options, std::move(*personality), log);
  throw DescriptionError(options.file + ": is a bus, which the simulated GPIB driver plays (Gpib-32.json)");
}

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
  Description description = DescriptionOf(options);
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
  Serve(options, std::move(description), log);
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
