// The rules for results by reference, told a second time: convert, call, hand back.
#include "tests/variants/fitted_arguments.h"

#include <cwchar>
#include <deque>

namespace kesp::variants {

namespace {

constexpr DISPID kNoMember = DISPID_UNKNOWN;

// Where a result goes when the member is done.
struct Landing {
  UINT index = 0;               // among the arguments
  VARIANT place{};              // what the member works on
  VARIANT* variable = nullptr;  // the client's, which gets it in any case
  ComPtr<IDispatch> holder;     // the client's object, whose member "value" gets what is new
  DISPID holder_member = kNoMember;
  clients::Value before;
};

VARIANT* EndOfChain(VARIANT* value) {
  return V_VT(value) == (VT_BYREF | VT_VARIANT) ? EndOfChain(V_VARIANTREF(value)) : value;
}

bool IsMissing(const VARIANT& value) {
  return V_VT(&value) == VT_ERROR && V_ERROR(&value) == DISP_E_PARAMNOTFOUND;
}

HRESULT PutValue(const Landing& landing) {
  DISPID new_value = DISPID_PROPERTYPUT;
  VARIANT value = landing.place;
  DISPPARAMS arguments{.rgvarg = &value, .rgdispidNamedArgs = &new_value, .cArgs = 1, .cNamedArgs = 1};
  return landing.holder->Invoke(landing.holder_member, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYPUT,
                                &arguments, nullptr, nullptr, nullptr);
}

bool AreEqual(const VARIANT& one, const VARIANT& other) {
  if (V_VT(&one) != V_VT(&other)) return false;
  if (V_VT(&one) != VT_BSTR) return V_VT(&one) == VT_EMPTY || V_I8(&one) == V_I8(&other);
  const UINT length = SysStringLen(V_BSTR(&one));
  return length == SysStringLen(V_BSTR(&other)) &&
         (length == 0 || std::wmemcmp(V_BSTR(&one), V_BSTR(&other), length) == 0);
}

class FittedCall {
 public:
  FittedCall(const Member& member, const Call& call)
      : parameters(*call.arguments),
        member_(member),
        given_(call.arguments->rgvarg),
        values_(parameters.cArgs) {
    // Of their own: the automation library of Wine writes to the arguments.
    for (UINT i = 0; i < parameters.cArgs; ++i) {
      if (FAILED(VariantCopy(&values_[i], &given_[i]))) values_[i] = given_[i];
    }
    parameters.rgvarg = values_.data();
  }
  ~FittedCall() {
    for (VARIANT& value : values_) VariantClear(&value);
    for (Landing& landing : landings_) VariantClear(&landing.place);
  }
  FittedCall(const FittedCall&) = delete;
  FittedCall& operator=(const FittedCall&) = delete;

  // What the client is told when the member must not be called: an HRESULT, or that its variable is of the
  // wrong type.
  HRESULT refusal = S_OK;
  bool is_wrong_variable = false;
  UINT refused = 0;
  DISPPARAMS parameters;

  void Fit() {
    for (UINT i = 0; i < member_.parameters.size(); ++i) LeaveOut(i);
    for (UINT i = 0; i < member_.parameters.size(); ++i) {
      if (!member_.parameters[i].is_reference || FAILED(refusal) || is_wrong_variable) continue;
      const int index = IndexOf(i);
      const VARTYPE type = member_.parameters[i].type;
      if (index < 0 || (V_VT(&values_[static_cast<UINT>(index)]) == VT_ERROR && type != VT_VARIANT)) continue;
      Land(static_cast<UINT>(index), type);
    }
    for (UINT i = 0; i < parameters.cArgs; ++i) PassByVariable(i);
  }

  HRESULT HandBack(bool succeeded) {
    HRESULT outcome = S_OK;
    for (Landing& landing : landings_) {
      if (landing.holder && (succeeded || !AreEqual(landing.place, *landing.before.get())) &&
          FAILED(PutValue(landing))) {
        outcome = DISP_E_TYPEMISMATCH;
        refused = landing.index;
      }
      if (landing.variable == nullptr || FAILED(VariantClear(landing.variable))) continue;
      *landing.variable = landing.place;
      VariantInit(&landing.place);
    }
    return outcome;
  }

 private:
  // By its name, or else by its place: the last argument is the first parameter.
  int IndexOf(UINT parameter) const {
    for (UINT i = 0; i < parameters.cNamedArgs; ++i) {
      const DISPID name = parameters.rgdispidNamedArgs[i];
      const DISPID wanted =
          name == DISPID_PROPERTYPUT ? static_cast<DISPID>(member_.parameters.size() - 1) : name;
      if (wanted == static_cast<DISPID>(parameter)) return static_cast<int>(i);
    }
    const UINT by_place = parameters.cArgs - parameters.cNamedArgs;
    return parameter < by_place ? static_cast<int>(parameters.cArgs - 1 - parameter) : -1;
  }

  // A variable that says "missing" counts as left out where something may be.
  void LeaveOut(UINT parameter) {
    const int index = IndexOf(parameter);
    if (index < 0 || !member_.parameters[parameter].is_optional) return;
    VARIANT& value = values_[static_cast<UINT>(index)];
    if (V_VT(&value) == (VT_BYREF | VT_VARIANT) && IsMissing(*EndOfChain(&value)))
      value = *EndOfChain(&value);
  }

