// What a call came to, in words.
#pragma once

#include <string>

#include "KespCommObj.h"
#include "tests/clients/early_bound.h"

namespace kesp::hangs {

struct Outcome {
  // "True", "False", "done" of a call that answers nothing, "False, status 4" of an operation, "raised
  // -2147221257".
  std::string result;
  // As bytes; empty without one.
  std::string reply = {};
};

inline std::string Raised(long number) {
  return "raised " + std::to_string(number);
}
// An error with a number of the library's own environment, such as 5 or 8020.
inline std::string RaisedControl(long number) {
  return Raised(clients::ControlError(number));
}
inline std::string FalseWith(ECommError status) {
  return "False, status " + std::to_string(static_cast<long>(status));
}

inline std::string ResultOf(HRESULT result, VARIANT_BOOL answer) {
  const clients::Refusal refusal = clients::RefusalOf(result);
  if (FAILED(refusal.result)) return Raised(refusal.result);
  return answer == VARIANT_FALSE ? "False" : "True";
}

// The text's characters as bytes.
inline std::string BytesOfText(const std::wstring& text) {
  std::string bytes;
  for (const wchar_t character : text) bytes += static_cast<char>(character);
  return bytes;
}
inline std::wstring TextOfBytes(const std::string& bytes) {
  return {bytes.begin(), bytes.end()};
}

// A call that answers with a boolean.
template <class Call>
Outcome Answering(const Call& call) {
  VARIANT_BOOL answer = VARIANT_FALSE;
  const HRESULT result = call(&answer);
  return {.result = ResultOf(result, answer), .reply = {}};
}

// One that has a text by reference before that.
template <class Call>
Outcome Reading(const Call& call) {
  clients::Text reply;
  Outcome outcome = Answering([&](VARIANT_BOOL* answer) { return call(reply.in_out(), answer); });
  outcome.reply = BytesOfText(reply.str());
  return outcome;
}

// One that has bytes, or a text, by reference.
template <class Call>
Outcome ReadingBytes(const Call& call) {
  clients::Value reply;
  Outcome outcome = Answering([&](VARIANT_BOOL* answer) { return call(reply.get(), answer); });
  if (reply.type() == VT_BSTR) outcome.reply = BytesOfText(reply.text());
  if (reply.type() == (VT_ARRAY | VT_UI1)) outcome.reply = clients::BytesOf(*reply.get());
  return outcome;
}

// One without an answer.
template <class Call>
Outcome Doing(const Call& call) {
  Outcome outcome{.result = ResultOf(call(), VARIANT_TRUE), .reply = {}};
  if (outcome.result == "True") outcome.result = "done";
  return outcome;
}

}  // namespace kesp::hangs
