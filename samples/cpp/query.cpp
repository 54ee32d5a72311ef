// Asks an instrument on the network, or at a COM port, who it is, early bound.
//
//   query.exe [host [port [command]]]
//   query.exe COM3 [bits per second [command]]
//
// Needs KespCommObj.h (include/, made from KespCommObj.idl) and links ole32, oleaut32 and uuid.
#include <KespCommObj.h>
#include <wrl/client.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

using Microsoft::WRL::ComPtr;

namespace {

// A text for COM, freed at the end of its life.
class Text {
 public:
  Text() = default;
  explicit Text(const std::wstring& text) : bstr_(SysAllocString(text.c_str())) {}
  ~Text() { SysFreeString(bstr_); }
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;

  BSTR get() const { return bstr_; }
  BSTR* out() { return &bstr_; }
  const wchar_t* c_str() const { return bstr_ != nullptr ? bstr_ : L""; }

 private:
  BSTR bstr_ = nullptr;
};

// Turns a failed call into an exception with the library's own description.
void Check(HRESULT result) {
  if (SUCCEEDED(result)) return;
  std::string message = "error " + std::to_string(result);
  ComPtr<IErrorInfo> info;
  if (GetErrorInfo(0, &info) == S_OK) {
    Text description;
    info->GetDescription(description.out());
    const std::wstring text = description.c_str();
    message += ": " + std::string(text.begin(), text.end());
  }
  throw std::runtime_error(message);
}

std::wstring TraceFile() {
  wchar_t folder[MAX_PATH] = L"";
  GetTempPathW(MAX_PATH, folder);
  return std::wstring(folder) + L"query-cpp.log";
}

void UseNetwork(const ComPtr<IDispatch>& transport, const std::wstring& host, const std::wstring& port) {
  ComPtr<_CKespTCP> tcp;
  Check(transport.As(&tcp));
  Check(tcp->put_IPAddress(Text(host).get()));
  Check(tcp->put_Port(static_cast<SHORT>(_wtoi(port.c_str()))));
}

// A rate is set by its number, which has the rate as its name; the range that allows it comes first.
void SetBaudRate(_CKespCOMPort3* serial, const std::wstring& baud) {
  Check(serial->put_MaxBaudRate(br921600));
  Check(serial->put_MinBaudRate(br150));
  for (int rate = br150; rate <= br921600; ++rate) {
    Text name;
    Check(serial->BaudRateName(static_cast<EKespBaudRate3>(rate), name.out()));
    if (name.c_str() == baud) return Check(serial->put_BaudRate(static_cast<EKespBaudRate3>(rate)));
  }
  throw std::runtime_error("not a bit rate of this library");
}

void UseSerialPort(const ComPtr<IDispatch>& transport, int port, const std::wstring& baud) {
  ComPtr<_CKespCOMPort3> serial;
  Check(transport.As(&serial));
  Check(serial->put_Port(static_cast<SHORT>(port)));
  SetBaudRate(serial.Get(), baud);
}

// The number in a name such as "COM3"; 0 for the name of a host.
int ComPortOf(const std::wstring& place) {
  return _wcsnicmp(place.c_str(), L"COM", 3) == 0 ? _wtoi(place.c_str() + 3) : 0;
}

// `detail` is the TCP port, or the bit rate; empty for the usual one.
void UseInstrument(_CKespCommObj* comm, const std::wstring& place, const std::wstring& detail) {
  const int com_port = ComPortOf(place);
  ECommStyle style = com_port != 0 ? csRS232 : csTCPIP;
  Check(comm->put_CommStyle(&style));
  ComPtr<IDispatch> transport;
  Check(comm->get_CommObject(&transport));
  if (com_port != 0) {
    UseSerialPort(transport, com_port, detail.empty() ? L"9600" : detail);
  } else {
    UseNetwork(transport, place, detail.empty() ? L"10001" : detail);
  }
}

bool Query(const std::wstring& place, const std::wstring& detail, const std::wstring& cmd) {
  ComPtr<_CKespCommObj> comm;
  Check(CoCreateInstance(__uuidof(CKespCommObj), nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&comm)));
  UseInstrument(comm.Get(), place, detail);
  Check(comm->put_DebugFilename(Text(TraceFile()).get()));
  Check(comm->put_Debugging(VARIANT_TRUE));

  Text result;
  VARIANT_BOOL succeeded = VARIANT_FALSE;
  Check(comm->Query(result.out(), Text(cmd).get(), nullptr, nullptr, &succeeded));
  std::printf("command:     %ls\n", cmd.c_str());
  if (succeeded != VARIANT_FALSE) {
    std::printf("reply:       %ls\n", result.c_str());
  } else {
    Text source;
    Text description;
    Check(comm->get_CommErrorSource(source.out()));
    Check(comm->get_CommErrorDescr(description.out()));
    std::printf("source:      %ls\ndescription: %ls\n", source.c_str(), description.c_str());
  }
  ECommError status = cfrOtherError;
  Check(comm->get_CommError(&status));
  std::printf("status:      %d\ntrace file:  %ls\n", static_cast<int>(status), TraceFile().c_str());
  return succeeded != VARIANT_FALSE;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  const std::wstring place = argc > 1 ? argv[1] : L"127.0.0.1";
  const std::wstring detail = argc > 2 ? argv[2] : L"";
  const std::wstring cmd = argc > 3 ? argv[3] : L"*IDN?";
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 2;
  int code = 0;
  try {
    code = Query(place, detail, cmd) ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    code = 2;
  }
  CoUninitialize();
  return code;
}
