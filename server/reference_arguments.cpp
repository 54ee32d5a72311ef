// Conversion of arguments by reference, in before the call and out after it.
#include "server/reference_arguments.h"

#include <algorithm>

#include "server/text_bridge.h"
#include "server/variant_bridge.h"

namespace kesp {

namespace {

// The argument itself, or the script's variable that it refers to, through a chain of references.
VARIANT* Dereferenced(VARIANT* argument) {
  while (V_VT(argument) == (VT_BYREF | VT_VARIANT)) argument = V_VARIANTREF(argument);
  return argument;
}

// The address of the value inside a VARIANT, as the VARIANT of a reference to it holds it.
void MakeReference(VARIANT* reference, VARIANT* value) {
  V_VT(reference) = static_cast<VARTYPE>(VT_BYREF | V_VT(value));
  V_BYREF(reference) = &V_I4(value);
}

void MakeEmpty(VARIANT* value, VARTYPE type) {
  VariantClear(value);
  V_VT(value) = type;
  V_I8(value) = 0;
}

bool IsReference(const VARIANT& value) {
  return (V_VT(&value) & VT_BYREF) != 0;
}

// An argument that the client left out, but by a variable that says so: nil in Ruby, or an optional argument
// that a macro hands on. The automation library knows only those that are left out without one.
bool IsLeftOutByVariable(VARIANT& argument) {
  const VARIANT& given = *Dereferenced(&argument);
  return &given != &argument && V_VT(&given) == VT_ERROR && V_ERROR(&given) == DISP_E_PARAMNOTFOUND;
}

// The refusal of an argument that VariantChangeType could not convert.
HRESULT RefusalOf(HRESULT conversion) {
  return conversion == DISP_E_OVERFLOW || conversion == E_OUTOFMEMORY ? conversion : DISP_E_TYPEMISMATCH;
}

}  // namespace

bool ReferenceArguments::AreNeeded(const MemberCall& call, const DISPPARAMS& given) {
  return !call.references.empty() ||
         std::any_of(given.rgvarg, given.rgvarg + given.cArgs, IsLeftOutByVariable);
}

ReferenceArguments::ReferenceArguments(const MemberCall& call, const DISPPARAMS& original)
    : is_put_((call.kind & (INVOKE_PROPERTYPUT | INVOKE_PROPERTYPUTREF)) != 0),
      arguments_(original),
      copies_(original.rgvarg, original.rgvarg + original.cArgs) {
  arguments_.rgvarg = copies_.data();
  LeaveOut(call, original);
  for (const ReferenceArgument& reference : call.references) {
    VARIANT* argument = FindArgument(copies_, original, reference.position, call.arguments);
    if (argument == nullptr) continue;
    // An argument left out is the automation library's business; but that of Wine calls the member with a
    // value of any type that is left out, loses what the member stores there, and then refuses the call.
    if (V_VT(argument) == VT_ERROR && reference.type != VT_VARIANT) continue;
    fit_ = reference.type == VT_VARIANT ? PrepareAnyType(*argument) : Prepare(*argument, reference.type);
    if (SUCCEEDED(fit_)) continue;
    bad_argument_ = static_cast<UINT>(argument - copies_.data());
    return;
  }
  ProtectValues(original);
}

void ReferenceArguments::ProtectValues(const DISPPARAMS& original) {
  if (original.cNamedArgs == 0) return;
  for (UINT i = 0; i < original.cArgs; ++i) {
    if (IsReference(copies_[i]) || V_VT(&copies_[i]) == VT_ERROR) continue;
    V_VT(&copies_[i]) = VT_BYREF | VT_VARIANT;
    V_VARIANTREF(&copies_[i]) = &original.rgvarg[i];
  }
}

void ReferenceArguments::StandIn::Remember() {
  before = value;
  text_before = V_VT(&value) == VT_BSTR ? TextOf(V_BSTR(&value)) : std::wstring();
}

bool ReferenceArguments::StandIn::HasChanged() const {
  if (V_VT(&value) != V_VT(&before)) return true;
  if (V_VT(&value) == VT_BSTR) return TextOf(V_BSTR(&value)) != text_before;
  return V_I8(&value) != V_I8(&before);
}

void ReferenceArguments::LeaveOut(const MemberCall& call, const DISPPARAMS& original) {
  for (const UINT position : call.optional) {
    VARIANT* argument = FindArgument(copies_, original, position, call.arguments);
    if (argument != nullptr && IsLeftOutByVariable(*argument)) *argument = *Dereferenced(argument);
  }
}

VARIANT* ReferenceArguments::FindArgument(std::vector<VARIANT>& arguments, const DISPPARAMS& original,
                                          UINT position, UINT arguments_of_call) {
  // Named arguments come first, the others stand last to first behind them.
  for (UINT i = 0; i < original.cNamedArgs; ++i) {
    const DISPID name = original.rgdispidNamedArgs[i];
    const bool is_new_value = name == DISPID_PROPERTYPUT && position == arguments_of_call - 1;
    if (is_new_value || name == static_cast<DISPID>(position)) return &arguments[i];
  }
  const UINT unnamed = original.cArgs - original.cNamedArgs;
  return position < unnamed ? &arguments[original.cArgs - 1 - position] : nullptr;
}

HRESULT ReferenceArguments::Prepare(VARIANT& argument, VARTYPE type) {
  VARIANT* given = Dereferenced(&argument);
  if (V_VT(given) == (VT_BYREF | type)) {
    // A typed variable of the client, which the member uses itself.
    argument = *given;
    return S_OK;
  }
  // A result cannot be stored in a typed variable of another type; a property's value is only read.
  if (!is_put_ && IsReference(*given)) throw WrongVariable(ReplyKind::kText);
  const bool is_variable = !is_put_ && given != &argument;
  auto stand_in = std::make_unique<StandIn>(&argument);
  if (!is_put_ && !is_variable) stand_in->object = ResultObject(*given);
  if (stand_in->object) stand_in->object.Read(&stand_in->value);
  const HRESULT conversion =
      VariantChangeType(&stand_in->value, stand_in->object ? &stand_in->value : given, 0, type);
  if (FAILED(conversion)) {
    if (!is_variable && !stand_in->object) return RefusalOf(conversion);
    // Whatever the variable for a result held before, the member gets a value of its type.
    MakeEmpty(&stand_in->value, type);
  }
  if (is_variable) stand_in->variable = given;
  if (stand_in->object) stand_in->Remember();
  MakeReference(&argument, &stand_in->value);
  stand_ins_.push_back(std::move(stand_in));
  return S_OK;
}

HRESULT ReferenceArguments::PrepareAnyType(VARIANT& argument) {
  if (V_VT(&argument) == (VT_BYREF | VT_VARIANT)) return S_OK;
  auto stand_in = std::make_unique<StandIn>(&argument);
  if (IsReference(argument)) {
    // A typed variable of the client: the member sees the reference, and stores through it or refuses it.
    stand_in->value = argument;
  } else if (stand_in->object = ResultObject(argument); stand_in->object) {
    stand_in->object.Read(&stand_in->value);
    stand_in->Remember();
  } else if (FAILED(VariantCopy(&stand_in->value, &argument))) {
    return DISP_E_TYPEMISMATCH;
  }
  V_VT(&argument) = VT_BYREF | VT_VARIANT;
  V_VARIANTREF(&argument) = &stand_in->value;
  stand_ins_.push_back(std::move(stand_in));
  return S_OK;
}

HRESULT ReferenceArguments::WriteBack(bool call_succeeded) {
  HRESULT outcome = S_OK;
  for (auto& stand_in : stand_ins_) {
    if (stand_in->object && (call_succeeded || stand_in->HasChanged()) &&
        FAILED(stand_in->object.Write(&stand_in->value))) {
      outcome = DISP_E_TYPEMISMATCH;
      bad_argument_ = static_cast<UINT>(stand_in->argument - copies_.data());
    }
    if (stand_in->variable == nullptr) continue;
    if (FAILED(VariantClear(stand_in->variable))) continue;  // a locked array keeps its value
    *stand_in->variable = stand_in->value;
    VariantInit(&stand_in->value);
  }
  return outcome;
}

}  // namespace kesp
