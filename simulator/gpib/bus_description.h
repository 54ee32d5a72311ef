// What a description of a simulated bus says.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "simulator/gpib/address.h"
#include "simulator/gpib/call.h"

namespace kesp::simulator::gpib {

// What a device says to a command: one text after the other, in a cycle; without texts it says nothing.
struct Answer {
  std::vector<std::string> replies;
};

struct DeviceDescription {
  Address address;
  std::string terminator = "\n";  // may be empty: then only END completes a command
  std::string reply_terminator = "\n";
  bool end = true;  // whether END goes with the last byte of a reply
  std::int32_t delay_ms = 0;
  bool keeps_replies = false;
  std::map<std::string, Answer> commands;
  std::map<std::string, Answer> prefixes;  // for all commands that begin so
  Answer unknown;
};

// A call that is to fail: the one with that number since the bus was loaded, or each.
struct Failure {
  std::optional<CallName> call;    // any when left out
  std::optional<std::int32_t> at;  // the first is 1
  std::int32_t error = 0;
  std::optional<std::int32_t> status;  // the word to report, whatever its bits say
  std::int32_t count = 0;
  std::optional<std::int32_t> result;  // what the function returns
};

struct BusDescription {
  std::vector<DeviceDescription> devices;
  std::vector<Failure> failures;
  std::vector<std::int32_t> registration;  // results of the first registrations of threads
  bool secondary_offset_required = false;
  bool record = true;
};

// The bus that is there when no other was described: a temperature controller at address 5.
BusDescription BuiltInBus();

// A bus on which every call fails, for want of a description that can be used.
BusDescription UnusableBus();

}  // namespace kesp::simulator::gpib
