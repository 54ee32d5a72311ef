// Discoveries of the fuzzer's making: datagrams, items of the collection, and the walk over them.
#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "network/kesp_tcp.h"
#include "support/attempt.h"
#include "support/error_numbers.h"
#include "support/text.h"
#include "tests/fuzz/conversation_replies.h"
#include "tests/fuzz/conversation_socket.h"

namespace kesp {

namespace {

using namespace tcp_error;

constexpr int kMostActions = 60;
constexpr int kMostCalls = 3;  // inside one another

// A client's own item, which does something when it is looked at.
class ClientInstrument final : public Instrument {
 public:
  explicit ClientInstrument(std::function<void()> action) : action_(std::move(action)) {}

  std::wstring Model() const override { return record_.Model(); }
  void SetModel(const std::wstring& value) override {
    action_();
    record_.SetModel(value);
  }
  std::wstring Serial() const override { return record_.Serial(); }
  void SetSerial(const std::wstring& value) override { record_.SetSerial(value); }
  std::wstring IPAddress() const override {
    action_();
    return record_.IPAddress();
  }
  void SetIPAddress(const std::wstring& value) override { record_.SetIPAddress(value); }
  EIPType IPType() const override { return record_.IPType(); }
  void SetIPType(EIPType value) override { record_.SetIPType(value); }
  std::wstring MACAddress() const override { return record_.MACAddress(); }
  void SetMACAddress(const std::wstring& value) override { record_.SetMACAddress(value); }

 private:
  std::function<void()> action_;
  CInstrument record_;
};

// Model and serial number as the reference takes them out of an answer: the second and the third field.
std::vector<std::wstring> FieldsOf(const std::wstring& answer) {
  std::vector<std::wstring> fields(1);
  for (const wchar_t character : answer) {
    if (character == L',') {
      fields.emplace_back();
    } else {
      fields.back() += character;
    }
  }
  return fields;
}

class DiscoveryConversation : private CKespTCPEvents, private SocketWatcher {
 public:
  explicit DiscoveryConversation(FuzzInput& input) : input_(input) {
    world_.pump.on_pump = [this] { socket_->Step(); };
    SocketWatcher& watcher = *this;
    CKespTCPEvents& events = *this;
    tcp_ = std::make_unique<CKespTCP>(
        world_.environment,
        [this, &watcher](SocketListener& listener) {
          auto socket = std::make_unique<ConversationSocket>(listener, watcher, world_.clock, input_);
          socket_ = socket.get();
          return socket;
        },
        MakeInstrument, &events);
    tcp_->SetProtocol(EKespProtocol::sckUDPProtocol);
  }

  void Run() {
    while (input_.HasMore() && actions_ < kMostActions) Act();
    DiscoverAtTheEnd();
  }

 private:
  // What one discovery came across.
  struct Discovery {
    std::vector<std::wstring> senders;  // of answers, in their order
    std::vector<std::wstring> asked;    // each once
    std::map<std::wstring, std::string> replies;
    bool socket_failed = false;
    bool interfered = false;
  };

  void Act();
  void Answer() {
    if (calm_ || !input_.HasMore() || input_.Byte() % 8 != 7) return;
    Act();
  }
  void Discover();
  std::vector<std::wstring> Addresses();
  void CheckDevices(const Discovery& discovery, const std::vector<std::wstring>& before);
  void CheckIdentities(const Discovery& discovery);
  void AddItem(std::uint8_t how);
  void ChangeSettings(std::uint8_t flags);
  void DiscoverAtTheEnd();

  // SocketWatcher
  void Failing() override {
    if (!discoveries_.empty()) discoveries_.back()->socket_failed = true;
  }
  void Message() override { Answer(); }
  void Connecting() override {
    if (discoveries_.empty() || socket_->Protocol() == EKespProtocol::sckUDPProtocol) return;
    std::vector<std::wstring>& asked = discoveries_.back()->asked;
    const std::wstring address = tcp_->IPAddress();
    if (asked.empty() || asked.back() != address) asked.push_back(address);
    Require(tcp_->Port() == 10001, "instruments are asked at their port");
  }
  void Sending(std::string_view bytes, bool) override {
    if (discoveries_.empty() || discoveries_.back()->interfered) return;
    const bool is_broadcast = socket_->Protocol() == EKespProtocol::sckUDPProtocol;
    Require(bytes == (is_broadcast ? std::string_view("\x00\x01\x00\xF6", 4) : std::string_view("*IDN?\r")),
            "a discovery sends what it is to send");
  }
  void Taken(const std::string& bytes) override {
    if (discoveries_.empty() || socket_->Protocol() == EKespProtocol::sckUDPProtocol) return;
    discoveries_.back()->replies[tcp_->IPAddress()] = bytes;
  }

