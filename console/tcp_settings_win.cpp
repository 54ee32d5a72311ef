// The settings of the TCP/IP transport.
#include <algorithm>

#include "console/timeouts.h"
#include "console/transport_settings_win.h"
#include "console/wide_text_win.h"

namespace kesp::console {
namespace {

constexpr char kCarriageReturn[] = "\r";

// The library sends and compares bytes of the system's code page.
std::string TextOfCodes(const CharacterCodes& codes) {
  const std::string bytes(codes.begin(), codes.end());
  const int length = static_cast<int>(bytes.size());
  std::wstring wide(bytes.size(), L'\0');
  wide.resize(static_cast<std::size_t>(
      MultiByteToWideChar(CP_ACP, 0, bytes.data(), length, wide.data(), static_cast<int>(wide.size()))));
  return ToUtf8(wide);
}

CharacterCodes CodesOfText(const std::string& utf8) {
  const std::wstring wide = ToWide(utf8);
  std::string bytes(wide.size() * 2, '\0');
  bytes.resize(static_cast<std::size_t>(
      WideCharToMultiByte(CP_ACP, 0, wide.data(), static_cast<int>(wide.size()), bytes.data(),
                          static_cast<int>(bytes.size()), nullptr, nullptr)));
  return {bytes.begin(), bytes.end()};
}

class TcpSettings : public TransportSettings {
 public:
  TcpSettings(_CKespCommObj* comm, const TcpAddress& address) : tcp_(Use<_CKespTCP>(comm, csTCPIP)) {
    Write(tcp_.Get(), &_CKespTCP::put_IPAddress, address.host);
    Check(tcp_->put_Port(static_cast<short>(address.port)));
    if (!address.eos.empty()) Write(tcp_.Get(), &_CKespTCP::put_EOSChar, TextOfCodes(address.eos));
    Write(tcp_.Get(), &_CKespTCP::put_TerminateOnEOS, !address.any);
  }

  Address Read() override {
    TcpAddress address;
    address.host = console::Read(tcp_.Get(), &_CKespTCP::get_IPAddress);
    address.port = console::Read(tcp_.Get(), &_CKespTCP::get_Port);
    address.any = !console::Read(tcp_.Get(), &_CKespTCP::get_TerminateOnEOS);
    const std::string eos = console::Read(tcp_.Get(), &_CKespTCP::get_EOSChar);
    if (!address.any && eos != kCarriageReturn) address.eos = CodesOfText(eos);
    return address;
  }

  void SetTimeout(int milliseconds) override { Check(tcp_->put_TimeOutmSecs(TcpTimeout(milliseconds))); }

  void LeaveLineEnds() override { Write(tcp_.Get(), &_CKespTCP::put_StripCRLF, false); }

 private:
  ComPtr<_CKespTCP> tcp_;
};

}  // namespace

std::unique_ptr<TransportSettings> ApplyTcp(_CKespCommObj* comm, const TcpAddress& address) {
  return std::make_unique<TcpSettings>(comm, address);
}

}  // namespace kesp::console
