// The stage of the discovery tests: a network whose instruments answer the broadcast and tell their identity.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "network/kesp_tcp_fixture.h"

namespace kesp {

// The address 10.0.0.n.
inline DatagramSender SenderAt(std::uint32_t n, std::uint16_t port = 30718) {
  return {.address = 0x0A000000 + n, .port = port};
}

inline const std::string kDiscoveryReply("\0\0\0\xF7 hello", 10);

// With the protocol of discovery, and settings of the client's own to be found again afterwards.
class KespTCPDiscoveryFixture : public KespTCPFixture {
 protected:
  KespTCPDiscoveryFixture() {
    tcp_->SetProtocol(EKespProtocol::sckUDPProtocol);
    tcp_->SetIPType(EIPType::ipDynamic);
    tcp_->SetTimeOutmSecs(5000);
    tcp_->SetIPAddress(L"10.9.9.9");
    tcp_->SetPort(1234);
    fakes_.clock.SetMillisecondOfSecond(0);
    socket_->on_connect = [this] {
      if (socket_->Protocol() == EKespProtocol::sckTCPProtocol) AnswerConnection();
    };
    socket_->on_send = [this](const std::string& bytes) {
      if (socket_->Protocol() == EKespProtocol::sckUDPProtocol) {
        AnswerBroadcast();
      } else if (bytes == "*IDN?\r") {
        AnswerIdentity();
      }
    };
  }

  // One answer to the broadcast, each with the next pump.
  void Answers(const DatagramSender& sender, const std::string& bytes = kDiscoveryReply) {
    answers_.emplace_back(sender, bytes);
  }
  // An instrument at 10.0.0.n that answers the broadcast, and with that identity.
  void PlaceInstrument(std::uint32_t n, const std::string& identity) {
    Answers(SenderAt(n));
    identities_[SenderAt(n).AddressText()] = identity + "\r";
  }

  bool Discover() { return tcp_->AutoDetect(result_); }

  std::int32_t Count() const { return tcp_->Devices()->Count(); }
  // The item's address, model and serial number, with "/" between them.
  std::wstring Device(std::int32_t index) const {
    const std::shared_ptr<Instrument>& item = tcp_->Devices()->Item(index);
    return item->IPAddress() + L"/" + item->Model() + L"/" + item->Serial();
  }
  Lines Devices() const {
    Lines all;
    for (std::int32_t i = 1; i <= Count(); ++i) all.push_back(Device(i));
    return all;
  }
  std::shared_ptr<Instrument> AddDevice(const std::wstring& address) {
    auto instrument = MakeInstrument();
    instrument->SetIPAddress(address);
    tcp_->Devices()->AddReference(instrument);
    return instrument;
  }

  // The lines of the journal that begin so.
  Lines LinesFrom(const std::wstring& beginning) {
    Lines found;
    for (const std::wstring& line : Journal()) {
      if (line.starts_with(beginning)) found.push_back(line);
    }
    return found;
  }

  void ExpectRestored() {
    EXPECT_EQ(tcp_->TimeOutmSecs(), 5000);
    EXPECT_EQ(tcp_->IPType(), EIPType::ipDynamic);
    EXPECT_EQ(tcp_->Protocol(), EKespProtocol::sckUDPProtocol);
    EXPECT_EQ(tcp_->State(), EKespTCPState::sckClosed);
    EXPECT_EQ(result_, L"");
    EXPECT_EQ(Journal().back(), L"AutoDetectEnd()");
  }

  std::vector<std::pair<DatagramSender, std::string>> answers_;
  std::map<std::wstring, std::string> identities_;
  // Connections to others stay unanswered.
  Lines unreachable_;
  std::wstring result_ = L"before";

 private:
  void AnswerBroadcast() {
    for (const auto& [sender, bytes] : answers_) socket_->ThenHears(sender, bytes);
  }
  void AnswerConnection() {
    const std::wstring host = socket_->RemoteHost();
    if (std::find(unreachable_.begin(), unreachable_.end(), host) == unreachable_.end())
      socket_->ThenConnects();
  }
  void AnswerIdentity() {
    const auto found = identities_.find(socket_->RemoteHost());
    if (found != identities_.end()) socket_->ThenReceives(found->second);
  }
};

}  // namespace kesp
