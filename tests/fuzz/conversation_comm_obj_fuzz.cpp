// The communication object in conversations of the fuzzer's making, with all three transports below it.
#include <functional>
#include <memory>
#include <string>

#include "commobj/kesp_comm_obj.h"
#include "support/attempt.h"
#include "support/error_numbers.h"
#include "tests/fuzz/conversation_driver.h"
#include "tests/fuzz/conversation_line.h"
#include "tests/fuzz/conversation_socket.h"
#include "tests/fuzz/conversation_status.h"

namespace kesp {

namespace {

using namespace comm_obj_error;

constexpr int kMostActions = 60;
constexpr int kMostCalls = 3;  // inside one another

class CommConversation : private SocketWatcher, private LineWatcher {
 public:
  explicit CommConversation(FuzzInput& input);

  void Run() {
    while (input_.HasMore() && actions_ < kMostActions) Act();
    QueryAtTheEnd();
  }

 private:
  enum class Member { kQuery, kQueryBinary, kUpdate };

  void Act();
  void Exchange(Member member);
  void CheckStatus(ECommStyle style, int boxes, bool succeeded);
  void CheckTrace(Member member, const std::string& first, const std::string& last) const;
  void DetectInstrument();
  void SetInputMode(std::uint8_t mode);
  void SetCommStyle(std::uint8_t style);
  void ChangeSetting(std::uint8_t setting);
  void ChangeTransport(std::uint8_t setting);
  void QueryAtTheEnd();

  // Calls a member; whether a handler did something meanwhile is in the second.
  Attempt Do(const std::function<bool()>& operation, bool& interfered) {
    const int actions = actions_;
    ++depth_;
    Attempt attempt = Try(operation);
    --depth_;
    interfered = actions != actions_;
    return attempt;
  }

  // SocketWatcher
  void Message() override { Act(); }
  void Closing(bool failed) override { closing_failed_ = closing_failed_ || failed; }

