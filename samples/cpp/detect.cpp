// Looks for an instrument at an address, shows what is tried, and stops after so many commands.
//
//   detect.exe [host [port [commands]]]
#include "event_sink.h"

namespace {

class Watcher final : public EventSink {
 public:
  Watcher(IUnknown* tcp, int allowed) : EventSink(tcp, __uuidof(__CKespTCP)), allowed_(allowed) {}

  void Heard(DISPID event, const DISPPARAMS& arguments) override {
    constexpr DISPID kAutoDetectUpdate = 13, kAutoDetectEnd = 15;
    if (event == kAutoDetectEnd) std::printf("ended:       after %d commands\n", tried_);
    if (event != kAutoDetectUpdate) return;
    // cmd, IPAddress, Port, Abort: in reverse.
    const VARIANT* argument = arguments.rgvarg;
    if (tried_ == allowed_) {
      std::printf("stopped:     before %ls\n", V_BSTR(&argument[3]));
      *V_BOOLREF(&argument[0]) = VARIANT_TRUE;
    } else {
      ++tried_;
      std::printf("trying:      %ls at %ls:%d\n", V_BSTR(&argument[3]), V_BSTR(&argument[2]),
                  V_I2(&argument[1]));
    }
  }

 private:
  const int allowed_;
  int tried_ = 0;
};

}  // namespace

int wmain(int argc, wchar_t** argv) {
  return Run([&] {
    ComPtr<_CKespTCP> tcp;
    Check(CoCreateInstance(__uuidof(CKespTCP), nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&tcp)));
    Check(tcp->put_IPAddress(Text(Argument(argc, argv, 1, L"127.0.0.1")).get()));
    Check(tcp->put_Port(static_cast<SHORT>(std::stoi(Argument(argc, argv, 2, L"10001")))));
    Watcher watcher(tcp.Get(), std::stoi(Argument(argc, argv, 3, L"2")));
    Text result;
    VARIANT_BOOL found = VARIANT_FALSE, closed = VARIANT_FALSE;
    Check(tcp->AutoDetect(result.out(), dlAllCommands, &found));
    Check(tcp->Uninitialize(&closed));
    std::printf(found != VARIANT_FALSE ? "reply:       %ls\n" : "nothing found\n", result.c_str());
    return found != VARIANT_FALSE ? 0 : 1;
  });
}
