// Making random texts.
#include "tests/variants/random_texts.h"

#include <cwctype>

namespace kesp::variants {

namespace {

constexpr const wchar_t* kTexts[] = {L"",
                                     L"0",
                                     L"1",
                                     L"-1",
                                     L"3",
                                     L"13",
                                     L"10",
                                     L"255",
                                     L"257",
                                     L"99999999999",
                                     L"1e3",
                                     L"1,5",
                                     L" 2 ",
                                     L"&H0D",
                                     L"True",
                                     L"KEY",
                                     L"key",
                                     L"a",
                                     L"*IDN?",
                                     L"ECHO abc",
                                     L"T1",
                                     L"127.0.0.1",
                                     L"0.0.0.0",
                                     L"localhost",
                                     L"A",
                                     L"\x131\x130iI",
                                     L"\xe9\x20ac\x81",
                                     L"\xd83d\xde00",
                                     L"\xd83d",
                                     L"\xde00x",
                                     L"\xffff\xfeff"};

}  // namespace

BSTR RandomText(RandomSource& random) {
  switch (random.Below(16)) {
    case 0:
      return nullptr;
    case 1:
      return SysAllocStringLen(L"a\0b\0", 4);
    case 2:
      return SysAllocStringByteLen("odd length", 1 + 2 * random.Below(5));
    case 3: {
      const unsigned length = random.OneIn(40) ? 70000 : 200 + random.Below(300);
      return SysAllocString(std::wstring(length, static_cast<wchar_t>(L'a' + random.Below(26))).c_str());
    }
    case 4:
      return SysAllocString(std::to_wstring(static_cast<int>(random.Below(400)) - 100).c_str());
    case 5: {
      std::wstring text;
      for (unsigned left = random.Below(8); left > 0; --left)
        text += static_cast<wchar_t>(0x20 + random.Below(0x3000));
      return SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    }
    default:
      return SysAllocString(random.Pick(kTexts));
  }
}

std::wstring RandomName(RandomSource& random, const std::vector<std::wstring>& known) {
  constexpr const wchar_t* kOthers[] = {
      L"",       L"_NewEnum",       L"_newenum",       L"NewEnum", L"NoSuchMember", L" ",
      L"Query ", L"QueryInterface", L"\x130nitialize", L"\xd83d",  L"value"};
  if (random.OneIn(4)) return random.Pick(kOthers);
  if (random.OneIn(30)) return std::wstring(3000, L'q');
  std::wstring name = random.Pick(known);
  for (wchar_t& letter : name) {
    if (random.OneIn(3))
      letter = static_cast<wchar_t>(random.OneIn(2) ? std::towupper(letter) : std::towlower(letter));
  }
  return name;
}

}  // namespace kesp::variants
