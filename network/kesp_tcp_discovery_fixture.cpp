// The stage of the discovery tests: what the instruments answer, and what was found.
#include "network/kesp_tcp_discovery_fixture.h"

#include <algorithm>

namespace kesp {

DatagramSender SenderAt(std::uint32_t n, std::uint16_t port) {
  return {.address = 0x0A000000 + n, .port = port};
}

KespTCPDiscoveryFixture::KespTCPDiscoveryFixture() {
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

KespTCPDiscoveryFixture::~KespTCPDiscoveryFixture() = default;

void KespTCPDiscoveryFixture::Answers(const DatagramSender& sender, const std::string& bytes) {
  answers_.emplace_back(sender, bytes);
}

void KespTCPDiscoveryFixture::PlaceInstrument(std::uint32_t n, const std::string& identity) {
  Answers(SenderAt(n));
  identities_[SenderAt(n).AddressText()] = identity + "\r";
}

bool KespTCPDiscoveryFixture::Discover() {
  return tcp_->AutoDetect(result_);
}

std::int32_t KespTCPDiscoveryFixture::Count() const {
  return tcp_->Devices()->Count();
}

std::wstring KespTCPDiscoveryFixture::Device(std::int32_t index) const {
  const std::shared_ptr<Instrument>& item = tcp_->Devices()->Item(index);
  return item->IPAddress() + L"/" + item->Model() + L"/" + item->Serial();
}

Lines KespTCPDiscoveryFixture::Devices() const {
  Lines all;
  for (std::int32_t i = 1; i <= Count(); ++i) all.push_back(Device(i));
  return all;
}

std::shared_ptr<Instrument> KespTCPDiscoveryFixture::AddDevice(const std::wstring& address) {
  auto instrument = MakeInstrument();
  instrument->SetIPAddress(address);
  tcp_->Devices()->AddReference(instrument);
  return instrument;
}

Lines KespTCPDiscoveryFixture::LinesFrom(const std::wstring& beginning) {
  Lines found;
  for (const std::wstring& line : Journal()) {
    if (line.starts_with(beginning)) found.push_back(line);
  }
  return found;
}

void KespTCPDiscoveryFixture::ExpectRestored() {
  EXPECT_EQ(tcp_->TimeOutmSecs(), 5000);
  EXPECT_EQ(tcp_->IPType(), EIPType::ipDynamic);
  EXPECT_EQ(tcp_->Protocol(), EKespProtocol::sckUDPProtocol);
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckClosed);
  EXPECT_EQ(result_, L"");
  EXPECT_EQ(Journal().back(), L"AutoDetectEnd()");
}

void KespTCPDiscoveryFixture::AnswerBroadcast() {
  for (const auto& [sender, bytes] : answers_) socket_->ThenHears(sender, bytes);
}

void KespTCPDiscoveryFixture::AnswerConnection() {
  const std::wstring host = socket_->RemoteHost();
  if (std::find(unreachable_.begin(), unreachable_.end(), host) == unreachable_.end())
    socket_->ThenConnects();
}

void KespTCPDiscoveryFixture::AnswerIdentity() {
  const auto found = identities_.find(socket_->RemoteHost());
  if (found != identities_.end()) socket_->ThenReceives(found->second);
}

}  // namespace kesp
