// The judged calls.
#include "tests/faults/client.h"

#include <cstdlib>

namespace kesp::faults {

namespace {

constexpr VARIANT_BOOL kUnset = 5;

// What an operation's answer and status must be.
bool Answered(_CKespCommObj* comm, HRESULT result, VARIANT_BOOL answer, const char* step, Verdict& verdict) {
  if (!verdict.Succeeded(result, step)) return false;
  verdict.Expect(answer == VARIANT_TRUE || answer == VARIANT_FALSE,
                 std::string(step) + " left its answer unset");
  ECommError status = cfrSuccess;
  const HRESULT told = comm->get_CommError(&status);
  verdict.Expect(told == S_OK, "CommError fails: " + Hexadecimal(told));
  if (answer == VARIANT_TRUE) {
    verdict.Expect(status == cfrSuccess,
                   std::string(step) + " succeeded with the status " + std::to_string(status));
    return true;
  }
  verdict.Expect(status != cfrSuccess, std::string(step) + " failed with the status of a success");
  return false;
}

}  // namespace

bool QueryGives(_CKespCommObj* comm, const std::wstring& command, const std::wstring& expected,
                Verdict& verdict) {
  Text reply(L"before");
  VARIANT_BOOL answer = kUnset;
  const HRESULT result = comm->Query(reply.in_out(), Text(command).get(), nullptr, nullptr, &answer);
  if (!Answered(comm, result, answer, "Query", verdict)) return false;
  const std::wstring given = reply.str();
  verdict.Expect(given == expected, "Query gives another reply: " + std::string(given.begin(), given.end()));
  return true;
}

bool QueryBinaryGives(_CKespCommObj* comm, const std::wstring& command, const std::string& expected,
                      Verdict& verdict) {
  Value reply(7);
  VARIANT_BOOL answer = kUnset;
  const HRESULT result = comm->QueryBinary(reply.get(), Text(command).get(), nullptr, nullptr, &answer);
  if (!Answered(comm, result, answer, "QueryBinary", verdict)) return false;
  verdict.Expect(BytesIn(*reply.get()) == expected,
                 "QueryBinary gives other bytes: " + BytesIn(*reply.get()));
  return true;
}

bool UpdateWorks(_CKespCommObj* comm, const std::wstring& command, Verdict& verdict) {
  VARIANT_BOOL answer = kUnset;
  const HRESULT result = comm->Update(Text(command).get(), nullptr, nullptr, &answer);
  return Answered(comm, result, answer, "Update", verdict);
}

void MustQuery(_CKespCommObj* comm, const std::wstring& command, const std::wstring& expected,
               Verdict& verdict) {
  if (QueryGives(comm, command, expected, verdict)) return;
  Text text;
  comm->get_CommErrorDescr(text.out());
  const std::wstring wide = text.str();
  verdict.Expect(false, "an undisturbed Query fails: " + std::string(wide.begin(), wide.end()));
}

std::string BytesIn(const VARIANT& value) {
  if (V_VT(&value) != (VT_ARRAY | VT_UI1) || V_ARRAY(&value) == nullptr) return "(no bytes)";
  SAFEARRAY* array = V_ARRAY(&value);
  LONG upper = -1;
  SafeArrayGetUBound(array, 1, &upper);
  void* data = nullptr;
  if (FAILED(SafeArrayAccessData(array, &data))) return "(no access)";
  std::string bytes(static_cast<const char*>(data), static_cast<std::size_t>(upper + 1));
  SafeArrayUnaccessData(array);
  return bytes;
}

std::wstring Setting(const char* name) {
  const char* value = std::getenv(name);
  const std::string text = value == nullptr ? "" : value;
  return {text.begin(), text.end()};
}

}  // namespace kesp::faults
