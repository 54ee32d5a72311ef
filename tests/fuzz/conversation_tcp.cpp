// The client of a conversation with the network transport: connections, searches and settings, and what must
// come of them.
#include "tests/fuzz/conversation_tcp.h"

#include "support/error_numbers.h"

namespace kesp {

namespace {

using namespace tcp_error;

constexpr std::size_t kMostCalls = 4;  // inside one another
constexpr int kMostActions = 300;

constexpr std::uint32_t kTicks[] = {1'000'000, 0x7FFFF000, 0xFFFFF000, 0};
constexpr const wchar_t* kAddresses[] = {L"10.0.0.7", L"instrument.lab", L"0.0.0.0", L"", L"10.0.0.1"};
constexpr std::int16_t kTimeOuts[] = {3000, 0, 1000, 999, 32767, -1, 250, -32768};

}  // namespace

TcpConversation::TcpConversation(FuzzInput& input) : input_(input) {
  const std::uint8_t beginning = input_.Byte();
  world_.clock.Begin(kTicks[beginning % 4], beginning * 4U);
  world_.pump.on_pump = [this] { socket_->Step(); };
  listens_ = beginning < 0xE0;
  SocketWatcher& watcher = *this;
  CKespTCPEvents* const events = listens_ ? this : nullptr;
  tcp_ = std::make_unique<CKespTCP>(
      world_.environment,
      [this, &watcher](SocketListener& listener) {
        auto socket = std::make_unique<ConversationSocket>(listener, watcher, world_.clock, input_);
        socket_ = socket.get();
        return socket;
      },
      MakeInstrument, events);
  tcp_->SetIPAddress(L"10.0.0.7");
  tcp_->SetPort(5025);
}

TcpConversation::~TcpConversation() = default;

void TcpConversation::Run() {
  while (input_.HasMore() && actions_ < kMostActions) Act();
  Require(calls_.empty() && open_events_.empty(), "each event that has begun has ended");
  const bool ends_at_once = tcp_->Port() % 2 == 0;
  if (!ends_at_once) QueryAtTheEnd();
}

// One thing that the client does, by itself or in a handler.
void TcpConversation::Act() {
  if (calm_ || calls_.size() >= kMostCalls || ++actions_ > kMostActions) return;
  for (Call* call : calls_) call->interfered = true;
  const std::uint8_t action = input_.Byte();
  switch (action % 16) {
    case 0:
    case 1:
      return WriteLine();
    case 2:
    case 3:
      return ReadLine();
    case 4:
      return ReadLineBinary();
    case 5:
    case 6:
      return Initialize();
    case 7:
      return Uninitialize();
    case 8:
      return AutoDetect();
    case 9:
    case 10:
      return ChangeSetting();
    case 11:
      return ChangeFlags();
    case 12:
      world_.clock.Advance(action * 8U);
      return;
    case 13:
      socket_->FailCall(1 + action / 64, 10049);
      return;
    case 14:
      socket_->closing_reads = action >= 0xE0 ? 1 + action % 3 * 40 : 0;
      socket_->close_fails = action >= 0x80;
      return;
    default:
      Require(tcp_->State() == socket_->PresentState(), "the state is that of the socket");
      world_.pump.PumpOnce();
  }
}

// A handler, which sometimes calls back in.
void TcpConversation::Answer() {
  if (calm_ || !input_.HasMore() || input_.Byte() % 4 != 3) return;
  Act();
}

void TcpConversation::Initialize() {
  const Known connected = connected_;
  const std::wstring address = tcp_->IPAddress();
  Call call;
  const Attempt attempt = Do(Member::kInitialize, 0, call, [&] { return tcp_->Initialize(); });
  Require(call.connects <= 4, "four attempts at most");
  if (attempt.succeeded) {
    if (call.connects == 0) {
      Require(connected != Known::kNo && call.pumpings == 0, "nothing is connected without an attempt");
      connected_ = Known::kYes;
      return;
    }
    Require(connected != Known::kYes && connected_ != Known::kNo, "a connection has come about");
    connected_ = Known::kYes;
    Require(socket_->PresentState() == EKespTCPState::sckConnected, "a connection is there");
    Forget();
    return;
  }
  Require(connected != Known::kYes && attempt.error.has_value(), "a connected object is left as it is");
  if (connected_ == Known::kUnknown && !call.interfered) connected_ = Known::kNo;
  switch (attempt.number()) {
    case ERR_INVALID_IP_ADDRESS:
      Require(address == L"0.0.0.0" && call.pumpings == 0, "an address that is none is refused");
      return;
    case ERR_CONNECTING:
      Require(call.socket_failed, "connecting fails as the socket does");
      return;
    case ERR_TIMEOUT:
      Require(IsTimeOver(call), "a connection fails when the time is over");
      Require(
          call.connects == 4 || call.connects == 0 || socket_->PresentState() != EKespTCPState::sckConnecting,
          "a host that does not answer is tried four times");
      return;
    default:
      Require(call.closing_failed, "connecting fails for a reason that is known");
  }
}

void TcpConversation::Uninitialize() {
  const Known connected = connected_;
  Call call;
  const Attempt attempt = Do(Member::kUninitialize, 0, call, [&] { return tcp_->Uninitialize(); });
  Require(call.pumpings == 0, "Uninitialize does not wait");
  Require(call.closings <= 1 &&
              (connected == Known::kUnknown || call.closings == (connected == Known::kYes ? 1 : 0)),
          "Uninitialize closes what is connected");
  if (attempt.error) {
    Require(attempt.number() == ERR_CLOSING && call.closing_failed, "closing fails as the socket does");
    connected_ = Known::kYes;
    return;
  }
  Require(attempt.succeeded, "Uninitialize returns True");
  connected_ = Known::kNo;
}

void TcpConversation::AutoDetect() {
  const auto level = static_cast<EDetectLevel>(input_.Byte() % 5);
  const std::int16_t time_out = tcp_->TimeOutmSecs();
  const EIPType type = tcp_->IPType();
  const EKespProtocol protocol = tcp_->Protocol();
  std::wstring result = L"before";
  Call call;
  const Attempt attempt = Do(Member::kAutoDetect, 0, call, [&] { return tcp_->AutoDetect(result, level); });
  if (!call.interfered) {
    Require(tcp_->TimeOutmSecs() == time_out && tcp_->IPType() == type && tcp_->Protocol() == protocol,
            "a detection leaves time-out, type and protocol");
  }
  switch (attempt.number()) {
    case 0:
    case ERR_INVALID_IP_ADDRESS:
    case ERR_INVALID_PORT:
      break;
    case ERR_TIMEOUT:
    case ERR_CONNECTING:
    case ERR_SEND_DATA:
      Require(protocol == EKespProtocol::sckUDPProtocol || call.interfered, "nobody there is nothing found");
      break;
    case ERR_GET_DATA:
      Require(call.interfered, "a discovery drops no data but that of a handler's own connection");
      break;
    default:
      Require(call.closing_failed, "a detection fails for a reason that is known");
  }
  if (!attempt.succeeded || protocol == EKespProtocol::sckUDPProtocol) {
    Require(result.empty() || call.interfered, "nothing found is an empty result");
  }
  SettleAfterDetection(call, attempt.succeeded, protocol);
}

// What is known of the object after a detection.
void TcpConversation::SettleAfterDetection(const Call& call, bool found, EKespProtocol protocol) {
  if (call.interfered || call.closing_failed) {
    // The end of a discovery has told already.
    if (!call.discovers || !listens_) connected_ = Known::kUnknown;
    ready_known_ = false;
    return;
  }
  const bool is_closed = socket_->PresentState() == EKespTCPState::sckClosed || socket_->closing_reads > 0;
  if (protocol == EKespProtocol::sckUDPProtocol) {
    Require(is_closed, "a discovery leaves no connection open");
    connected_ = Known::kNo;
  } else if (!found && socket_->PresentState() != EKespTCPState::sckConnected) {
    Require(is_closed, "what is no connection is closed after a detection");
    connected_ = Known::kNo;
  }
}

void TcpConversation::ChangeSetting() {
  const std::uint8_t setting = input_.Byte();
  switch (setting % 6) {
    case 0: {
      eos_ = WideText(input_.Bytes(setting / 6 % 5));
      tcp_->SetEOSChar(eos_);
      Require(tcp_->EOSChar() == eos_, "EOSChar is kept");
      return;
    }
    case 1:
      return tcp_->SetTimeOutmSecs(kTimeOuts[setting / 6 % 8]);
    case 2:
      return tcp_->SetProtocol(static_cast<EKespProtocol>(setting / 6 % 2));
    case 3: {
      const std::wstring address = kAddresses[setting / 6 % 5];
      const Attempt attempt = Try([&] { return tcp_->SetIPAddress(address), true; });
      Require(attempt.number() == (address.empty() ? ERR_INVALID_IP_ADDRESS : 0),
              "only an empty address is refused");
      return;
    }
    case 4: {
      const auto port = static_cast<std::int16_t>(input_.Word());
      const Attempt attempt = Try([&] { return tcp_->SetPort(port), true; });
      Require(attempt.number() == (port < 1 ? ERR_INVALID_PORT : 0), "ports begin at 1");
      return;
    }
    default:
      if (setting >= 0x80) tcp_->Devices()->Clear();
      tcp_->SetIPType(static_cast<EIPType>(setting / 6 % 2));
  }
}

void TcpConversation::ChangeFlags() {
  const std::uint8_t flags = input_.Byte();
  tcp_->SetTerminateOnEOS((flags & 1) == 0);
  tcp_->SetStripCRLF((flags & 2) == 0);
  tcp_->SetCheckNonAscii((flags & 4) == 0);
  tcp_->SetCreateLogFile((flags & 8) != 0);
  world_.files.appends = (flags & 16) == 0;
}

// Whatever has happened, the same object works again.
void TcpConversation::QueryAtTheEnd() {
  calm_ = true;
  socket_->BeGood("GOOD\r");
  tcp_->SetTerminateOnEOS(true);
  tcp_->SetStripCRLF(true);
  tcp_->SetEOSChar(L"\r");
  eos_ = L"\r";
  tcp_->SetTimeOutmSecs(3000);
  tcp_->SetProtocol(EKespProtocol::sckTCPProtocol);
  tcp_->SetIPAddress(L"10.0.0.7");
  tcp_->SetPort(5025);
  Uninitialize();
  Initialize();
  Require(connected_ == Known::kYes, "the object connects again");
  WriteLine();
  std::wstring result;
  Call call;
  const Attempt attempt = Do(Member::kReadLine, 0, call, [&] { return tcp_->ReadLine(result); });
  Require(attempt.succeeded && result == L"GOOD", "the object makes a correct query again");
}

}  // namespace kesp