  FuzzInput& input_;
  ConversationWorld world_;
  ConversationLine line_{world_.clock, input_};
  ConversationDriver library_{input_};
  GpibDriver driver_{library_, library_};
  ConversationSocket* socket_ = nullptr;
  std::unique_ptr<CKespCommObj> comm_;
  std::string first_line_;
  std::string last_line_;
  bool closing_failed_ = false;
  bool calm_ = false;
  int depth_ = 0;
  int actions_ = 0;
};

CommConversation::CommConversation(FuzzInput& input) : input_(input) {
  SocketWatcher& socket_watcher = *this;
  line_.SetWatcher(*this);
  world_.pump.on_pump = [this] { socket_->Step(); };
  world_.files.on_line = [this](std::string_view line) {
    if (first_line_.empty()) first_line_ = line;
    last_line_ = line;
  };
  comm_ = std::make_unique<CKespCommObj>(
      world_.environment,
      TransportFactory{
          .make_serial = [this] { return std::make_shared<CKespCOMPort3>(world_.environment, line_); },
          .make_network =
              [this, &socket_watcher] {
                return std::make_shared<CKespTCP>(
                    world_.environment,
                    [this, &socket_watcher](SocketListener& listener) {
                      auto socket = std::make_unique<ConversationSocket>(listener, socket_watcher,
                                                                         world_.clock, input_);
                      socket_ = socket.get();
                      return socket;
                    },
                    MakeInstrument);
              },
          .make_ieee = [this] { return std::make_shared<CKespIEEE>(world_.environment, driver_); }});
  comm_->network().SetIPAddress(L"10.0.0.7");
  comm_->network().SetPort(5025);
  comm_->ieee().SetEOSChar(L"10");
}

void CommConversation::Act() {
  if (calm_ || depth_ >= kMostCalls || ++actions_ > kMostActions) return;
  const std::uint8_t action = input_.Byte();
  switch (action % 16) {
    case 0:
    case 1:
    case 2:
      return Exchange(Member::kQuery);
    case 3:
      return Exchange(Member::kQueryBinary);
    case 4:
      return Exchange(Member::kUpdate);
    case 5:
      return DetectInstrument();
    case 6:
      return SetInputMode(action / 16);
    case 7:
    case 8:
      return SetCommStyle(action / 16);
    case 9:
    case 10:
      return ChangeSetting(action / 16);
    case 11:
    case 12:
      return ChangeTransport(input_.Byte());
    case 13:
      return socket_->FailCall(1 + action / 64, 10049);
    case 14:
      return line_.FailCall(1 + action / 16, action % 3 == 0 ? 8005 : 8020);
    default: {
      bool interfered = false;
      const Attempt attempt = Do([&] { return comm_->Edit(); }, interfered);
      Require(!attempt.succeeded, "without a dialog nothing is edited");
      Require(attempt.number() == 0 || attempt.number() == ERR_NO_COMM_OBJECT,
              "Edit raises that there is no transport");
    }
  }
}

void CommConversation::Exchange(Member member) {
  const std::wstring cmd = WideText(input_.Bytes(input_.Byte() % 6U));
  const ECommStyle style = comm_->CommStyle();
  const int boxes = world_.user.boxes;
  std::wstring result = L"before";
  BinaryValue bytes;
  first_line_.clear();
  last_line_.clear();
  closing_failed_ = false;
  bool interfered = false;
  const Attempt attempt = Do(
      [&] {
        switch (member) {
          case Member::kQuery:
            return comm_->Query(result, cmd, L"01");
          case Member::kQueryBinary:
            return comm_->QueryBinary(bytes, cmd);
          default:
            return comm_->Update(cmd, L"01", L"5");
        }
      },
      interfered);
  if (attempt.error) {
    const bool is_none = style == ECommStyle::csNone;
    const bool has_no_branch = style == ECommStyle::csIEEE && member == Member::kQueryBinary;
    Require(attempt.number() == (is_none ? ERR_NO_COMM_OBJECT : ERR_COMM_STYLE_NOT_SUPPORTED),
            "an exchange raises what the caller must mend");
    return Require(is_none || has_no_branch, "an exchange raises nothing of a transport's");
  }
  if (interfered) return;
  Require(style != ECommStyle::csNone, "an exchange needs a transport");
  CheckStatus(style, boxes, attempt.succeeded);
  if (comm_->Debugging() && member != Member::kQueryBinary) CheckTrace(member, first_line_, last_line_);
}

void CommConversation::CheckStatus(ECommStyle style, int boxes, bool succeeded) {
  const ECommError status = comm_->CommError();
  const std::wstring& source = comm_->CommErrorSource();
  const std::wstring& description = comm_->CommErrorDescr();
  Require(succeeded == (status == ECommError::cfrSuccess), "the result tells what the status tells");
  if (succeeded) Require(source.empty() && description.empty(), "a success has no error");
  const bool is_shown = world_.user.boxes > boxes;
  switch (style) {
    case ECommStyle::csTCPIP:
      Require(closing_failed_ || socket_->PresentState() == EKespTCPState::sckClosed ||
                  comm_->network().State() != EKespTCPState::sckConnected,
              "the connection is closed");
      return Require(succeeded || is_shown || status == NetworkStatus(source, description),
                     "the status is that of the network's failure");
    case ECommStyle::csRS232:
      Require(!comm_->AutoClose() || !line_.is_open(), "the port is closed");
      return Require(succeeded || is_shown || IsSerialStatus(status, source, description),
                     "the status is that of the port's failure");
    default:
      return Require(succeeded || is_shown || status == IeeeStatus(source),
                     "the status is that of the bus's failure");
  }
}

void CommConversation::CheckTrace(Member member, const std::string& first, const std::string& last) const {
  const bool is_query = member == Member::kQuery;
  Require(first.starts_with(is_query ? "Beginning Query()... (command: " : "Beginning Update()...(command: "),
          "the trace tells the beginning");
  Require(last.starts_with(is_query ? "Exiting Query()...(command: " : "Exiting Update()...(command: "),
          "the trace tells the end");
}

void CommConversation::DetectInstrument() {
  const auto level = static_cast<EDetectLevel>(input_.Byte() % 4);
  const ECommStyle style = comm_->CommStyle();
  const ECommError status = comm_->CommError();
  std::wstring result;
  closing_failed_ = false;
  bool interfered = false;
  const Attempt attempt = Do([&] { return comm_->DetectInstrument(result, level); }, interfered);
  Require(attempt.number() == 0 || (attempt.number() == ERR_NO_COMM_OBJECT && style == ECommStyle::csNone),
          "a detection raises nothing of a transport's");
  if (interfered) return;
  Require(comm_->CommError() == status, "a detection leaves the status");
  if (style == ECommStyle::csRS232) Require(!line_.is_open(), "the port is closed");
  if (style == ECommStyle::csTCPIP && !closing_failed_ && socket_->closing_reads == 0) {
    Require(socket_->PresentState() == EKespTCPState::sckClosed, "the connection is closed");
  }
}

void CommConversation::SetInputMode(std::uint8_t mode) {
  const Attempt attempt = Try([&] { return comm_->SetInputMode(static_cast<EInputMode>(mode % 4)), true; });
  if (comm_->CommStyle() == ECommStyle::csNone) {
    return Require(attempt.number() == ERR_NO_COMM_OBJECT, "SetInputMode needs a transport");
  }
  Require(attempt.succeeded && comm_->CommError() == ECommError::cfrOtherError,
          "SetInputMode leaves that status");
}

void CommConversation::SetCommStyle(std::uint8_t style) {
  const auto value = static_cast<ECommStyle>(style % 8 - 2);
  const ECommStyle before = comm_->CommStyle();
  const bool exists = value >= ECommStyle::csNone && value <= ECommStyle::csIEEE;
  bool interfered = false;
  const Attempt attempt = Do([&] { return comm_->SetCommStyle(value), true; }, interfered);
  if (interfered) return;
  Require(comm_->CommStyle() == (attempt.error ? before : value), "the style is the one set");
  if (!attempt.error) return Require(exists, "a style that does not exist is refused");
  const bool is_of_port = before == ECommStyle::csRS232 && Has(attempt.source(), L"ClosePort()");
  Require((!exists && attempt.number() == ERR_COMM_STYLE_NOT_SUPPORTED) || is_of_port,
          "a style is refused for a reason that is known");
}

void CommConversation::ChangeSetting(std::uint8_t setting) {
  switch (setting % 8) {
    case 0:
      return comm_->SetAutoClose(setting < 8);
    case 1:
      return comm_->SetBinaryTimeoutms(setting < 8 ? 100 : -1);
    case 2:
      return comm_->SetCRBeforeCommand(setting < 8);
    case 3:
    case 4:
      return comm_->SetDebugging(setting < 8);
    case 5:
      return comm_->SetDebugFilename(setting < 8 ? L"C:\\other.log" : L"");
    case 6:
      world_.files.modified = CalendarDate{2024, 5, setting};
      world_.files.renames = setting < 8;
      return;
    default:
      return library_.Damage(setting < 8 ? 0 : setting % 3);
  }
}

void CommConversation::ChangeTransport(std::uint8_t setting) {
  const int value = setting / 16;
  CKespCOMPort3& serial = comm_->serial();
  CKespTCP& network = comm_->network();
  switch (setting % 16) {
    case 0:
      return serial.SetTimeOut(value * 200);
    case 1:
      return serial.SetControllerStyle(static_cast<EKespControllerStyle3>(value % 5));
    case 2:
      serial.SetUseRFModem(value % 4 == 3);
      return serial.SetInstrAddr(static_cast<std::int16_t>(value));
    case 3:
      serial.SmartSwitch()->SetSSPort(value % 2 == 0 ? L"A" : L"");
      return serial.SetUseSmartSwitch(value % 4 == 3);
    case 4:
      serial.SetTerminateOnLF(value % 2 == 0);
      serial.SetCheckNonAscii(value % 4 < 2);
      return serial.SetStripCRLF(value < 8);
    case 5:
      // Above the highest rate it is refused.
      Try([&] { return serial.SetMinBaudRate(static_cast<EKespBaudRate3>(value % 8)), true; });
      return;
    case 6:
      network.SetTerminateOnEOS(value % 2 == 0);
      return network.SetCheckNonAscii(value < 8);
    case 7:
      return network.SetTimeOutmSecs(static_cast<std::int16_t>(value * 500 - 500));
    case 8:
      return network.SetIPAddress(value < 12 ? L"10.0.0.7" : L"0.0.0.0");
    case 9:
      return network.SetProtocol(static_cast<EKespProtocol>(value % 2));
    case 10:
      return comm_->ieee().SetEOSChar(value % 2 == 0 ? L"10" : L"");
    case 11:
      return comm_->ieee().SetSetEOS(value % 2 == 0);
    case 12:
      // The client uses the transport itself between two exchanges.
      Try([&] { return value % 2 == 0 ? network.Initialize() : network.Uninitialize(); });
      return;
    case 13:
      Try([&] { return value % 2 == 0 ? serial.OpenPort() : (serial.ClosePort(), true); });
      return;
    case 14:
      socket_->closing_reads = value > 12 ? 50 : 0;
      socket_->close_fails = value % 2 == 1;
      return;
    default:
      Try([&] { return value % 2 == 0 ? comm_->ieee().Initialize() : comm_->ieee().Uninitialize(); });
  }
}

// Whatever has happened, the same object works again, with each transport.
void CommConversation::QueryAtTheEnd() {
  calm_ = true;
  socket_->BeGood("GOOD\r");
  line_.BeGood("GOOD\r\n");
  library_.BeGood("GOOD\n");
  CKespCOMPort3& serial = comm_->serial();
  serial.SetControllerStyle(EKespControllerStyle3::CS_KESP);
  serial.SetMinBaudRate(EKespBaudRate3::br150);
  if (serial.MaxBaudRate() < EKespBaudRate3::br9600) serial.SetMaxBaudRate(EKespBaudRate3::br9600);
  serial.SetBaudRate(EKespBaudRate3::br9600);
  serial.SetTimeOut(3000);
  serial.SetUseRFModem(false);
  serial.SetTerminateOnLF(true);
  serial.SetStripCRLF(true);
  CKespTCP& network = comm_->network();
  network.SetProtocol(EKespProtocol::sckTCPProtocol);
  network.SetTerminateOnEOS(true);
  network.SetTimeOutmSecs(3000);
  network.SetIPAddress(L"10.0.0.7");
  network.SetPort(5025);
  comm_->ieee().SetEOSChar(L"10");
  network.Uninitialize();
  for (const ECommStyle style : {ECommStyle::csRS232, ECommStyle::csTCPIP, ECommStyle::csIEEE}) {
    comm_->SetCommStyle(style);
    std::wstring result;
    Require(comm_->Query(result, L"t"), "the object makes a query again");
    Require(result == (style == ECommStyle::csIEEE ? L"GOOD\n" : L"GOOD"),
            "the object reads the right reply again");
    Require(comm_->CommError() == ECommError::cfrSuccess, "the status tells the success");
  }
  comm_.reset();
  library_.EndThreads();
}

}  // namespace

}  // namespace kesp

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesp::FuzzInput input(data, size);
  kesp::CommConversation(input).Run();
  return 0;
}
