// The IEEE-488 transport in conversations of the fuzzer's making: two objects at one driver, used by several
// threads in turn.
#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <optional>

#include "gpib/kesp_ieee.h"
#include "support/attempt.h"
#include "support/error_numbers.h"
#include "support/text.h"
#include "tests/fuzz/conversation_driver.h"
#include "tests/fuzz/conversation_world.h"

namespace kesp {

namespace {

using namespace ieee_error;
using Calls = std::vector<ConversationDriver::Call>;

constexpr int kMostActions = 100;
constexpr int kMostCalls = 3;  // inside one another
constexpr const wchar_t* kEosTexts[] = {
    L"10", L"13", L"", L" 10 ", L"256", L"x", L"0000000000000000000010", L"\u4E2D"};

bool IsOfLoading(std::int32_t number) {
  return number == 53 || number == 48 || number == 453;
}

// The decimal number in a text, as the reference has it; nothing where there is none up to 255.
std::optional<char> EosByte(const std::wstring& text) {
  const std::size_t first = text.find_first_not_of(L' ');
  if (first == std::wstring::npos) return std::nullopt;
  int number = 0;
  for (const wchar_t character : text.substr(first, text.find_last_not_of(L' ') - first + 1)) {
    if (character < L'0' || character > L'9' || number > 255) return std::nullopt;
    number = number * 10 + (character - L'0');
  }
  if (number > 255) return std::nullopt;
  return static_cast<char>(number);
}

class GpibConversation : private CKespIEEEEvents {
 public:
  explicit GpibConversation(FuzzInput& input) : input_(input) {
    for (auto& ieee : ieee_) {
      ieee = std::make_unique<CKespIEEE>(world_.environment, driver_, static_cast<CKespIEEEEvents*>(this));
      ieee->SetEOSChar(L"10");
    }
    library_.Damage(input_.Byte() % 4 == 3 ? input_.Byte() % 16 : 0);
  }

  void Run() {
    while (input_.HasMore() && actions_ < kMostActions) Act();
    QueryAtTheEnd();
  }

 private:
  CKespIEEE& Ieee() { return *ieee_[present_]; }

  // Calls a member, and returns what it asked of the driver; nothing where a handler did something, too.
  Attempt Do(const std::function<bool()>& operation, std::optional<Calls>& calls) {
    library_.TakeCalls();
    const int actions = actions_;
    ++depth_;
    Attempt attempt = Try(operation);
    --depth_;
    Calls heard = library_.TakeCalls();
    if (actions == actions_) calls = std::move(heard);
    return attempt;
  }

  void Act();
  void Answer() {
    if (input_.HasMore() && input_.Byte() % 8 == 7) Act();
  }
  void ChangeSetting(std::uint8_t setting);
  void Initialize();
  void CheckNothingOpen(const Calls& calls) const;
  void Uninitialize();
  void WriteLine();
  void ReadLine();
  void AutoDetect();
  void QueryAtTheEnd();

  static void CheckFailure(const Attempt& attempt, const Calls& calls, std::string_view name,
                           std::int32_t number);

  // CKespIEEEEvents
  void AutoDetectUpdate(const std::wstring& cmd, std::int16_t Address, bool& Abort) override {
    Require(cmd == L"*IDN?" || cmd == L"*VER" || cmd == L"t", "a detection tries the commands that it knows");
    Require(Address >= 1 && Address <= 30, "a detection looks at addresses that there are");
    Answer();
    if (input_.HasMore() && input_.Byte() == 0xFF) Abort = true;
  }
  void AutoDetectBegin() override {
    ++detections_;
    Answer();
  }
  void AutoDetectEnd() override {
    Require(detections_-- > 0, "a detection ends that has begun");
    Answer();
  }

