// IEEE-488 transports beside the simulated driver, and where tests of them run.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "tests/clients/ieee_client.h"
#include "tests/clients/other_apartment.h"
#include "tests/clients/simulated_driver.h"

namespace kesp::clients {

// A bus with the devices that the tests talk to: a meter at the transport's address, one that never finishes
// its reply, one behind a secondary address, and one that keeps silent but for the second command of a
// detection. `more` holds further fields of the description.
inline std::string Bus(const std::string& more = {}) {
  return R"({"devices": [
    {"gpib": {"primary": 5}, "commands": {
      "*IDN?": "KESP,GP488,SIM48805,2.0", "BYTES?": "\u0000\u0080\u00e9\u00ff", "SETP *": null}},
    {"gpib": {"primary": 6}, "reply_terminator": "", "end": false, "commands": {"*IDN?": "KESP,"}},
    {"gpib": {"primary": 7, "secondary": 9}, "commands": {"*IDN?": "KESP,GP488,SIM48807,2.0"}},
    {"gpib": {"primary": 2}, "commands": {"*VER": "KESP,2.0"}}])" +
         (more.empty() ? "" : ", " + more) + "}";
}

// The same where the call of that function fails once, the at-th time, with that error of the driver.
inline std::string BusFailing(const std::string& function, int error, int at = 1) {
  return Bus(R"("failures": [{"call": ")" + function + R"(", "at": )" + std::to_string(at) +
             R"(, "error": )" + std::to_string(error) + "}]");
}

inline constexpr wchar_t kIdentity[] = L"KESP,GP488,SIM48805,2.0\n";

class GpibFixture : public testing::Test {
 protected:
  // With that bus and a new transport, on a new thread: the library registers each thread with the driver
  // once, and again behind the first call on a new bus, which has forgotten it.
  void Run(const std::string& bus, const std::function<void(IeeeClient&)>& work) {
    driver_.Load(bus);
    RunElsewhere(COINIT_APARTMENTTHREADED, [&] {
      IeeeClient ieee;
      work(ieee);
    });
  }
  void TearDown() override { driver_.ExpectNothingLeft(); }

  const SimulatedDriver driver_;
};

}  // namespace kesp::clients
