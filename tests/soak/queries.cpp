// One query, through the vtable and by its name.
#include "tests/soak/queries.h"

#include <stdexcept>
#include <utility>

#include "bench/text.h"

namespace kesp::soak {

using bench::CheckResult;
using bench::Text;

QueryClient::QueryClient(std::string reply_end)
    : reply_end_(std::move(reply_end)),
      comm_(bench::CreateCommObj()),
      query_id_(bench::IdOf(comm_.Get(), L"Query")) {}

void QueryClient::Ask(long number) const {
  const std::string command = "Q " + std::to_string(number);
  const Text text(command);
  const std::string reply = number % 2 == 0 ? QueryEarly(text.get()) : QueryLate(text.get());
  if (reply != command + reply_end_) throw std::runtime_error("\"" + command + "\" got \"" + reply + "\"");
}

std::string QueryClient::QueryEarly(BSTR command) const {
  BSTR result = nullptr;
  VARIANT_BOOL succeeded = VARIANT_FALSE;
  CheckResult(comm_->Query(&result, command, nullptr, nullptr, &succeeded), "Query");
  const std::string reply = Narrow(result);
  SysFreeString(result);
  if (succeeded == VARIANT_FALSE) ThrowFailure();
  return reply;
}

std::string QueryClient::QueryLate(BSTR command) const {
  VARIANT variable;
  VariantInit(&variable);
  if (!bench::AskLate(comm_.Get(), query_id_, command, &variable)) ThrowFailure();
  const std::string reply = Narrow(V_BSTR(&variable));
  VariantClear(&variable);
  return reply;
}

void QueryClient::ThrowFailure() const {
  BSTR description = nullptr;
  CheckResult(comm_->get_CommErrorDescr(&description), "CommErrorDescr");
  throw std::runtime_error("Query failed: " + Narrow(description));
}

std::string Narrow(BSTR text) {
  return {text, text + SysStringLen(text)};
}

}  // namespace kesp::soak
