// Measures the serial transport beside the bare communication functions, on the same port in the same run.
//
//   kesp-serial-bench com-port-number            (tools/bench puts the instrument there and runs it)
//   kesp-serial-bench com-port-number ports      how long the RS-232 dialog looks for ports, instead
//
// Prints a table of medians, in microseconds or milliseconds, and the ratio of each library row to its bare
// row.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <stdexcept>
#include <string>

#include "bench/bare_line.h"
#include "bench/measure.h"
#include "bench/port_look.h"
#include "bench/serial_client.h"
#include "bench/table.h"
#include "bench/text.h"

namespace kesp::bench {

namespace {

constexpr char kCommand[] = "*IDN?\r";

void BareExchange(BareLine& line) {
  line.Send(kCommand);
  line.ReceiveLine();
}

// A port has one owner, so library and bare loop hold it in turn; opening and closing are not timed.
template <class Library>
Pair MeasureKeptOpen(int port, LineKind kind, const SerialClient& client, Library&& library) {
  std::optional<BareLine> line;
  return MeasureInTurn(
      21, 200, [&] { client.Open(); }, library, [&] { client.Close(); }, [&] { line.emplace(port, kind); },
      [&] { BareExchange(*line); }, [&] { line.reset(); });
}

void MeasureExchanges(int port, const SerialClient& client) {
  const Text identify("*IDN?");
  const auto exchange = [&] { client.Exchange(identify.get()); };
  const auto query = [&] { client.Query(identify.get()); };
  Print("WriteLine, ReadLine kept open / overlapped handle",
        MeasureKeptOpen(port, LineKind::kOverlapped, client, exchange));
  Print("WriteLine, ReadLine kept open / synchronous handle",
        MeasureKeptOpen(port, LineKind::kSynchronous, client, exchange));
  client.SetAutoClose(false);
  Print("Query kept open / overlapped handle", MeasureKeptOpen(port, LineKind::kOverlapped, client, query));
  Print("Query kept open / synchronous handle", MeasureKeptOpen(port, LineKind::kSynchronous, client, query));
  client.SetAutoClose(true);
  Print("Query / open, configure, write, read, close", MeasureInTurn(21, 20, query, [&] {
          BareLine line(port, LineKind::kOverlapped);
          BareExchange(line);
        }));
}

void CheckLength(std::size_t length, std::size_t expected) {
  if (length != expected) throw std::runtime_error("a reply of " + std::to_string(length) + " bytes");
}

// Includes the silence that ends the transfer.
void MeasureLongReplies(const SerialClient& client) {
  client.Open();
  for (const int megabytes : {1, 4, 16}) {
    const Text command("DATA" + std::to_string(megabytes) + "M?");
    const double time = Microseconds([&] {
      CheckLength(client.ExchangeBinary(command.get()),
                  static_cast<std::size_t>(megabytes) * 1024 * 1024 + 1);
    });
    Print("ReadLineBinary of " + std::to_string(megabytes) + "MB", time);
  }
  // Half a second for each look at the line, of which this line's queue holds 4 KB.
  for (const int kilobytes : {16, 64, 256}) {
    const Text command("DATA" + std::to_string(kilobytes) + "K?");
    const double time = Microseconds(
        [&] { CheckLength(client.Download(command.get()), static_cast<std::size_t>(kilobytes) * 1024 + 1); });
    Print("Download of " + std::to_string(kilobytes) + "KB", time);
  }
  client.Close();
}

void Run(int port, bool only_ports) {
  const SerialClient client(port);
  if (only_ports) return MeasurePortLook(client);
  PrintHeading();
  MeasureExchanges(port, client);
  MeasureLongReplies(client);
}

}  // namespace

}  // namespace kesp::bench

int main(int argc, char** argv) {
  const bool only_ports = argc == 3 && std::string(argv[2]) == "ports";
  if (argc != 2 && !only_ports) {
    std::fprintf(stderr, "usage: kesp-serial-bench com-port-number [ports]\n");
    return 2;
  }
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  int code = 0;
  try {
    kesp::bench::Run(std::atoi(argv[1]), only_ports);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    code = 1;
  }
  CoUninitialize();
  return code;
}
