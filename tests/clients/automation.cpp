// Helpers of the client's side that need no template.
#include "tests/clients/automation.h"

#include <gtest/gtest.h>

#include <cstring>

namespace kesp::clients {

Value OfType(VARTYPE type) {
  Value value;
  V_VT(value.get()) = type;
  return value;
}

Value Real(double number) {
  Value value = OfType(VT_R8);
  V_R8(value.get()) = number;
  return value;
}

std::string BytesOf(const VARIANT& value) {
  EXPECT_EQ(V_VT(&value), VT_ARRAY | VT_UI1);
  if (V_VT(&value) != (VT_ARRAY | VT_UI1)) return {};
  SAFEARRAY* array = V_ARRAY(&value);
  LONG lower = -1;
  LONG upper = -1;
  EXPECT_EQ(SafeArrayGetDim(array), 1u);
  SafeArrayGetLBound(array, 1, &lower);
  SafeArrayGetUBound(array, 1, &upper);
  EXPECT_EQ(lower, 0);
  void* data = nullptr;
  if (FAILED(SafeArrayAccessData(array, &data))) return {};
  std::string bytes(static_cast<const char*>(data), static_cast<std::size_t>(upper - lower + 1));
  SafeArrayUnaccessData(array);
  return bytes;
}

SAFEARRAY* NewByteArray(const std::string& bytes) {
  SAFEARRAY* array = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
  void* data = nullptr;
  SafeArrayAccessData(array, &data);
  std::memcpy(data, bytes.data(), bytes.size());
  SafeArrayUnaccessData(array);
  return array;
}

std::ostream& operator<<(std::ostream& out, const Refusal& refusal) {
  return out << std::hex << static_cast<unsigned long>(refusal.result) << std::dec << " "
             << testing::PrintToString(refusal.source) << " " << testing::PrintToString(refusal.description);
}

Refusal RefusalOf(HRESULT result) {
  Refusal refusal{.result = result, .source = {}, .description = {}};
  ComPtr<IErrorInfo> info;
  // After a success there may be that of an earlier call.
  if (SUCCEEDED(result) || GetErrorInfo(0, &info) != S_OK) return refusal;
  Text source;
  Text description;
  info->GetSource(source.out());
  info->GetDescription(description.out());
  refusal.source = source.str();
  refusal.description = description.str();
  return refusal;
}

void ExpectCreated(HRESULT result) {
  EXPECT_EQ(result, S_OK) << "the object cannot be created; is the library registered?";
}

bool IsSameObject(IUnknown* one, IUnknown* other) {
  if (one == nullptr || other == nullptr) return one == other;
  ComPtr<IUnknown> first;
  ComPtr<IUnknown> second;
  one->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(first.GetAddressOf()));
  other->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(second.GetAddressOf()));
  return first.Get() == second.Get();
}

}  // namespace kesp::clients
