// Asks an instrument at a COM port who it is, early bound.
//
//   query_com.exe [COM port number [bits per second [command]]]
#include "query.h"

namespace {

// A rate is set by its number, which has the rate as its name. The range comes first: a rate outside of it is
// refused.
void SetBaudRate(_CKespCOMPort3* port, const std::wstring& baud) {
  Check(port->put_MaxBaudRate(br921600));
  Check(port->put_MinBaudRate(br150));
  for (int rate = br150; rate <= br921600; ++rate) {
    Text name;
    Check(port->BaudRateName(static_cast<EKespBaudRate3>(rate), name.out()));
    if (name.c_str() == baud) return Check(port->put_BaudRate(static_cast<EKespBaudRate3>(rate)));
  }
  throw std::runtime_error("not a bit rate of this library");
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  return Run([&] {
    const auto comm = MakeCommObj();
    const auto port = Choose<_CKespCOMPort3>(comm.Get(), csRS232);
    Check(port->put_Port(static_cast<SHORT>(std::stoi(Argument(argc, argv, 1, L"1")))));
    SetBaudRate(port.Get(), Argument(argc, argv, 2, L"9600"));
    return Query(comm.Get(), Argument(argc, argv, 3, L"*IDN?"));
  });
}
