// The judged calls.
#include "tests/faults/client.h"

#include <cstdlib>

namespace kesp::faults {

namespace {

// What an operation's answer and status must be.
bool Answered(_CKespCommObj* comm, HRESULT result, VARIANT_BOOL answer, const char* step, Verdict& verdict) {
  const bool is_done = verdict.Answered(result, answer, step);
  if (FAILED(result)) return false;
  ECommError status = cfrSuccess;
  const HRESULT told = comm->get_CommError(&status);
  verdict.Expect(told == S_OK, "CommError fails: " + Hexadecimal(told));
  verdict.Expect(is_done == (status == cfrSuccess), std::string(step) + (is_done ? " succeeded" : " failed") +
                                                        " with the status " + std::to_string(status));
  Text reason;
  if (!is_done && verdict.is_undisturbed()) comm->get_CommErrorDescr(reason.out());
  verdict.ExpectUndisturbed(is_done, "the reason is " + Narrow(reason.str()));
  return is_done;
}

}  // namespace

bool QueryGives(_CKespCommObj* comm, const std::wstring& command, const std::wstring& expected,
                Verdict& verdict) {
  Text reply(L"before");
  VARIANT_BOOL answer = kUnset;
  const HRESULT result = comm->Query(reply.in_out(), Text(command).get(), nullptr, nullptr, &answer);
  if (!Answered(comm, result, answer, "Query", verdict)) return false;
  verdict.Expect(reply.str() == expected, "Query gives another reply: " + Narrow(reply.str()));
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

std::string Narrow(const std::wstring& text) {
  return {text.begin(), text.end()};
}

std::wstring TemporaryPath(const wchar_t* name) {
  wchar_t folder[MAX_PATH] = L"";
  GetTempPathW(MAX_PATH, folder);
  return std::wstring(folder) + name;
}

std::wstring NewEcho() {
  static int number = 0;
  return L"ECHO " + std::to_wstring(++number);
}

std::wstring Setting(const char* name) {
  const char* value = std::getenv(name);
  const std::string text = value == nullptr ? "" : value;
  return {text.begin(), text.end()};
}

}  // namespace kesp::faults
