// The network transport's discovery: one broadcast, the senders of the answers, and what each says it is.
#include <algorithm>
#include <string_view>
#include <vector>

#include "network/instrument_identity.h"
#include "network/kesp_tcp.h"
#include "support/attempt.h"
#include "support/error_numbers.h"
#include "support/text.h"
#include "support/timing.h"

namespace kesp {

namespace {

constexpr wchar_t kBroadcastSource[] = L"[CKespTCP - UDPBroadcast()]";
constexpr wchar_t kBroadcastAddress[] = L"255.255.255.255";
constexpr std::int32_t kDiscoveryPort = 30718;
constexpr std::string_view kDiscoveryQuery("\x00\x01\x00\xF6", 4);
// An answer to the query holds this byte, somewhere. The query does not, so its own echo is none.
constexpr char kReplyMark = '\xF7';

// Where instruments that were found are asked for their identity.
constexpr std::int16_t kInstrumentPort = 10001;

// Forged senders could go on without end. More than a network that takes broadcasts has.
constexpr std::int32_t kMostDevices = 4096;
// Asking one of them may take seconds, and all of them, when they are forged, hours. No one is asked after so
// long.
constexpr std::int32_t kLongestWalkMs = 10 * 60 * 1000;

// Runs one step of the broadcast. A failure of the socket becomes that error, which quotes it.
template <class Step>
void OrRaise(std::int32_t error, const std::wstring& what, Step step) {
  try {
    step();
  } catch (...) {
    throw Failure(error, kBroadcastSource, what + L" (" + NumberAndDescription(CurrentFailure()) + L")");
  }
}

}  // namespace

bool CKespTCP::Discover() {
  const std::uint32_t replies = replies_heard_;
  device_addresses_.Restart();
  const Attempt search = Try([this] {
    if (UDPBroadcast()) GatherReplies();
    return true;
  });
  // From here on nobody is added. A handler may have made a connection of its own.
  Disconnect();
  if (search.error) throw *search.error;
  if (replies_heard_ == replies) return false;
  log_.Write([this] {
    return L"UDP discovery successful. Found " + std::to_wstring(devices_->Count()) + L" devices.";
  });
  port_ = kInstrumentPort;
  protocol_ = EKespProtocol::sckTCPProtocol;
  ip_type_ = EIPType::ipStatic;
  IdentifyDevices();
  return true;
}

bool CKespTCP::UDPBroadcast() {
  connected_ = false;
  CloseBeforeConnecting(kBroadcastSource);
  OrRaise(tcp_error::ERR_CONNECTING, L"Unable to establish connection", [this] {
    socket_->SetProtocol(EKespProtocol::sckUDPProtocol);
    socket_->Connect(kBroadcastAddress, kDiscoveryPort);
  });
  log_.Write([this] {
    return L"Sending broadcast command to " + socket_->RemoteHost() + L" on port " +
           std::to_wstring(socket_->RemotePort()) + L"...";
  });
  if (socket_->State() != EKespTCPState::sckOpen) return false;
  OrRaise(tcp_error::ERR_SEND_DATA, L"Unable to send data", [this] { socket_->SendData(kDiscoveryQuery); });
  return true;
}

// Until the time is up, however many there are.
void CKespTCP::GatherReplies() {
  const ElapsedSeconds waited(environment_.clock);
  while (AwaitReply(waited, kBroadcastSource)) data_ready_ = false;
}

// One datagram that has arrived.
void CKespTCP::TakeReply() {
  const std::optional<DatagramSender> sender = socket_->Sender();
  if (!sender) return;  // a handler took it
  const std::wstring address = sender->AddressText();
  log_.Write([&] { return L"Receiving from " + address + L":" + std::to_wstring(sender->port); });
  const bool is_reply = socket_->PeekData().find(kReplyMark) != std::string_view::npos;
  if (is_reply) data_ready_ = true;
  const std::string data = TakeData();
  log_.Write([&] { return L"Received buffer data: " + SystemCodePage().FromBytes(data); });
  if (is_reply) StoreDevice(address);
}

void CKespTCP::StoreDevice(const std::wstring& address) {
  ++replies_heard_;
  if (device_addresses_.Holds(*devices_, address)) {
    log_.Write([&] { return L"Duplicate device: " + address; });
    return;
  }
  if (devices_->Count() >= kMostDevices) {
    log_.Write([&] { return L"Too many devices, not stored: " + address; });
    return;
  }
  const std::shared_ptr<Instrument> instrument = make_instrument_();
  instrument->SetIPAddress(address);
  devices_->AddReference(instrument);
  log_.Write([&] { return L"Stored object for discovered device at " + address; });
}

void CKespTCP::IdentifyDevices() {
  std::vector<std::shared_ptr<Instrument>> devices = devices_->Items();
  std::reverse(devices.begin(), devices.end());
  const std::uint32_t removals = devices_->Removals();
  const ElapsedSeconds walked(environment_.clock);
  for (const auto& device : devices) {
    const bool is_gone = devices_->Removals() != removals && !devices_->Contains(*device);
    if (is_gone) continue;
    if (walked.Exceeds(kLongestWalkMs)) {
      log_.Write(L"Ten minutes are over, the other devices are not asked");
      return;
    }
    Identify(*device);
  }
}

// Whatever fails here, the next device may do better.
void CKespTCP::Identify(Instrument& device) {
  Try([&] {
    const std::wstring address = device.IPAddress();
    // A handler may have connected since the last device.
    Disconnect();
    SetIPAddress(address);
    std::wstring reply;
    Initialize();
    WriteLine(L"*IDN?");
    ReadLine(reply);
    const bool is_its_own = socket_->RemoteHost() == address;
    const std::optional<InstrumentIdentity> identity = IdentityIn(reply);
    if (is_its_own && identity) {
      device.SetModel(identity->model);
      device.SetSerial(identity->serial);
    }
    return true;
  });
  Disconnect();
}

}  // namespace kesp