  FuzzInput& input_;
  ConversationWorld world_;
  ConversationDriver library_{input_};
  GpibDriver driver_{library_, library_};
  std::array<std::unique_ptr<CKespIEEE>, 2> ieee_;
  std::size_t present_ = 0;
  int actions_ = 0;
  int depth_ = 0;
  int detections_ = 0;
};

void GpibConversation::Act() {
  if (depth_ >= kMostCalls || ++actions_ > kMostActions) return;
  const std::uint8_t action = input_.Byte();
  const std::size_t before = present_;
  present_ = action >= 0xC0 ? 1 : 0;
  const std::size_t thread_before = library_.Switch(action / 16 % ConversationDriver::kThreads);
  switch (action % 8) {
    case 0:
    case 1:
      Initialize();
      break;
    case 2:
      Uninitialize();
      break;
    case 3:
      WriteLine();
      break;
    case 4:
      ReadLine();
      break;
    case 5:
      AutoDetect();
      break;
    case 6:
      ChangeSetting(input_.Byte());
      break;
    default:
      if (action >= 0xE0 && depth_ == 0) {
        library_.EndThread();
      } else {
        library_.Damage(action < 0x40 ? action % 16 : 0);
      }
  }
  library_.Switch(thread_before);
  present_ = before;
}

void GpibConversation::ChangeSetting(std::uint8_t setting) {
  const auto value = static_cast<std::int16_t>(setting / 8 * 2 - 4);
  switch (setting % 8) {
    case 0:
      Require(Try([&] { return Ieee().SetPrimaryAddress(value), true; }).number() ==
                  (value < 1 || value > 30 ? ERR_INVALID_PRIMARY_ADDRESS : 0),
              "primary addresses are 1 to 30");
      return;
    case 1:
      Require(Try([&] { return Ieee().SetSecondaryAddress(value), true; }).number() ==
                  (value < 0 || value > 30 ? ERR_INVALID_SECONDARY_ADDRESS : 0),
              "secondary addresses are 0 to 30");
      return;
    case 2:
      Require(Try([&] { return Ieee().SetBoardIndex(value), true; }).number() ==
                  (value != 0 ? ERR_INVALID_BOARD_INDEX : 0),
              "there is one board");
      return;
    case 3:
      return Ieee().SetEOSChar(kEosTexts[setting / 8 % 8]);
    case 4:
      Ieee().SetSetEOS(setting < 0x80);
      return Ieee().SetClearDevice(setting % 16 < 8);
    case 5:
      return Ieee().SetTimeOutSecs(static_cast<ETimeOutSecs>(setting / 8));
    default:
      return Ieee().SetCreateLogFile(setting >= 0x80);
  }
}

// A failure of the driver: the one that its call, or the registration before it, came to.
void GpibConversation::CheckFailure(const Attempt& attempt, const Calls& calls, std::string_view name,
                                    std::int32_t number) {
  Require(attempt.number() == number, "a failure of the driver has the number of its call");
  for (const ConversationDriver::Call& call : calls) {
    const bool is_reason = call.failed && (call.name == name || call.name == "refused");
    // A descriptor below 0 is a failure, whatever the driver's status says.
    const bool is_no_device = call.name == "ibdev" && name == "ibdev" && call.result < 0;
    if (!is_reason && !is_no_device) continue;
    const std::wstring text = L"Error: " + std::to_wstring(call.error) + L" - ";
    if (attempt.description().find(text) != std::wstring::npos) return;
  }
  Require(false, "a failure of the driver tells its error number");
}

// What an Initialize that failed has opened is closed, as far as the driver could be reached.
void GpibConversation::CheckNothingOpen(const Calls& calls) const {
  const auto is_refused = [](const ConversationDriver::Call& call) { return call.name == "refused"; };
  if (std::any_of(calls.begin(), calls.end(), is_refused)) return;
  for (const ConversationDriver::Call& call : calls) {
    Require(call.name != "ibdev" || !library_.open().contains(call.result),
            "after a failure no device is open");
  }
}

void GpibConversation::Initialize() {
  const CKespIEEE& ieee = Ieee();
  const bool clears = ieee.ClearDevice();
  const bool sets_eos = ieee.SetEOS();
  std::optional<Calls> calls;
  const Attempt attempt = Do([&] { return Ieee().Initialize(); }, calls);
  if (!calls) return;
  if (attempt.error) CheckNothingOpen(*calls);
  switch (attempt.number()) {
    case 0: {
      Require(attempt.succeeded, "Initialize returns True");
      std::string names;
      for (const ConversationDriver::Call& call : *calls) {
        if (call.name == "ibonl" && names.empty()) continue;  // the device that was open before
        if (call.name == "refused" && names.empty()) continue;
        Require(!call.failed, "Initialize fails where the driver does");
        names += call.name;
      }
      Require(names == std::string("ibdev") + (clears ? "ibclr" : "") + (sets_eos ? "ibeos" : ""),
              "Initialize opens, clears and sets up the device");
      return;
    }
    case ERR_IBDEV:
      return CheckFailure(attempt, *calls, "ibdev", ERR_IBDEV);
    case ERR_IBCLR:
      Require(clears, "a device is cleared when that is set");
      return CheckFailure(attempt, *calls, "ibclr", ERR_IBCLR);
    case ERR_IBEOS:
      Require(sets_eos, "the end of a read is set when that is set");
      return CheckFailure(attempt, *calls, "ibeos", ERR_IBEOS);
    case 5:
      return Require(sets_eos && ieee.EOSChar().empty(), "an empty EOSChar cannot end a read");
    case 6:
      return Require(!calls->empty(), "a descriptor may be too large");
    default:
      Require(IsOfLoading(attempt.number()) && library_.is_damaged() && calls->empty(),
              "Initialize fails for a reason that is known");
  }
}

void GpibConversation::Uninitialize() {
  std::optional<Calls> calls;
  const Attempt attempt = Do([&] { return Ieee().Uninitialize(); }, calls);
  if (attempt.number() == ERR_INVALID_DEVICE)
    return Require(calls->empty(), "what is no device is not closed");
  if (attempt.error) return CheckFailure(attempt, *calls, "ibonl", ERR_IBONL);
  Require(attempt.succeeded && calls->size() <= 3, "Uninitialize closes device and board");
  for (const ConversationDriver::Call& call : *calls) {
    Require(call.name == "ibonl" && !call.failed, "Uninitialize fails where the driver does");
  }
}

void GpibConversation::WriteLine() {
  const std::wstring cmd = WideText(input_.Bytes(input_.Byte() % 8U));
  const std::optional<char> terminator = EosByte(Ieee().EOSChar());
  std::optional<Calls> calls;
  const Attempt attempt = Do([&] { return Ieee().WriteLine(cmd); }, calls);
  if (attempt.number() == 13 || attempt.number() == 5) {
    return Require(!terminator && calls->empty(), "nothing is sent where EOSChar is no number");
  }
  Require(terminator.has_value(), "an EOSChar that is no number is refused");
  if (IsOfLoading(attempt.number()))
    return Require(library_.is_damaged(), "a driver that is whole is loaded");
  if (attempt.error) return CheckFailure(attempt, *calls, "ibwrt", ERR_IBWRT);
  Require(calls->size() == 1 && calls->front().name == "ibwrt" && !calls->front().failed,
          "WriteLine writes once");
  Require(calls->front().bytes == SystemCodePage().ToBytes(cmd) + *terminator,
          "the command is sent as it is");
}

void GpibConversation::ReadLine() {
  std::wstring result = L"before";
  std::optional<Calls> calls;
  const Attempt attempt = Do([&] { return Ieee().ReadLine(result); }, calls);
  if (IsOfLoading(attempt.number())) {
    return Require(library_.is_damaged() && result == L"before", "a driver that is whole is loaded");
  }
  Require(!calls->empty(), "ReadLine reads");
  const ConversationDriver::Call& last = calls->back();
  if (attempt.error) {
    CheckFailure(attempt, *calls, "ibrd", ERR_IBRD);
  } else {
    Require(attempt.succeeded && last.name == "ibrd" && !last.failed, "ReadLine fails where the driver does");
  }
  if (last.name == "refused") return Require(result.empty(), "without a call there is no reply");
  const auto count = static_cast<std::size_t>(std::min(std::max(last.count, 0), 50));
  Require(result == SystemCodePage().FromBytes(last.bytes.substr(0, count)),
          "ReadLine returns what was received");
}

void GpibConversation::AutoDetect() {
  const std::uint8_t how = input_.Byte();
  const ETimeOutSecs time_out = Ieee().TimeOutSecs();
  const std::int16_t address = Ieee().PrimaryAddress();
  std::wstring result = L"before";
  std::optional<Calls> calls;
  const Attempt attempt = Do(
      [&] {
        return Ieee().AutoDetect(result, static_cast<EDetectLevel>(how % 5),
                                 static_cast<ESearchOption>(how / 8 % 2));
      },
      calls);
  if (!calls) return;
  Require(Ieee().TimeOutSecs() == time_out, "a detection leaves the time-out");
  Require(attempt.succeeded || Ieee().PrimaryAddress() == address,
          "where nothing is found the address stays");
  Require(attempt.succeeded || result.empty(), "where nothing is found there is no answer");
  if (!attempt.error) return;
  const std::int32_t number = attempt.number();
  Require(IsOfLoading(number) || number == ERR_IBDEV || number == ERR_IBCLR || number == ERR_IBEOS ||
              number == 5 || number == 6,
          "a detection fails as Initialize does");
}

// Whatever has happened, the same objects work again, and leave no device open.
void GpibConversation::QueryAtTheEnd() {
  Require(depth_ == 0 && detections_ == 0, "each detection that has begun has ended");
  actions_ = kMostActions;
  const bool closing_failed = library_.closing_failed();
  library_.BeGood("GOOD\n");
  for (present_ = 0; present_ < ieee_.size(); ++present_) {
    library_.Switch(present_);
    Ieee().SetEOSChar(L"10");
    Ieee().SetPrimaryAddress(7);
    std::optional<Calls> calls;
    Require(Do([&] { return Ieee().Initialize(); }, calls).succeeded, "the object opens a device again");
    Require(Do([&] { return Ieee().WriteLine(L"t"); }, calls).succeeded, "the object writes again");
    std::wstring result;
    Require(Do([&] { return Ieee().ReadLine(result); }, calls).succeeded && result == L"GOOD\n",
            "the object makes a correct query again");
  }
  for (auto& ieee : ieee_) ieee.reset();
  library_.EndThreads();
  Require(closing_failed || library_.open().empty(), "no device stays open");
}

}  // namespace

}  // namespace kesp

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesp::FuzzInput input(data, size);
  kesp::GpibConversation(input).Run();
  return 0;
}
