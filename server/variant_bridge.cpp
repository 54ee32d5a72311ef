// VARIANTs to values and back.
#include "server/variant_bridge.h"

#include <cstring>
#include <new>
#include <string>

#include "server/text_bridge.h"

namespace kesp {

namespace {

// Follows references of a script's variable to the VARIANT that holds the value.
const VARIANT& Dereferenced(const VARIANT& argument) {
  const VARIANT* value = &argument;
  while (V_VT(value) == (VT_BYREF | VT_VARIANT)) value = V_VARIANTREF(value);
  return *value;
}

SAFEARRAY* NewArrayOf(const Bytes& bytes) {
  SAFEARRAY* array = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
  if (array == nullptr) throw std::bad_alloc();
  void* data = nullptr;
  if (FAILED(SafeArrayAccessData(array, &data))) {
    SafeArrayDestroy(array);
    throw std::bad_alloc();
  }
  if (!bytes.empty()) std::memcpy(data, bytes.data(), bytes.size());
  SafeArrayUnaccessData(array);
  return array;
}

void MakeVariant(const BinaryValue& value, VARIANT* variant) {
  if (const auto* text = std::get_if<std::wstring>(&value)) {
    V_BSTR(variant) = Bstr(*text).Detach();
    V_VT(variant) = VT_BSTR;
  } else if (const auto* bytes = std::get_if<Bytes>(&value)) {
    V_ARRAY(variant) = NewArrayOf(*bytes);
    V_VT(variant) = VT_ARRAY | VT_UI1;
  }
}

void StoreInArrayVariable(const BinaryValue& value, SAFEARRAY** variable) {
  const auto* bytes = std::get_if<Bytes>(&value);
  if (bytes == nullptr) throw WrongVariable(ReplyKind::kText);
  SAFEARRAY* array = NewArrayOf(*bytes);
  if (FAILED(SafeArrayDestroy(*variable))) {
    SafeArrayDestroy(array);
    throw Failure(10, L"KespCommObj", L"This array is fixed or temporarily locked");
  }
  *variable = array;
}

void StoreInTextVariable(const BinaryValue& value, BSTR* variable) {
  const auto* text = std::get_if<std::wstring>(&value);
  if (text == nullptr) throw WrongVariable(ReplyKind::kBytes);
  StoreText(*text, variable);
}

// Whether a typed variable of the client (VT_BYREF) can hold a reply of that kind.
bool CanHoldReply(const VARIANT& variable, ReplyKind kind) {
  return V_VT(&variable) == (VT_BYREF | (kind == ReplyKind::kText ? VT_BSTR : VT_ARRAY | VT_UI1));
}

ReplyKind KindOf(const BinaryValue& reply) {
  return std::holds_alternative<std::wstring>(reply) ? ReplyKind::kText : ReplyKind::kBytes;
}

}  // namespace

// Some languages hand over a reference to a variable of its own type, where others do so with one that holds
// anything.
Failure WrongVariable(ReplyKind kind) {
  const Failure mismatch = TypeMismatch();
  const std::wstring reply = kind == ReplyKind::kText ? L"text" : L"an array of bytes";
  return {
      mismatch.number(), mismatch.source(),
      mismatch.description() + L" (the reply is " + reply + L"; pass a variable of that type, or a Variant)"};
}

void RequireRoomFor(ReplyKind kind, const VARIANT& argument) {
  const VARIANT& variable = Dereferenced(argument);
  if ((V_VT(&variable) & VT_BYREF) != 0 && !CanHoldReply(variable, kind)) throw WrongVariable(kind);
}

BinaryValue BinaryValueOf(const VARIANT& argument) {
  const VARIANT& value = Dereferenced(argument);
  switch (V_VT(&value)) {
    case VT_BSTR:
      return TextOf(V_BSTR(&value));
    case VT_BSTR | VT_BYREF:
      return TextOf(*V_BSTRREF(&value));
    default:
      return {};
  }
}

void StoreBinaryValue(const BinaryValue& value, VARIANT* argument) {
  if (std::holds_alternative<std::monostate>(value)) return;
  while (V_VT(argument) == (VT_BYREF | VT_VARIANT)) argument = V_VARIANTREF(argument);
  switch (V_VT(argument)) {
    case VT_ARRAY | VT_UI1 | VT_BYREF:
      return StoreInArrayVariable(value, V_ARRAYREF(argument));
    case VT_BSTR | VT_BYREF:
      return StoreInTextVariable(value, V_BSTRREF(argument));
    default:
      break;
  }
  if ((V_VT(argument) & VT_BYREF) != 0) throw WrongVariable(KindOf(value));
  VARIANT fresh;
  VariantInit(&fresh);
  MakeVariant(value, &fresh);
  if (FAILED(VariantClear(argument))) {
    VariantClear(&fresh);
    throw Failure(10, L"KespCommObj", L"This array is fixed or temporarily locked");
  }
  *argument = fresh;
}

CInstruments::IndexOrKey IndexOrKeyOf(const VARIANT& argument) {
  const VARIANT& value = Dereferenced(argument);
  const VARTYPE type = static_cast<VARTYPE>(V_VT(&value) & VT_TYPEMASK);
  if ((V_VT(&value) & VT_ARRAY) != 0 || type == VT_EMPTY || type == VT_NULL || type == VT_ERROR) {
    throw TypeMismatch();
  }
  ScopedVariant converted;
  if (type == VT_BSTR) {
    if (FAILED(VariantCopyInd(converted.get(), const_cast<VARIANT*>(&value)))) throw TypeMismatch();
    return TextOf(V_BSTR(converted.get()));
  }
  const HRESULT result = VariantChangeType(converted.get(), const_cast<VARIANT*>(&value), 0, VT_I4);
  if (result == DISP_E_OVERFLOW) throw OutOfRange();
  if (FAILED(result)) throw TypeMismatch();
  return static_cast<std::int32_t>(V_I4(converted.get()));
}

}  // namespace kesp
