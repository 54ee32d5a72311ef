// The settings of the TCP/IP transport.
#include "console/received_bytes_win.h"
#include "console/timeouts.h"
#include "console/transport_settings_win.h"
#include "console/wide_text_win.h"

namespace kesp::console {
namespace {

constexpr char kCarriageReturn[] = "\r";

std::string TextOfCodes(const CharacterCodes& codes) {
  return ToUtf8(LibraryText(std::string(codes.begin(), codes.end())));
}

CharacterCodes CodesOfText(const std::string& utf8) {
  const std::string bytes = ReceivedBytes(ToWide(utf8));
  return {bytes.begin(), bytes.end()};
}

class TcpSettings : public TransportSettings {
 public:
  TcpSettings(_CKespCommObj* comm, const TcpAddress& address)
      : tcp_(Use<_CKespTCP>(comm, csTCPIP)), end_is_said_(!address.eos.empty()), any_(address.any) {
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

  // Among bytes the usual end is one of them: silence ends those, unless the address names their end.
  void Expect(Reply reply) override {
    const bool at_end = reply == Reply::kText ? !any_ : EndsBytes();
    Write(tcp_.Get(), &_CKespTCP::put_TerminateOnEOS, at_end);
  }
  bool EndsBytes() const override { return end_is_said_ && !any_; }

  void SetTimeout(int milliseconds) override { Check(tcp_->put_TimeOutmSecs(TcpTimeout(milliseconds))); }

  void LeaveLineEnds() override { Write(tcp_.Get(), &_CKespTCP::put_StripCRLF, false); }

 private:
  ComPtr<_CKespTCP> tcp_;
  bool end_is_said_;
  bool any_;
};

}  // namespace

std::unique_ptr<TransportSettings> ApplyTcp(_CKespCommObj* comm, const TcpAddress& address) {
  return std::make_unique<TcpSettings>(comm, address);
}

}  // namespace kesp::console
