// Random arguments.
#include "tests/variants/argument_list.h"

#include <string_view>

#include "tests/variants/random_texts.h"
#include "tests/variants/variant_words.h"

namespace kesp::variants {

namespace {

constexpr VARTYPE kPlainTypes[] = {VT_EMPTY, VT_NULL, VT_I1,   VT_UI1,     VT_I2,    VT_UI2,   VT_I4, VT_UI4,
                                   VT_I8,    VT_UI8,  VT_INT,  VT_UINT,    VT_R4,    VT_R8,    VT_CY, VT_DATE,
                                   VT_BOOL,  VT_BSTR, VT_BSTR, VT_DECIMAL, VT_ERROR, VT_RECORD};
constexpr long long kNumbers[] = {0,      1,      -1,         2,          3,           5,        13,    14,
                                  30,     31,     127,        128,        255,         256,      257,   32767,
                                  32768,  -32768, 65535,      65536,      100,         250,      10001, 99999,
                                  -65536, 3600,   2147483647, 2147483648, -2147483648, 1LL << 53};
constexpr double kReals[] = {0.0, -0.5, 0.5, 1.5, 2.5, 1e10, -1e300, 45000.75, 2958465.5, -657434.0};

VARIANT Empty() {
  VARIANT value;
  VariantInit(&value);
  return value;
}

VARIANT OfType(VARTYPE type) {
  VARIANT value{};
  V_VT(&value) = type;
  return value;
}

VARIANT LeftOut() {
  VARIANT value = OfType(VT_ERROR);
  V_ERROR(&value) = DISP_E_PARAMNOTFOUND;
  return value;
}

bool IsPlainNumber(VARTYPE type) {
  return type != VT_EMPTY && type != VT_NULL && type != VT_BSTR && type != VT_ERROR && type != VT_RECORD;
}

double RealOf(RandomSource& random) {
  if (random.OneIn(2)) return random.Pick(kReals);
  return static_cast<double>(random.Pick(kNumbers));
}

}  // namespace

ArgumentList::~ArgumentList() {
  for (SAFEARRAY* array : locked_) SafeArrayUnlock(array);
  for (VARIANT& value : values) VariantClear(&value);
  for (VARIANT& cell : cells_) VariantClear(&cell);
}

DISPPARAMS ArgumentList::parameters() {
  return {.rgvarg = values.data(),
          .rgdispidNamedArgs = names.data(),
          .cArgs = static_cast<UINT>(values.size()),
          .cNamedArgs = static_cast<UINT>(names.size())};
}

VARIANT ArgumentList::Plain(RandomSource& random, VARTYPE type) {
  VARIANT value = OfType(type);
  if (type == VT_BSTR) {
    V_BSTR(&value) = RandomText(random);
  } else if (type == VT_ERROR) {
    V_ERROR(&value) = random.OneIn(2) ? DISP_E_PARAMNOTFOUND : E_FAIL;
  } else if (type == VT_BOOL) {
    V_BOOL(&value) = static_cast<VARIANT_BOOL>(random.OneIn(4) ? 1 : -static_cast<int>(random.Below(2)));
  } else if (type == VT_R4) {
    V_R4(&value) = static_cast<float>(RealOf(random));
  } else if (type == VT_R8 || type == VT_DATE) {
    V_R8(&value) = RealOf(random);
  } else if (type == VT_DECIMAL) {
    VarDecFromI8(random.Pick(kNumbers), &V_DECIMAL(&value));
    V_DECIMAL(&value).scale = static_cast<BYTE>(random.Below(5));
    V_VT(&value) = VT_DECIMAL;
  } else if (IsPlainNumber(type)) {
    // Above the size of the type the bytes are ignored.
    V_I8(&value) = random.OneIn(8) ? static_cast<long long>(random.Next()) : random.Pick(kNumbers);
  }
  return value;
}

VARIANT ArgumentList::Array(RandomSource& random) {
  constexpr VARTYPE kElements[] = {VT_UI1, VT_UI1, VT_VARIANT, VT_BSTR, VT_I4, VT_R8, VT_DISPATCH};
  const VARTYPE element = random.Pick(kElements);
  VARIANT value = OfType(static_cast<VARTYPE>(VT_ARRAY | element));
  if (random.OneIn(6)) return value;
  SAFEARRAYBOUND bounds[2];
  for (SAFEARRAYBOUND& bound : bounds)
    bound = {.cElements = random.Below(4), .lLbound = static_cast<LONG>(random.Below(3)) - 1};
  V_ARRAY(&value) = SafeArrayCreate(element, random.OneIn(4) ? 2 : 1, bounds);
  if (element == VT_VARIANT && V_ARRAY(&value)->rgsabound[0].cElements > 0 && V_ARRAY(&value)->cDims == 1) {
    static_cast<VARIANT*>(V_ARRAY(&value)->pvData)[0] = Plain(random, random.Pick(kPlainTypes));
  }
  if (random.OneIn(5)) {
    SafeArrayLock(V_ARRAY(&value));
    locked_.push_back(V_ARRAY(&value));
  }
  return value;
}

VARIANT ArgumentList::Object(RandomSource& random) {
  VARIANT value = OfType(random.OneIn(4) ? VT_UNKNOWN : VT_DISPATCH);
  IDispatch* object = nullptr;
  switch (random.Below(8)) {
    case 0:
      break;
    case 1:
      object = side_.object();
      break;
    case 2:
    case 3:
      object = side_.MakeInstrument();
      break;
    default: {
      const Manners manners{.has_value_member = random.OneIn(2),
                            .has_default_member = random.OneIn(2),
                            .reading = random.OneIn(4) ? E_ACCESSDENIED : S_OK,
                            .writing = random.OneIn(4) ? E_ACCESSDENIED : S_OK};
      object = side_.MakeCounted(manners, Plain(random, random.Pick(kPlainTypes)));
    }
  }
  if (object != nullptr) object->AddRef();
  V_DISPATCH(&value) = object;
  return value;
}

// A reference to a variable of that very type, or to one of any.
VARIANT ArgumentList::Referring(RandomSource& random, VARIANT value) {
  const VARTYPE type = V_VT(&value);
  if (random.OneIn(2) || type == VT_EMPTY || type == VT_NULL || type == VT_RECORD) return VariableOf(value);
  VARIANT& cell = cells_.emplace_back(value);
  VARIANT reference = OfType(static_cast<VARTYPE>(VT_BYREF | type));
  V_BYREF(&reference) = type == VT_DECIMAL ? static_cast<void*>(&cell) : &V_I4(&cell);
  return random.OneIn(8) ? VariableOf(reference) : reference;
}

VARIANT ArgumentList::VariableOf(VARIANT value) {
  VARIANT reference = OfType(VT_BYREF | VT_VARIANT);
  V_VARIANTREF(&reference) = &cells_.emplace_back(value);
  return reference;
}

VARIANT ArgumentList::AnyValue(RandomSource& random) {
  VARIANT value = Empty();
  switch (random.Below(8)) {
    case 0:
      value = Array(random);
      break;
    case 1:
    case 2:
      value = Object(random);
      break;
    case 3:
      value = LeftOut();
      break;
    default:
      value = Plain(random, random.Pick(kPlainTypes));
  }
  if (random.OneIn(3)) value = Referring(random, value);
  if (V_VT(&value) == (VT_BYREF | VT_VARIANT) && random.OneIn(8)) value = VariableOf(value);
  return value;
}

VARIANT ArgumentList::FittingValue(RandomSource& random, const Parameter& parameter) {
  if (parameter.is_optional && random.OneIn(4)) return random.OneIn(2) ? LeftOut() : VariableOf(LeftOut());
  VARTYPE type = parameter.type;
  if (type == VT_VARIANT) type = random.OneIn(2) ? VT_I4 : VT_BSTR;
  if (type == VT_DISPATCH) {
    VARIANT object = OfType(VT_DISPATCH);
    V_DISPATCH(&object) = side_.MakeInstrument();
    V_DISPATCH(&object)->AddRef();
    return object;
  }
  VARIANT value = Plain(random, type);
  // Numbers that settings and positions really have.
  if (type != VT_BSTR && IsPlainNumber(type) && random.OneIn(2))
    V_I4(&value) = static_cast<LONG>(random.Below(15));
  if (!parameter.is_reference) return random.OneIn(5) ? Referring(random, value) : value;
  if (parameter.type == VT_VARIANT || random.OneIn(2)) return random.OneIn(8) ? value : VariableOf(value);
  cells_.push_back(value);
  VARIANT reference = OfType(static_cast<VARTYPE>(VT_BYREF | type));
  V_BYREF(&reference) = &V_I4(&cells_.back());
  return reference;
}

void ArgumentList::ReplaceWhere(VARTYPE type, const std::function<bool(const VARIANT&)>& is_harmful,
                                const std::function<VARIANT()>& harmless) {
  for (VARIANT& value : values) {
    VARIANT converted = Empty();
    const bool stays = FAILED(VariantChangeType(&converted, &value, 0, type)) || !is_harmful(converted);
    VariantClear(&converted);
    if (stays) continue;
    VariantClear(&value);
    value = harmless();
  }
}

void ArgumentList::KeepWithin(long least, long limit) {
  ReplaceWhere(
      VT_I4, [&](const VARIANT& number) { return V_I4(&number) < least || V_I4(&number) > limit; },
      [&] {
        VARIANT value = OfType(VT_I4);
        V_I4(&value) = limit;
        return value;
      });
}

void ArgumentList::KeepFileNamesHere() {
  ReplaceWhere(
      VT_BSTR,
      [](const VARIANT& text) {
        const std::wstring_view name(V_BSTR(&text), SysStringLen(V_BSTR(&text)));
        return name.find_first_of(L"\\/:.") != std::wstring_view::npos;
      },
      [] {
        VARIANT value = OfType(VT_BSTR);
        V_BSTR(&value) = SysAllocString(L"random.log");
        return value;
      });
}

std::wstring ArgumentList::InWords() const {
  std::wstring words;
  for (const VARIANT& value : values) words += L"(" + variants::InWords(value, side_) + L") ";
  for (const DISPID name : names) words += L"name " + std::to_wstring(name) + L" ";
  return words;
}

std::wstring ArgumentList::ValuesInWords() const {
  std::wstring words;
  for (const VARIANT& value : values) {
    // Of a reference only where it leads to.
    words += (V_VT(&value) & VT_BYREF) == 0
                 ? variants::InWords(value, side_)
                 : std::to_wstring(V_VT(&value)) + L"@" +
                       std::to_wstring(reinterpret_cast<std::uintptr_t>(V_BYREF(&value)));
    words += L"; ";
  }
  for (const DISPID name : names) words += std::to_wstring(name) + L" ";
  return words;
}

}  // namespace kesp::variants
