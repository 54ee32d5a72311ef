// Measures the registered library beside bare Winsock and bare DispInvoke, on the same instrument in the same
// run.
//
//   kesp-bench host port      (tools/bench starts the instrument and runs it)
//
// Prints a table of medians in microseconds and the ratio of each library row to its bare row.
#include <winsock2.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include "bench/bare_socket.h"
#include "bench/library_client.h"
#include "bench/measure.h"
#include "bench/table.h"

namespace kesp::bench {

namespace {

constexpr char kCommand[] = "*IDN?\r";

struct Instrument {
  std::string host;
  std::uint16_t port;
};

void BareQuery(const Instrument& instrument, const std::string& command) {
  BareSocket socket(instrument.host, instrument.port);
  socket.Send(command);
  socket.ReceiveLine();
}

void MeasureQueries(const Instrument& instrument, const LibraryClient& client, BSTR identify) {
  const auto bare = [&] { BareQuery(instrument, kCommand); };
  Print("Query, vtable / connect, send, recv, close", MeasureInTurn(
                                                          41, 20, [&] { client.Query(identify); }, bare));
  Print("Query, IDispatch / connect, send, recv, close",
        MeasureInTurn(
            41, 20, [&] { client.QueryLate(identify); }, bare));
}

void MeasureKeptOpen(const Instrument& instrument, const LibraryClient& client, BSTR identify) {
  BareSocket socket(instrument.host, instrument.port);
  client.Open();
  Print("WriteLine, ReadLine kept open / send, recv", MeasureInTurn(
                                                          41, 100, [&] { client.Exchange(identify); },
                                                          [&] {
                                                            socket.Send(kCommand);
                                                            socket.ReceiveLine();
                                                          }));
  client.Close();
}

void MeasureDispatch(const LibraryClient& client) {
  Print("property get, IDispatch / DispInvoke",
        MeasureInTurn(
            41, 2000, [&] { client.GetPropertyLate(); }, [&] { client.GetPropertyBare(); }));
}

void MeasureLargeReplies(const Instrument& instrument, const LibraryClient& client) {
  for (const char* size : {"1M", "4M", "16M"}) {
    const std::string command = std::string("DATA") + size + "?";
    BSTR cmd = SysAllocString(std::wstring(command.begin(), command.end()).c_str());
    Print(std::string("Query of ") + size + "B / bare loop",
          MeasureInTurn(
              7, 1, [&] { client.Query(cmd); }, [&] { BareQuery(instrument, command + "\r"); }));
    SysFreeString(cmd);
  }
}

void MeasureLife() {
  std::vector<double> samples;
  for (int i = 0; i < 41; ++i) samples.push_back(Microseconds([] { CreateAndRelease(); }));
  Print("create and release CKespCommObj", Median(samples));
}

int Run(const Instrument& instrument) {
  const LibraryClient client(instrument.host, instrument.port);
  BSTR identify = SysAllocString(L"*IDN?");
  PrintHeading();
  MeasureQueries(instrument, client, identify);
  MeasureKeptOpen(instrument, client, identify);
  MeasureDispatch(client);
  MeasureLargeReplies(instrument, client);
  MeasureLife();
  SysFreeString(identify);
  return 0;
}

}  // namespace

}  // namespace kesp::bench

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: kesp-bench host port\n");
    return 2;
  }
  WSADATA data;
  WSAStartup(MAKEWORD(2, 2), &data);
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  int code = 1;
  try {
    code = kesp::bench::Run({.host = argv[1], .port = static_cast<std::uint16_t>(std::atoi(argv[2]))});
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
  }
  CoUninitialize();
  WSACleanup();
  return code;
}