  // Beside named arguments, so that nobody writes to a value.
  void PassByVariable(UINT index) {
    VARIANT& value = values_[index];
    if (parameters.cNamedArgs == 0 || member_.IsPut()) return;
    if ((V_VT(&value) & VT_BYREF) != 0 || V_VT(&value) == VT_ERROR) return;
    VariantClear(&value);
    V_VT(&value) = VT_BYREF | VT_VARIANT;
    V_VARIANTREF(&value) = &given_[index];
  }

  void Land(UINT index, VARTYPE type) {
    VARIANT& value = values_[index];
    VARIANT* given = EndOfChain(&given_[index]);
    const bool is_variable = given != &given_[index];
    const bool is_any = type == VT_VARIANT;
    if (is_any && is_variable) return;
    if (!is_any && V_VT(given) == (VT_BYREF | type)) {
      value = *given;
      return;
    }
    const bool is_typed = (V_VT(given) & VT_BYREF) != 0;
    if (!is_any && is_typed && !member_.IsPut()) {
      is_wrong_variable = true;
      return;
    }
    Landing& landing = landings_.emplace_back();
    landing.index = index;
    FindHolder(landing, *given, !member_.IsPut() && !is_variable);
    refusal = is_any ? TakeAny(landing, *given) : TakeText(landing, given, type, is_variable);
    if (FAILED(refusal)) {
      refused = index;
      return;
    }
    VariantClear(&value);
    V_VT(&value) = static_cast<VARTYPE>(VT_BYREF | type);
    V_BYREF(&value) = is_any ? static_cast<void*>(&landing.place) : &V_I4(&landing.place);
  }

  static void FindHolder(Landing& landing, const VARIANT& value, bool is_for_result) {
    if (!is_for_result || V_VT(&value) != VT_DISPATCH || V_DISPATCH(&value) == nullptr) return;
    wchar_t text[] = L"value";
    wchar_t* name = text;
    if (FAILED(V_DISPATCH(&value)->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT,
                                                 &landing.holder_member)))
      return;
    landing.holder = V_DISPATCH(&value);
    DISPPARAMS none{};
    const HRESULT read =
        landing.holder->Invoke(landing.holder_member, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET,
                               &none, &landing.place, nullptr, nullptr);
    if (FAILED(read)) VariantClear(&landing.place);
  }

  static HRESULT TakeAny(Landing& landing, const VARIANT& value) {
    if (landing.holder) {
      VariantCopy(landing.before.get(), &landing.place);
    } else if ((V_VT(&value) & VT_BYREF) != 0) {
      landing.place = value;
    } else if (FAILED(VariantCopy(&landing.place, const_cast<VARIANT*>(&value)))) {
      return DISP_E_TYPEMISMATCH;
    }
    return S_OK;
  }

  // Also numbers, for properties that are put by reference.
  HRESULT TakeText(Landing& landing, VARIANT* given, VARTYPE type, bool is_variable) const {
    const HRESULT converted =
        VariantChangeType(&landing.place, landing.holder ? &landing.place : given, 0, type);
    const bool is_for_result = !member_.IsPut() && (is_variable || landing.holder);
    if (FAILED(converted) && !is_for_result) {
      const bool is_told = converted == DISP_E_OVERFLOW || converted == E_OUTOFMEMORY;
      return is_told ? converted : DISP_E_TYPEMISMATCH;
    }
    if (FAILED(converted)) {
      VariantClear(&landing.place);
      V_VT(&landing.place) = type;
      V_I8(&landing.place) = 0;
    }
    if (landing.holder) VariantCopy(landing.before.get(), &landing.place);
    if (is_variable && !member_.IsPut()) landing.variable = given;
    return S_OK;
  }

  const Member& member_;
  VARIANT* given_;
  std::vector<VARIANT> values_;
  std::deque<Landing> landings_;
};

HRESULT RaiseWrongVariable(EXCEPINFO* exception) {
  SetErrorInfo(0, nullptr);
  if (exception != nullptr) {
    *exception = {};
    exception->bstrSource = SysAllocString(L"KespCommObj");
    exception->bstrDescription =
        SysAllocString(L"Type mismatch (the reply is text; pass a variable of that type, or a Variant)");
    exception->scode = clients::ControlError(13);
  }
  return DISP_E_EXCEPTION;
}

}  // namespace

HRESULT InvokeFitted(const PublicClass& one, IDispatch* dual, const Member& member, const Call& call) {
  FittedCall fitted(member, call);
  fitted.Fit();
  if (fitted.is_wrong_variable) return RaiseWrongVariable(call.exception);
  UINT unused = 0;
  UINT* bad_argument = call.bad_argument != nullptr ? call.bad_argument : &unused;
  if (FAILED(fitted.refusal)) {
    *bad_argument = fitted.refused;
    return fitted.refusal;
  }
  clients::Value own;
  VARIANT* result = call.result != nullptr ? call.result : own.get();
  if (member.IsPut()) result = nullptr;
  const HRESULT outcome = one.info->Invoke(dual, member.id, static_cast<WORD>(member.kind),
                                           &fitted.parameters, result, call.exception, bad_argument);
  const bool is_false = result != nullptr && V_VT(result) == VT_BOOL && V_BOOL(result) == VARIANT_FALSE;
  const HRESULT handed = fitted.HandBack(SUCCEEDED(outcome) && !is_false);
  if (FAILED(outcome) || SUCCEEDED(handed)) return outcome;
  if (result != nullptr) VariantClear(result);
  *bad_argument = fitted.refused;
  return handed;
}

}  // namespace kesp::variants
