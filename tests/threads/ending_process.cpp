// A client that talks to instruments on two threads until its process ends in the middle of a call.
//
//   ending_process WAY MILLISECONDS FOLDER NUMBER
//
// All logs go into the folder, those of each thread into files of their own, and the settings file into the
// temporary folder. The number tells which COM ports of the settings file it begins with. Nothing is tested
// in here: what it leaves is looked at by the test that started it.
#include "tests/threads/ending_process.h"

#include <cstdlib>
#include <string>
#include <thread>

#include "tests/clients/bare_sink.h"
#include "tests/threads/bare_client.h"

namespace kesp::threads {
namespace {

using clients::ComPtr;
using clients::Text;

std::wstring folder;

// A file of the folder.
std::wstring PathOf(const std::wstring& name) {
  return folder + L"\\" + name;
}

// Of the logs that the calling thread writes.
thread_local const wchar_t* thread_name = L"first";
std::wstring LogFile(const std::wstring& name) {
  return PathOf(name + thread_name + L".log");
}

std::wstring Variable(const char* name) {
  const char* const value = std::getenv(name);
  const std::string text = value == nullptr ? "" : value;
  return {text.begin(), text.end()};
}

struct Talkers {
  Talkers() {
    ComPtr<_CKespTCP> tcp;
    network.transport.As(&tcp);
    tcp->put_IPAddress(Text(Variable("KESP_INSTRUMENT_HOST")).get());
    tcp->put_Port(static_cast<short>(std::stoi(Variable("KESP_INSTRUMENT_PORT"))));
    tcp->put_LogFilename(Text(LogFile(L"tcp ")).get());
    tcp->put_CreateLogFile(VARIANT_TRUE);
    ComPtr<_CKespIEEE> ieee;
    gpib.transport.As(&ieee);
    ieee->put_PrimaryAddress(5);
    ieee->put_EOSChar(Text(L"10").get());
    ieee->put_LogFilename(Text(LogFile(L"gpib ")).get());
    ieee->put_CreateLogFile(VARIANT_TRUE);
  }
  Talker network{csTCPIP, LogFile(L"trace ")};
  Talker gpib{csIEEE, LogFile(L"trace ")};
};

// The COM port of the test, where there is one: it must be free for the next process.
void TalkAtSerialLine(const std::wstring& port) {
  Talker serial(csRS232, LogFile(L"trace "));
  ComPtr<_CKespCOMPort3> line;
  serial.transport.As(&line);
  line->put_Port(static_cast<short>(std::stoi(port)));
  line->put_MaxBaudRate(br921600);
  line->put_MinBaudRate(br150);
  line->put_BaudRate(br921600);
  line->put_LogFilename(Text(LogFile(L"serial ")).get());
  line->put_CreateLogFile(VARIANT_TRUE);
  for (;;) serial.Ask(L"*IDN?");
}

// Calls that never end, with a handler of the network's events.
void Talk(short number) {
  Talkers talkers;
  clients::BareSink sink;
  sink.Connect(talkers.network.transport.Get(), __uuidof(__CKespTCP));
  for (short round = 0;; ++round) {
    talkers.network.Ask(round % 2 == 0 ? L"*IDN?" : L"SPLIT?");
    talkers.gpib.Ask(L"*IDN?");
    WriteSettings(static_cast<short>(1 + (number + round) % kSettingsPorts));
  }
}

// Leaves COM as a confused client does, from within the call that is in progress.
void LeaveComAndLibrary() {
  CoUninitialize();
  FreeLibrary(GetModuleHandleW(L"KespCommObj.dll"));
}

// A client that crashes stays, so that the test tells where it was. Wine would start a debugger, which waits
// for a user.
LONG WINAPI StayAfterCrash(EXCEPTION_POINTERS* /*pointers*/) {
  Sleep(INFINITE);
  return EXCEPTION_EXECUTE_HANDLER;
}

void EndFromAside(Way way) {
  if (way == Way::kExitProcess) ExitProcess(kEnded);
  if (way == Way::kTerminateSelf) TerminateProcess(GetCurrentProcess(), kEnded);
  if (way == Way::kFreeLibrary) {
    for (int i = 0; i < 5; ++i) FreeLibrary(GetModuleHandleW(L"KespCommObj.dll"));
    CoFreeUnusedLibraries();
    ExitProcess(kEnded);
  }
  // The test ends it.
  if (way == Way::kTerminated) Sleep(INFINITE);
}

unsigned Run(Way way, DWORD milliseconds, short number) {
  // The second thread begins when the first has set up COM.
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  Talkers warm_up;
  warm_up.network.Ask(L"*IDN?");
  const DWORD start = GetTickCount();
  bool is_due = false;
  std::thread([=] {
    thread_name = L"second";
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    if (const std::wstring port = Variable("KESP_THREADS_PORTS"); !port.empty()) TalkAtSerialLine(port);
    Talk(number);
  }).detach();
  // The test knows by this that calls are in progress.
  CloseHandle(CreateFileW(PathOf(L"talking").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  if (way == Way::kReturn || way == Way::kUninitialize) {
    while (!is_due) {
      warm_up.network.Ask(L"ECHO 1");
      WriteSettings(static_cast<short>(1 + number % kSettingsPorts));
      is_due = GetTickCount() - start >= milliseconds;
    }
    if (way == Way::kReturn) return kEnded;
    clients::BareSink sink([] { LeaveComAndLibrary(); });
    sink.Connect(warm_up.network.transport.Get(), __uuidof(__CKespTCP));
    warm_up.network.Ask(L"ECHO 2");
    return kEnded;
  }
  std::thread([=] {
    Sleep(milliseconds);
    EndFromAside(way);
  }).detach();
  // Every other client does nothing else on this thread than to write settings, so that some end in the midst
  // of that.
  for (short round = 0; number % 2 != 0; ++round) {
    WriteSettings(static_cast<short>(1 + (number + round) % kSettingsPorts));
  }
  Talk(static_cast<short>(number + 7));
  return 1;
}

}  // namespace
}  // namespace kesp::threads

int main(int count, char** arguments) {
  if (count != 5) return 2;
  SetUnhandledExceptionFilter(kesp::threads::StayAfterCrash);
  const std::string folder = arguments[3];
  kesp::threads::folder.assign(folder.begin(), folder.end());
  const auto way = static_cast<kesp::threads::Way>(std::atoi(arguments[1]));
  return static_cast<int>(kesp::threads::Run(way, static_cast<DWORD>(std::atoi(arguments[2])),
                                             static_cast<short>(std::atoi(arguments[4]))));
}
