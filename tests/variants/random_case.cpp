// Making random calls, and judging them.
#include "tests/variants/random_case.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <span>

#include "tests/variants/call_outcome.h"
#include "tests/variants/random_texts.h"

namespace kesp::variants {

namespace {

// These take as long as hundreds of calls, whatever they are given: a dialog, and the pauses around a modem's
// and a switch's commands. One choice of them in so many is carried out.
constexpr const wchar_t* kSlowMembers[] = {L"Edit", L"RFWriteModemInstrAddress", L"RFWriteModemSettings",
                                           L"TestSmartSwitch"};
constexpr unsigned kChoicesOfASlowMember = 40;
// Cases with a port take longer than others.
constexpr std::uint64_t kCasesForOneWithPort = 2;
// So do these at a port that is there, when nobody answers as they want it.
constexpr const wchar_t* kSlowAtPort[] = {L"AutoDetect", L"DetectInstrument", L"RFReadModemSettings"};
// The reply to a line that was sent arrives within this time, so that it is there in both worlds.
constexpr DWORD kReplyMs = 10;

bool IsOneOf(std::span<const wchar_t* const> names, const std::wstring& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

using Callers = Surroundings::Callers;

class CaseOfOne {
 public:
  CaseOfOne(Surroundings& surroundings, std::uint64_t number)
      : surroundings_(surroundings),
        random_(surroundings.seed, number),
        one_(random_.Pick(surroundings.classes)),
        has_port_(surroundings.our_port != kNoPort && number % kCasesForOneWithPort == 0),
        ours_(one_, has_port_ ? surroundings.our_port : kNoPort),
        theirs_(one_, has_port_ ? surroundings.their_port : kNoPort) {
    RandomSource same = random_;
    MakeReady(ours_, random_, surroundings_.device);
    MakeReady(theirs_, same, surroundings_.device);
  }

  Life Live(unsigned most_calls) {
    unsigned left = std::min(1 + random_.Below(kCallsOfACase), most_calls);
    for (; left > 0 && findings_.empty(); --left) {
      if (random_.OneIn(12)) {
        AskForNames();
      } else {
        CallMember();
      }
    }
    life_.is_holding = ours_.ReleaseAll();
    theirs_.ReleaseAll();
    life_.findings = findings_;
    return life_;
  }

 private:
  void AskForNames() {
    std::vector<std::wstring> known;
    for (const Member& member : one_.members) {
      known.push_back(member.name);
      for (const Parameter& parameter : member.parameters) known.push_back(parameter.name);
    }
    std::vector<std::wstring> names(1 + random_.Below(random_.OneIn(20) ? 60 : 4));
    std::vector<LPOLESTR> pointers;
    for (std::wstring& name : names) {
      name = RandomName(random_, known);
      pointers.push_back(name.data());
    }
    const UINT count = random_.OneIn(20) ? 0 : static_cast<UINT>(names.size());
    std::vector<DISPID> ours(names.size(), 12345);
    std::vector<DISPID> theirs = ours;
    const HRESULT our_outcome =
        ours_.object()->GetIDsOfNames(IID_NULL, pointers.data(), count, LOCALE_USER_DEFAULT, ours.data());
    HRESULT their_outcome = one_.info->GetIDsOfNames(pointers.data(), count, theirs.data());
    const bool is_collection = SecondOpinion::Find(one_, DISPID_NEWENUM, DISPATCH_METHOD) != nullptr;
    if (their_outcome == DISP_E_UNKNOWNNAME && count > 0 && is_collection &&
        lstrcmpiW(pointers[0], L"_NewEnum") == 0) {
      theirs[0] = DISPID_NEWENUM;
      if (count == 1) their_outcome = S_OK;
    }
    life_.last_call = one_.name + L".GetIDsOfNames";
    if (surroundings_.counts) ++surroundings_.look_ups;
    if (our_outcome == their_outcome && ours == theirs) return;
    findings_.push_back(L"GetIDsOfNames(" + names[0] + L", " + std::to_wstring(count) + L") of " + one_.name +
                        L": " + std::to_wstring(our_outcome) + L" " + std::to_wstring(ours[0]) +
                        L", and not " + std::to_wstring(their_outcome) + L" " + std::to_wstring(theirs[0]));
  }

  void CallMember() {
    const Member& chosen = random_.Pick(one_.members);
    Call call = RandomUse(chosen);
    const Member* target = SecondOpinion::Find(one_, call.id, call.flags);
    if (target != nullptr && IsToBeLeftOut(*target)) return;
    const Places places{
        .result = !random_.OneIn(4), .exception = !random_.OneIn(5), .bad_argument = !random_.OneIn(4)};
    const bool has_arguments = !random_.OneIn(100);
    RandomSource same = random_;
    ArgumentList our_arguments(ours_);
    ArgumentList their_arguments(theirs_);
    FillArguments(our_arguments, random_, chosen, target);
    FillArguments(their_arguments, same, chosen, target);
    if (IsOperation(target)) {
      MakeHarmless(ours_, surroundings_.device);
      MakeHarmless(theirs_, surroundings_.device);
    }

    const std::wstring name = target != nullptr ? NameOf(one_, *target) : one_.name + L", no member";
    life_.last_call = name;
    const std::wstring what =
        name + L" flags " + std::to_wstring(call.flags) + L" " + our_arguments.InWords() + L": ";
    const std::wstring values_before = our_arguments.ValuesInWords();
    const std::wstring thread_before = CallOutcome::ThreadInWords();
    const auto our_part = [&](const Call& made) { return Invoke(ours_, made); };
    const Answer ours = Ask(ours_, target, call, places, has_arguments ? &our_arguments : nullptr, our_part);
    Expect(our_arguments.ValuesInWords() == values_before, what + L"an argument by value was changed");
    Expect(CallOutcome::ThreadInWords() == thread_before, what + L"the thread's settings were changed");
    Expect(ours.wrong_result.empty(), what + ours.wrong_result);

    if (surroundings_.callers == Callers::kBoth) {
      const auto their_part = [&](const Call& made) { return InvokeByRule(theirs_, made); };
      const Answer theirs =
          Ask(theirs_, target, call, places, has_arguments ? &their_arguments : nullptr, their_part);
      Expect(ours.words == theirs.words,
             what + L"\n    " + ours.words + L"\n    and not\n    " + theirs.words);
    }
    if (surroundings_.counts) Count(target, ours.outcome);
    if (surroundings_.tells_calls) std::printf("  %ls\n    %ls\n", what.c_str(), ours.words.c_str());
  }

  static bool IsOperation(const Member* target) { return target != nullptr && target->kind == INVOKE_FUNC; }

  struct Answer {
    HRESULT outcome = S_OK;
    std::wstring words;
    std::wstring wrong_result;
  };

  // Makes the call in one of the worlds, without arguments where those are null.
  template <class Invocation>
  static Answer Ask(const Side& side, const Member* target, Call call, const Places& places,
                    ArgumentList* arguments, const Invocation& invoke) {
    DISPPARAMS parameters = arguments != nullptr ? arguments->parameters() : DISPPARAMS{};
    call.arguments = arguments != nullptr ? &parameters : nullptr;
    if (IsOperation(target)) ForgetReplies(side.object());
    const CallOutcome places_filled(places, &call);
    Answer answer;
    answer.outcome = invoke(call);
    answer.words = places_filled.InWords(answer.outcome, arguments, side);
    const bool is_its_own = target != nullptr && call.iid == IID_NULL && arguments != nullptr &&
                            parameters.cArgs <= target->parameters.size();
    if (is_its_own) answer.wrong_result = places_filled.WhatIsWrongWithTheResult(answer.outcome, target);
    if (side.port() != kNoPort && IsOperation(target) && target->name == L"WriteLine") Sleep(kReplyMs);
    return answer;
  }

  HRESULT Invoke(const Side& side, const Call& call) const {
    if (surroundings_.callers == Callers::kSecondOpinion) return InvokeByRule(side, call);
    return side.object()->Invoke(call.id, call.iid, LOCALE_USER_DEFAULT, call.flags, call.arguments,
                                 call.result, call.exception, call.bad_argument);
  }
  HRESULT InvokeByRule(const Side& side, const Call& call) const {
    return SecondOpinion(surroundings_.classes).Invoke(one_, side.dual(), call);
  }

  bool IsToBeLeftOut(const Member& target) {
    if (target.name == L"Edit" && !surroundings_.with_dialogs) return true;
    const bool is_slow =
        IsOneOf(kSlowMembers, target.name) || (has_port_ && IsOneOf(kSlowAtPort, target.name));
    return is_slow && !random_.OneIn(kChoicesOfASlowMember);
  }

  void Count(const Member* target, HRESULT outcome) {
    const auto add_to = [outcome](Surroundings::Use& use) {
      ++(SUCCEEDED(outcome) ? use.succeeded : outcome == DISP_E_EXCEPTION ? use.raised : use.refused);
    };
    add_to(surroundings_.all);
    if (target != nullptr) add_to(surroundings_.uses[NameOf(one_, *target)]);
  }

  // Mostly as the member is meant to be called.
  Call RandomUse(const Member& chosen) {
    constexpr std::array<DISPID, 8> kOthers = {
        DISPID_VALUE, DISPID_UNKNOWN, DISPID_PROPERTYPUT, DISPID_NEWENUM, 999, 14, 0x60000000, 0x60010003};
    Call call{.id = chosen.id, .flags = static_cast<WORD>(chosen.kind)};
    if (random_.OneIn(40)) call.id = random_.Pick(kOthers);
    if (random_.OneIn(5)) call.flags = static_cast<WORD>(random_.Below(16));
    if (random_.OneIn(60)) call.flags = static_cast<WORD>(random_.Next());
    if (random_.OneIn(80)) call.iid = IID_IDispatch;
    return call;
  }

  static void FillArguments(ArgumentList& arguments, RandomSource& random, const Member& chosen,
                            const Member* target) {
    std::vector<VARIANT> in_order;
    const std::size_t count = chosen.parameters.size();
    const bool is_strange = random.OneIn(4);
    for (const Parameter& parameter : chosen.parameters) {
      const bool fits = !is_strange && !random.OneIn(6);
      in_order.push_back(fits ? arguments.FittingValue(random, parameter) : arguments.AnyValue(random));
    }
    if (random.OneIn(15)) {
      for (unsigned more = 1 + random.Below(3); more > 0; --more)
        in_order.push_back(arguments.AnyValue(random));
    }
    if (!in_order.empty() && random.OneIn(8)) {
      for (unsigned left = random.Below(in_order.size()); left < in_order.size();) {
        VariantClear(&in_order.back());
        in_order.pop_back();
      }
    }
    AddInOrder(arguments, random, in_order, count, chosen.IsPut());
    if (target == nullptr) return;
    for (const Parameter& parameter : target->parameters) {
      if (parameter.name == L"lTimeoutms") arguments.KeepWithin(0, 20);
      if (parameter.name == L"cp") arguments.KeepWithin(250, 256);
    }
    if (target->IsPut() && target->name.find(L"ilename") != std::wstring::npos) arguments.KeepFileNamesHere();
  }

  // Named ones stand first, the others behind them from the last to the first.
  static void AddInOrder(ArgumentList& arguments, RandomSource& random, std::vector<VARIANT>& in_order,
                         std::size_t parameters, bool is_put) {
    std::vector<VARIANT> by_place;
    const bool has_names = random.OneIn(5);
    for (std::size_t i = 0; i < in_order.size(); ++i) {
      const bool is_new_value = is_put && i + 1 == parameters && !random.OneIn(12);
      if (!is_new_value && !(has_names && (i > 0 || random.OneIn(3)) && !random.OneIn(3))) {
        by_place.push_back(in_order[i]);
        continue;
      }
      arguments.values.push_back(in_order[i]);
      DISPID name = is_new_value ? DISPID_PROPERTYPUT : static_cast<DISPID>(i);
      constexpr std::array<DISPID, 5> kWrong = {99, -7, 0, 1, DISPID_PROPERTYPUT};
      if (has_names && random.OneIn(6)) name = random.Pick(kWrong);
      arguments.names.push_back(name);
    }
    std::reverse_copy(by_place.begin(), by_place.end(), std::back_inserter(arguments.values));
  }

  void Expect(bool condition, const std::wstring& finding) {
    if (!condition) findings_.push_back(finding);
  }

  Surroundings& surroundings_;
  RandomSource random_;
  const PublicClass& one_;
  const bool has_port_;
  Side ours_;
  Side theirs_;
  std::vector<std::wstring> findings_;
  Life life_;
};

}  // namespace

std::wstring NameOf(const PublicClass& one, const Member& member) {
  const wchar_t* kind = member.kind == INVOKE_FUNC          ? L""
                        : member.kind == INVOKE_PROPERTYGET ? L" get"
                                                            : L" put";
  return one.name + L"." + member.name + kind;
}

Life LiveCase(Surroundings& surroundings, std::uint64_t number, unsigned most_calls) {
  return CaseOfOne(surroundings, number).Live(most_calls);
}

}  // namespace kesp::variants
