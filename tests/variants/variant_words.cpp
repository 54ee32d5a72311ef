// Writing VARIANTs out.
#include "tests/variants/variant_words.h"

#include <cstring>
#include <cwchar>

#include "tests/variants/side.h"

namespace kesp::variants {

namespace {

// Long ones by their beginning and a sum.
constexpr std::size_t kShown = 60;

std::wstring Hexadecimal(const void* memory, std::size_t size) {
  const auto* bytes = static_cast<const unsigned char*>(memory);
  std::wstring digits;
  unsigned long sum = 0;
  for (std::size_t i = 0; i < size; ++i) {
    wchar_t two[3];
    std::swprintf(two, std::size(two), L"%02x", bytes[i]);
    if (i < kShown) digits += two;
    sum = sum * 31 + bytes[i];
  }
  if (size > kShown) digits += L"... sum " + std::to_wstring(sum);
  return std::to_wstring(size) + L" bytes " + digits;
}

std::size_t SizeOf(VARTYPE type) {
  switch (type) {
    case VT_EMPTY:
    case VT_NULL:
      return 0;
    case VT_I1:
    case VT_UI1:
      return 1;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      return 2;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
      return 8;
    default:
      return 4;
  }
}

std::wstring ArrayInWords(SAFEARRAY* array, const Side& side) {
  if (array == nullptr) return L"no array";
  std::wstring words = L"array of";
  std::size_t count = 1;
  for (USHORT i = 0; i < array->cDims; ++i) {
    words += L" " + std::to_wstring(array->rgsabound[i].lLbound) + L"+" +
             std::to_wstring(array->rgsabound[i].cElements);
    count *= array->rgsabound[i].cElements;
  }
  words += L", locks " + std::to_wstring(array->cLocks) + L", features " + std::to_wstring(array->fFeatures) +
           L": ";
  if ((array->fFeatures & FADF_VARIANT) == 0)
    return words + Hexadecimal(array->pvData, count * array->cbElements);
  const auto* elements = static_cast<const VARIANT*>(array->pvData);
  for (std::size_t i = 0; i < count; ++i) words += L"[" + InWords(elements[i], side) + L"]";
  return words;
}

// The value of that type at that place.
std::wstring PlaceInWords(VARTYPE type, const void* place, const Side& side) {
  if ((type & VT_ARRAY) != 0) return ArrayInWords(*static_cast<SAFEARRAY* const*>(place), side);
  switch (type) {
    case VT_BSTR:
      return InWords(*static_cast<const BSTR*>(place), side);
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return side.NameOf(*static_cast<IUnknown* const*>(place));
    case VT_VARIANT:
      return L"variable of " + InWords(*static_cast<const VARIANT*>(place), side);
    case VT_DECIMAL:
      // The first two bytes are not its own.
      return Hexadecimal(static_cast<const char*>(place) + 2, sizeof(DECIMAL) - 2);
    case VT_RECORD:
      return L"a record";
    default:
      return Hexadecimal(place, SizeOf(type));
  }
}

}  // namespace

std::wstring InWords(BSTR text, const Side& side) {
  if (text == nullptr) return L"no text";
  const UINT bytes = SysStringByteLen(text);
  const std::wstring neutral = side.Neutral(std::wstring(text, SysStringLen(text)));
  if (bytes % 2 != 0) return L"text of " + Hexadecimal(text, bytes);
  if (neutral.find(L'\0') == std::wstring::npos && neutral.size() <= kShown) return L"\"" + neutral + L"\"";
  return L"\"" + neutral.substr(0, neutral.find(L'\0')).substr(0, kShown) + L"...\" " +
         Hexadecimal(neutral.data(), neutral.size() * sizeof(wchar_t));
}

std::wstring InWords(const VARIANT& value, const Side& side) {
  const VARTYPE type = V_VT(&value);
  const std::wstring words = std::to_wstring(type & VT_TYPEMASK) + ((type & VT_ARRAY) != 0 ? L"[]" : L"") +
                             ((type & VT_BYREF) != 0 ? L"&" : L"") + L" ";
  const auto base = static_cast<VARTYPE>(type & ~VT_BYREF);
  if ((type & VT_BYREF) != 0) return words + PlaceInWords(base, V_BYREF(&value), side);
  return words +
         PlaceInWords(base, type == VT_DECIMAL ? static_cast<const void*>(&value) : &V_I4(&value), side);
}

}  // namespace kesp::variants
