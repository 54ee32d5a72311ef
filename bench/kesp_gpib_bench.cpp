// Measures the IEEE-488 transport beside the same calls of the driver, on the same simulated bus in the same
// run.
//
//   kesp-gpib-bench      (tools/bench puts the simulated driver beside it and runs it)
//
// Prints a table of medians in microseconds, the ratio of each library row to its bare row and what the
// library adds; then what the library allocates.
#include <windows.h>

#include <cstdio>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>

#include "bench/allocation_counter.h"
#include "bench/bare_bus.h"
#include "bench/bus_client.h"
#include "bench/calls.h"
#include "bench/measure.h"
#include "bench/table.h"
#include "bench/text.h"

namespace kesp::bench {

namespace {

constexpr int kAddress = 5;
constexpr char kCommand[] = "*IDN?\n";
// Without a "1", which would end the read.
constexpr char kReply[] = "KESP,GP488,SIM48805,2.0\\n";
constexpr double kMicrosecondsOfASecond = 1e6;

// A bus without a record of its calls, because writing it would be most of their time.
std::string BusOf(const std::string& devices) {
  return R"({"record": false, "devices": [)" + devices + "]}";
}

std::string AnsweringDevice() {
  return R"({"gpib": {"primary": )" + std::to_string(kAddress) +
         R"(}, "reply_terminator": "", "commands": {"*IDN?": ")" + kReply + R"("}})";
}

std::string SilentDevice(int primary_address) {
  return R"({"gpib": {"primary": )" + std::to_string(primary_address) + "}}";
}

// Runs the work on a thread and in an apartment of its own with that bus: a registration with the driver does
// not outlive the bus.
void OnBus(const BareBus& driver, const std::string& description, const std::function<void()>& work) {
  driver.Load(description);
  std::exception_ptr failure;
  std::thread([&] {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    try {
      work();
    } catch (...) {
      failure = std::current_exception();
    }
    CoUninitialize();
  }).join();
  if (failure) std::rethrow_exception(failure);
}

void BareExchange(const BareBus& driver, int device) {
  driver.Write(device, kCommand);
  driver.Read(device);
}

void CheckReply(std::size_t length) {
  // In the text of the description a line feed takes two characters.
  if (length != sizeof kReply - 2)
    throw std::runtime_error("the reply has " + std::to_string(length) + " characters");
}

void MeasureExchanges(const BareBus& driver) {
  const BusClient client(kAddress);
  const Text identify("*IDN?");
  client.Open();
  const int device = driver.Open(kAddress);
  CheckReply(client.Exchange(identify.get()));
  CheckReply(client.ExchangeLate(identify.get()));
  const auto bare = [&] { BareExchange(driver, device); };
  Print("WriteLine, ReadLine kept open / ibwrt, ibrd",
        MeasureInTurn(
            41, 500, [&] { client.Exchange(identify.get()); }, bare));
  Print("WriteLine, ReadLine kept open, IDispatch / the same",
        MeasureInTurn(
            41, 500, [&] { client.ExchangeLate(identify.get()); }, bare));
  driver.Close(device);
  client.Close();
}

void MeasureQueries(const BareBus& driver) {
  const BusClient client(kAddress);
  const Text identify("*IDN?");
  CheckReply(client.Query(identify.get()));
  CheckReply(client.QueryLate(identify.get()));
  const auto bare = [&] {
    const int device = driver.Open(kAddress);
    BareExchange(driver, device);
    driver.Close(device);
  };
  Print("Query, vtable / ibdev, ibclr, ibeos, ibwrt, ibrd, ibonl",
        MeasureInTurn(
            41, 200, [&] { client.Query(identify.get()); }, bare));
  Print("Query, IDispatch / the same", MeasureInTurn(
                                           41, 200, [&] { client.QueryLate(identify.get()); }, bare));
}

void CheckFoundNothing(bool found) {
  if (found) throw std::runtime_error("AutoDetect found a device that does not answer");
}

void MeasureEmptyScan(const BareBus& driver) {
  const BusClient client(kAddress);
  const auto bare = [&] {
    for (int address = 1; address <= 30; ++address) {
      const int device = driver.Open(address);
      for (const char* command : {"*IDN?\n", "*VER\n", "t\n"})
        CheckFoundNothing(driver.Write(device, command));
      driver.Close(device);
    }
  };
  Print("AutoDetect, 30 addresses, nobody there / the same calls",
        MeasureInTurn(
            21, 5, [&] { CheckFoundNothing(client.AutoDetect()); }, bare));
}

// Each silent device costs a time-out of a second for each of the three commands.
void MeasureSilentScan(int silent_devices) {
  const BusClient client(kAddress);
  const double library = Microseconds([&] { CheckFoundNothing(client.AutoDetect()); });
  Print("AutoDetect, " + std::to_string(silent_devices) + " silent devices / the driver's time-outs",
        {.library = library, .bare = 3 * kMicrosecondsOfASecond * silent_devices});
}

void PrintAllocations(const char* what, const std::function<void()>& work) {
  constexpr int kTimes = 1000;
  work();  // what is kept for good is made the first time
  const Allocations before = AllocationsSoFar();
  for (int i = 0; i < kTimes; ++i) work();
  const Allocations after = AllocationsSoFar();
  const auto each = [](std::int64_t count) { return static_cast<double>(count) / kTimes; };
  std::printf("%-56s %12.2f %12.2f %12.2f\n", what, each(after.made - before.made),
              each(after.freed - before.freed), each(after.texts - before.texts));
}

// The last of all, because counting stays on.
void CountAllocations() {
  const BusClient client(kAddress);
  const Text identify("*IDN?");
  HMODULE library = GetModuleHandleW(L"KespCommObj.dll");
  if (library == nullptr) throw std::runtime_error("the library goes by another name");
  CountAllocationsOf(library);
  std::printf("\n%-56s %12s %12s %12s\n", "what, each time", "blocks made", "blocks freed", "texts made");
  client.Open();
  PrintAllocations("WriteLine, ReadLine kept open", [&] { client.Exchange(identify.get()); });
  PrintAllocations("WriteLine, ReadLine kept open, IDispatch", [&] { client.ExchangeLate(identify.get()); });
  client.Close();
  PrintAllocations("Query, vtable", [&] { client.Query(identify.get()); });
  PrintAllocations("Query, IDispatch", [&] { client.QueryLate(identify.get()); });
}

void Run() {
  const BareBus driver;
  // Keeps the library loaded between the parts.
  const BusClient client(kAddress);
  PrintHeading();
  OnBus(driver, BusOf(AnsweringDevice()), [&] {
    MeasureExchanges(driver);
    MeasureQueries(driver);
  });
  // Address 0 is not searched; with no device at all the driver would refuse to clear one.
  OnBus(driver, BusOf(SilentDevice(0)), [&] { MeasureEmptyScan(driver); });
  OnBus(driver, BusOf(SilentDevice(3) + ", " + SilentDevice(17) + ", " + SilentDevice(30)),
        [] { MeasureSilentScan(3); });
  OnBus(driver, BusOf(AnsweringDevice()), [] { CountAllocations(); });
}

}  // namespace

}  // namespace kesp::bench

int main() {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  int code = 0;
  try {
    kesp::bench::Run();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    code = 1;
  }
  CoUninitialize();
  return code;
}
