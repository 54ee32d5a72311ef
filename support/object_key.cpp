// GUIDs as text, and the object keys cut from them.
#include "support/object_key.h"

namespace kesp {

namespace {

void AppendHexadecimal(std::wstring& text, std::uint32_t number, int digits) {
  constexpr wchar_t kDigits[] = L"0123456789ABCDEF";
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
    text.push_back(kDigits[(number >> shift) & 0xFU]);
}

}  // namespace

std::wstring NewGuidText(GuidSource& source) {
  const std::optional<GuidFields> guid = source.NewGuid();
  if (!guid) return {};
  std::wstring text;
  AppendHexadecimal(text, guid->data1, 8);
  AppendHexadecimal(text, guid->data2, 4);
  AppendHexadecimal(text, guid->data3, 4);
  for (const std::uint8_t byte : guid->data4) AppendHexadecimal(text, byte, 2);
  return text;
}

std::wstring NewObjectKey(GuidSource& source) {
  return NewGuidText(source).substr(0, 10) + L"K";
}

}  // namespace kesp