  // CKespTCPEvents
  void ConnectBegin() override { Answer(); }
  void ConnectEnd() override { Answer(); }
  void SendProgressBegin(std::int32_t, std::int32_t) override {}
  void SendProgressEnd() override { Answer(); }
  void SendCompleteBegin() override {}
  void SendCompleteEnd() override {}
  void DataArrivalBegin(std::int32_t) override {
    Answer();
    const std::optional<DatagramSender> sender = socket_->Sender();
    if (discoveries_.empty() || !sender || socket_->PeekData().find('\xF7') == std::string_view::npos) return;
    discoveries_.back()->senders.push_back(sender->AddressText());
  }
  void DataArrivalEnd() override { Answer(); }
  void ErrorBegin(std::int16_t, std::wstring&, std::int32_t, const std::wstring&, const std::wstring&,
                  std::int32_t, bool&) override {}
  void ErrorEnd() override { Answer(); }
  void CloseBegin() override { Answer(); }
  void CloseEnd() override {}
  void AutoDetectUpdate(const std::wstring&, const std::wstring&, std::int16_t, bool&) override {}
  void AutoDetectBegin() override { Answer(); }
  void AutoDetectEnd() override { Answer(); }
  void ReadInvalidChars(const std::wstring&, std::int16_t, const std::wstring&) override { Answer(); }
  std::shared_ptr<void> KeepAlive() override { return nullptr; }

