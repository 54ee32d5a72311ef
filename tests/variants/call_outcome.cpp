// Results, errors and arguments after a call.
#include "tests/variants/call_outcome.h"

#include <cfloat>
#include <cwchar>

#include "tests/variants/variant_words.h"

namespace kesp::variants {

namespace {

std::wstring Hexadecimal(HRESULT number) {
  wchar_t text[12];
  std::swprintf(text, std::size(text), L"%08lx", static_cast<unsigned long>(number));
  return text;
}

bool TakeErrorInformation() {
  ComPtr<IErrorInfo> information;
  return GetErrorInfo(0, &information) == S_OK;
}

}  // namespace

CallOutcome::CallOutcome(const Places& places, Call* call) : places_(places) {
  V_VT(&result_) = VT_I4;
  V_I4(&result_) = 777;
  call->result = places.result ? &result_ : nullptr;
  call->exception = places.exception ? &exception_ : nullptr;
  call->bad_argument = places.bad_argument ? &bad_argument_ : nullptr;
  SetErrorInfo(0, nullptr);
}

CallOutcome::~CallOutcome() {
  VariantClear(&result_);
  SysFreeString(exception_.bstrSource);
  SysFreeString(exception_.bstrDescription);
  SysFreeString(exception_.bstrHelpFile);
}

std::wstring CallOutcome::InWords(HRESULT outcome, const ArgumentList* arguments, const Side& side) const {
  std::wstring words = Hexadecimal(outcome);
  const bool is_port = side.port() != kNoPort && V_VT(&result_) == VT_I2 && V_I2(&result_) == side.port();
  if (places_.result) words += L", result " + (is_port ? L"the port" : variants::InWords(result_, side));
  if (places_.bad_argument) words += L", bad argument " + std::to_wstring(bad_argument_);
  if (places_.exception) {
    words += L", exception " + std::to_wstring(exception_.wCode) + L" " + Hexadecimal(exception_.scode) +
             L" " + variants::InWords(exception_.bstrSource, side) + L" " +
             variants::InWords(exception_.bstrDescription, side) + L" " +
             variants::InWords(exception_.bstrHelpFile, side) + L" " +
             std::to_wstring(exception_.dwHelpContext);
  }
  words += TakeErrorInformation() ? L", with error information" : L", without error information";
  if (arguments != nullptr) words += L"; arguments " + arguments->InWords();
  return words + L"; objects " + side.CountedInWords();
}

std::wstring CallOutcome::ThreadInWords() {
  return std::to_wstring(_controlfp(0, 0)) + L" " + std::to_wstring(GetThreadLocale());
}

std::wstring CallOutcome::WhatIsWrongWithTheResult(HRESULT outcome, const Member* member) const {
  if (!places_.result || member == nullptr) return {};
  const bool has_result = !member->IsPut() && member->result != VT_VOID;
  const VARTYPE declared = has_result ? member->result : VARTYPE{VT_EMPTY};
  if (V_VT(&result_) == declared && (SUCCEEDED(outcome) || declared == VT_EMPTY)) return {};
  // After a failure the automation library hands on what a member has set, which is nothing.
  const bool is_nothing = V_VT(&result_) == VT_EMPTY || (V_VT(&result_) == declared && V_I2(&result_) == 0);
  if (FAILED(outcome) && is_nothing) return {};
  return L"the result is of type " + std::to_wstring(V_VT(&result_)) + L", and declared as " +
         std::to_wstring(declared);
}

}  // namespace kesp::variants
