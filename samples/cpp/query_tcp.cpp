// Asks an instrument on the network who it is, early bound.
//
//   query_tcp.exe [host [port [command]]]
#include "query.h"

int wmain(int argc, wchar_t** argv) {
  return Run([&] {
    const auto comm = MakeCommObj();
    const auto tcp = Choose<_CKespTCP>(comm.Get(), csTCPIP);
    Check(tcp->put_IPAddress(Text(Argument(argc, argv, 1, L"127.0.0.1")).get()));
    Check(tcp->put_Port(static_cast<SHORT>(std::stoi(Argument(argc, argv, 2, L"10001")))));
    return Query(comm.Get(), Argument(argc, argv, 3, L"*IDN?"));
  });
}