  FuzzInput& input_;
  ConversationWorld world_;
  ConversationSocket* socket_ = nullptr;
  std::unique_ptr<CKespTCP> tcp_;
  std::vector<Discovery*> discoveries_;
  int actions_ = 0;
  int depth_ = 0;
  bool calm_ = false;
};

void DiscoveryConversation::Act() {
  if (calm_ || depth_ >= kMostCalls || ++actions_ > kMostActions) return;
  for (Discovery* discovery : discoveries_) discovery->interfered = true;
  ++depth_;
  const std::uint8_t action = input_.Byte();
  CInstruments& devices = *tcp_->Devices();
  switch (action % 8) {
    case 0:
    case 1:
      Discover();
      break;
    case 2:
      AddItem(action);
      break;
    case 3:
      if (devices.Count() > 0) devices.Remove(std::int32_t{action} % devices.Count() + 1);
      break;
    case 4:
      devices.Clear();
      break;
    case 5:
      ChangeSettings(input_.Byte());
      break;
    case 6:
      socket_->FailCall(1 + action / 64, 10051);
      break;
    default:
      std::wstring reply;
      Try([&] { return action < 0x80 ? tcp_->Initialize() : tcp_->ReadLine(reply); });
      if (action >= 0xC0) Try([&] { return tcp_->Uninitialize(); });
  }
  --depth_;
}

void DiscoveryConversation::AddItem(std::uint8_t how) {
  constexpr const wchar_t* kAddresses[] = {L"10.0.0.1", L"10.0.0.3", L"", L"0.0.0.0", L"instrument.lab"};
  std::shared_ptr<Instrument> item = MakeInstrument();
  if (how >= 0x80) item = std::make_shared<ClientInstrument>([this] { Answer(); });
  item->SetIPAddress(kAddresses[how / 8 % 5]);
  const std::wstring key = how % 3 == 0 ? std::to_wstring(how) : std::wstring();
  Try([&] { return tcp_->Devices()->AddReference(item, key), true; });
}

void DiscoveryConversation::ChangeSettings(std::uint8_t flags) {
  tcp_->SetCheckNonAscii((flags & 1) == 0);
  tcp_->SetStripCRLF((flags & 2) == 0);
  tcp_->SetTerminateOnEOS((flags & 4) == 0);
  tcp_->SetCreateLogFile((flags & 8) != 0);
  tcp_->SetTimeOutmSecs(static_cast<std::int16_t>(flags * 100));
  tcp_->SetProtocol(static_cast<EKespProtocol>(flags / 128));
  if ((flags & 16) != 0) tcp_->SetEOSChar(WideText(input_.Bytes(1)));
}

void DiscoveryConversation::Discover() {
  tcp_->SetProtocol(EKespProtocol::sckUDPProtocol);
  tcp_->SetIPType(EIPType::ipDynamic);
  const std::int16_t time_out = tcp_->TimeOutmSecs();
  const std::int16_t port = tcp_->Port();
  const std::int64_t start = world_.clock.now_ms();
  Discovery discovery;
  const std::vector<std::wstring> before = Addresses();
  discoveries_.push_back(&discovery);
  std::wstring result = L"before";
  const Attempt attempt = Try([&] { return tcp_->AutoDetect(result); });
  discoveries_.pop_back();
  if (discovery.interfered) return;
  Require(tcp_->Protocol() == EKespProtocol::sckUDPProtocol && tcp_->TimeOutmSecs() == time_out &&
              tcp_->IPType() == EIPType::ipDynamic,
          "a discovery leaves protocol, time-out and type");
  Require(result.empty(), "a discovery returns no text");
  Require(socket_->PresentState() == EKespTCPState::sckClosed, "a discovery leaves no connection open");
  Require(world_.clock.now_ms() - start < 620'000, "a discovery takes ten minutes and some seconds at most");
  if (attempt.error) {
    Require(
        discovery.socket_failed && (attempt.number() == ERR_CONNECTING || attempt.number() == ERR_SEND_DATA),
        "a discovery fails as the socket does");
    Require(discovery.asked.empty(), "after a failure nobody is asked");
    return;
  }
  Require(attempt.succeeded != discovery.senders.empty(), "a discovery succeeds when somebody answers");
  Require(tcp_->Port() == (attempt.succeeded ? 10001 : port), "the port is that of the instruments");
  Require(attempt.succeeded || discovery.asked.empty(), "where nobody answers nobody is asked");
  CheckDevices(discovery, before);
  if (attempt.succeeded) CheckIdentities(discovery);
}

// Of the items, without their doing anything.
std::vector<std::wstring> DiscoveryConversation::Addresses() {
  const bool calm = std::exchange(calm_, true);
  std::vector<std::wstring> addresses;
  for (const auto& item : tcp_->Devices()->Items()) addresses.push_back(item->IPAddress());
  calm_ = calm;
  return addresses;
}

// Each sender that is new is there once, in the order of the answers.
void DiscoveryConversation::CheckDevices(const Discovery& discovery,
                                         const std::vector<std::wstring>& before) {
  std::vector<std::wstring> expected = before;
  for (const std::wstring& sender : discovery.senders) {
    if (std::find(expected.begin(), expected.end(), sender) == expected.end()) expected.push_back(sender);
  }
  Require(Addresses() == expected, "each sender of an answer is in the collection once");
}

// The items were asked from the last to the first, and what they answered is in them.
void DiscoveryConversation::CheckIdentities(const Discovery& discovery) {
  const std::vector<std::wstring> addresses = Addresses();
  std::vector<std::wstring> to_be_asked;
  for (auto address = addresses.rbegin(); address != addresses.rend(); ++address) {
    const bool is_address = !address->empty() && *address != L"0.0.0.0";
    if (is_address && (to_be_asked.empty() || to_be_asked.back() != *address))
      to_be_asked.push_back(*address);
  }
  if (!discovery.socket_failed)
    Require(discovery.asked == to_be_asked, "items are asked from the last to the first");
  const auto items = tcp_->Devices()->Items();
  for (std::size_t i = 0; i < items.size(); ++i) {
    const auto& item = items[i];
    const auto reply = discovery.replies.find(addresses[i]);
    if (reply == discovery.replies.end() || std::count(addresses.begin(), addresses.end(), addresses[i]) > 1)
      continue;
    if (tcp_->CheckNonAscii() && HasInvalid(reply->second)) continue;
    std::wstring text = SystemCodePage().FromBytes(reply->second);
    if (tcp_->StripCRLF()) text = StrippedReply(text);
    const std::vector<std::wstring> fields = FieldsOf(text);
    if (fields.size() < 3) continue;
    Require(item->Model() == fields[1] && item->Serial() == fields[2], "an item has what it answered");
  }
}

// Whatever has happened, the same object discovers again, and makes a correct query.
void DiscoveryConversation::DiscoverAtTheEnd() {
  calm_ = true;
  socket_->BeGood("maker,GOOD,1,2\r");
  tcp_->SetTerminateOnEOS(true);
  tcp_->SetStripCRLF(true);
  tcp_->SetEOSChar(L"\r");
  Discover();
  const auto items = tcp_->Devices()->Items();
  Require(std::any_of(items.begin(), items.end(),
                      [](const auto& item) {
                        return item->IPAddress() == L"10.0.0.9" && item->Model() == L"GOOD" &&
                               item->Serial() == L"1";
                      }),
          "the object discovers again");
  tcp_->SetProtocol(EKespProtocol::sckTCPProtocol);
  tcp_->SetIPAddress(L"10.0.0.9");
  std::wstring reply;
  Require(tcp_->Initialize() && tcp_->WriteLine(L"t") && tcp_->ReadLine(reply) && reply == L"maker,GOOD,1,2",
          "the object makes a correct query again");
}

}  // namespace

}  // namespace kesp

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesp::FuzzInput input(data, size);
  kesp::DiscoveryConversation(input).Run();
  return 0;
}
