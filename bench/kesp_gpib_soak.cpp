// Asks a device on the simulated GPIB the same question again and again, as a program does that measures for
// days.
//
//   kesp-gpib-soak COUNT PROGRESS-FILE      (tools/soak-gpib puts the simulated driver beside it and runs it)
//
// Each query opens the device and closes it. Ends with 0 when every reply was right and no device is open at
// the end. The file holds how many queries are done, as one number a line.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>

#include "bench/calls.h"
#include "bench/text.h"

namespace kesp::bench {

namespace {

using Microsoft::WRL::ComPtr;

constexpr int kQueriesPerLine = 1000;
const std::wstring kReply = L"KESP,GP488,SIM48805,1.0\n";

std::string Narrow(BSTR text) {
  const std::wstring wide(text, SysStringLen(text));
  return std::string(wide.begin(), wide.end());
}

// A device at address 5 whose replies end with END.
ComPtr<::_CKespCommObj> CreateClient() {
  ComPtr<::_CKespCommObj> comm = CreateCommObj();
  ComPtr<::_CKespIEEE> ieee;
  CheckResult(SelectTransport(comm.Get(), ::csIEEE).As(&ieee), "the IEEE-488 transport");
  CheckResult(ieee->put_PrimaryAddress(5), "PrimaryAddress");
  CheckResult(ieee->put_EOSChar(Text("10").get()), "EOSChar");
  CheckResult(ieee->put_SetEOS(VARIANT_FALSE), "SetEOS");
  return comm;
}

void QueryOnce(::_CKespCommObj* comm, BSTR cmd) {
  BSTR result = nullptr;
  VARIANT_BOOL succeeded = VARIANT_FALSE;
  CheckResult(comm->Query(&result, cmd, nullptr, nullptr, &succeeded), "Query");
  const std::wstring reply(result, SysStringLen(result));
  SysFreeString(result);
  if (succeeded == VARIANT_FALSE) {
    BSTR description = nullptr;
    CheckResult(comm->get_CommErrorDescr(&description), "CommErrorDescr");
    throw std::runtime_error(Narrow(description));
  }
  if (reply != kReply) throw std::runtime_error("another reply: " + std::string(reply.begin(), reply.end()));
}

int OpenDescriptors() {
  HMODULE driver = GetModuleHandleW(L"Gpib-32.dll");
  auto* count = reinterpret_cast<int(__stdcall*)()>(
      reinterpret_cast<void*>(GetProcAddress(driver, "KespSimulationOpenDescriptors")));
  if (count == nullptr) throw std::runtime_error("the driver is not the simulated one");
  return count();
}

void Run(int count, std::ofstream progress) {
  const ComPtr<::_CKespCommObj> comm = CreateClient();
  const Text identify("*IDN?");
  for (int done = 0; done < count;) {
    try {
      QueryOnce(comm.Get(), identify.get());
    } catch (const std::exception& error) {
      throw std::runtime_error("query " + std::to_string(done + 1) + ": " + error.what());
    }
    if (++done % kQueriesPerLine == 0) progress << done << std::endl;
  }
  const int open = OpenDescriptors();
  if (open != 0) throw std::runtime_error(std::to_string(open) + " devices are open at the end");
  std::printf("%d queries, all right\n", count);
}

}  // namespace

}  // namespace kesp::bench

int main(int argc, char** argv) {
  const int count = argc == 3 ? std::atoi(argv[1]) : 0;
  if (count < 1) {
    std::fprintf(stderr, "usage: kesp-gpib-soak COUNT PROGRESS-FILE\n");
    return 2;
  }
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  int code = 0;
  try {
    kesp::bench::Run(count, std::ofstream(argv[2]));
  } catch (const std::exception& error) {
    std::printf("%s\n", error.what());
    code = 1;
  }
  CoUninitialize();
  return code;
}
