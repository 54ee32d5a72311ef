// A client that writes one trace and one settings file while others do so, too.
//
//   writing_process TRACE NUMBER ROUNDS PORTS
//
// Its queries are "ECHO p<number> r<round>". The process of number 0 writes the settings of the odd ports up
// to PORTS, that of number 1 those of the even ones, one in each round.
#include <cstdlib>
#include <string>

#include "tests/threads/bare_client.h"

int main(int count, char** arguments) {
  using namespace kesp::threads;
  if (count != 5) return 2;
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  const std::string trace = arguments[1];
  const std::string number = arguments[2];
  const int rounds = std::atoi(arguments[3]);
  const int ports = std::atoi(arguments[4]);
  Talker gpib(csIEEE, {trace.begin(), trace.end()});
  kesp::clients::ComPtr<_CKespIEEE> ieee;
  gpib.transport.As(&ieee);
  ieee->put_PrimaryAddress(5);
  ieee->put_EOSChar(kesp::clients::Text(L"10").get());
  ieee->put_SetEOS(VARIANT_FALSE);
  const std::wstring name = L"ECHO p" + std::wstring(number.begin(), number.end()) + L" r";
  for (int round = 0; round < rounds; ++round) {
    gpib.Ask(name + std::to_wstring(round));
    WriteSettings(static_cast<short>(1 + (2 * round + std::stoi(number)) % ports));
  }
  return 0;
}
