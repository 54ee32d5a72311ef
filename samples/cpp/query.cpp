// Asks an instrument on the network, at a COM port, or on the GPIB (IEEE-488), who it is, early bound.
//
//   query.exe [host [port [command]]]
//   query.exe COM3 [bits per second [command]]
//   query.exe GPIB5 [code of the character that ends a command [command]]
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

void UseBus(const ComPtr<IDispatch>& transport, int address, const std::wstring& eos) {
  ComPtr<_CKespIEEE> ieee;
  Check(transport.As(&ieee));
  Check(ieee->put_PrimaryAddress(static_cast<SHORT>(address)));
  Check(ieee->put_EOSChar(Text(eos).get()));
  // SetEOS would end a read at the first character of EOSChar, here "1". The END of the device is enough.
  Check(ieee->put_SetEOS(VARIANT_FALSE));
}

// The number in a name such as "COM3" or "GPIB5"; -1 for a place that does not begin so.
int NumberBehind(const std::wstring& prefix, const std::wstring& place) {
  const bool begins_so = _wcsnicmp(place.c_str(), prefix.c_str(), prefix.size()) == 0;
  return begins_so && iswdigit(place[prefix.size()]) != 0 ? _wtoi(place.c_str() + prefix.size()) : -1;
}

ComPtr<IDispatch> Select(_CKespCommObj* comm, ECommStyle style) {
  Check(comm->put_CommStyle(&style));
  ComPtr<IDispatch> transport;
  Check(comm->get_CommObject(&transport));
  return transport;
}

// `detail` is the TCP port, the bit rate, or the code of a line's end; empty for the usual one.
void UseInstrument(_CKespCommObj* comm, const std::wstring& place, const std::wstring& detail) {
  const auto detail_or = [&detail](const wchar_t* usual) { return detail.empty() ? usual : detail; };
  if (const int com_port = NumberBehind(L"COM", place); com_port >= 0) {
    UseSerialPort(Select(comm, csRS232), com_port, detail_or(L"9600"));
  } else if (const int address = NumberBehind(L"GPIB", place); address >= 0) {
    UseBus(Select(comm, csIEEE), address, detail_or(L"10"));
  } else {
    UseNetwork(Select(comm, csTCPIP), place, detail_or(L"10001"));
  }
}

// A reply from the GPIB is handed out as it came, line ends included.
std::wstring WithoutLineEnds(std::wstring text) {
  while (!text.empty() && (text.back() == L'\r' || text.back() == L'\n')) text.pop_back();
  return text;
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
    std::printf("reply:       %ls\n", WithoutLineEnds(result.c_str()).c_str());
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
