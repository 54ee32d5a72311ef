// The stage of the discovery tests: a network whose instruments answer the broadcast and tell their identity.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "network/kesp_tcp_fixture.h"

namespace kesp {

// The address 10.0.0.n.
DatagramSender SenderAt(std::uint32_t n, std::uint16_t port = 30718);

inline const std::string kDiscoveryReply("\0\0\0\xF7 hello", 10);

// With the protocol of discovery, and settings of the client's own to be found again afterwards.
class KespTCPDiscoveryFixture : public KespTCPFixture {
 protected:
  KespTCPDiscoveryFixture();
  ~KespTCPDiscoveryFixture() override;

  // One answer to the broadcast, each with the next pump.
  void Answers(const DatagramSender& sender, const std::string& bytes = kDiscoveryReply);
  // An instrument at 10.0.0.n that answers the broadcast, and with that identity.
  void PlaceInstrument(std::uint32_t n, const std::string& identity);

  bool Discover();

  std::int32_t Count() const;
  // The item's address, model and serial number, with "/" between them.
  std::wstring Device(std::int32_t index) const;
  Lines Devices() const;
  std::shared_ptr<Instrument> AddDevice(const std::wstring& address);

  // The lines of the journal that begin so.
  Lines LinesFrom(const std::wstring& beginning);

  void ExpectRestored();

  std::vector<std::pair<DatagramSender, std::string>> answers_;
  std::map<std::wstring, std::string> identities_;
  // Connections to others stay unanswered.
  Lines unreachable_;
  std::wstring result_ = L"before";

 private:
  void AnswerBroadcast();
  void AnswerConnection();
  void AnswerIdentity();
};

}  // namespace kesp
