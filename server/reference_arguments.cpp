// Conversion of arguments by reference, in before the call and out after it.
#include "server/reference_arguments.h"

namespace kesp {

namespace {

// The script's variable at the end of a chain of references.
VARIANT* VariableOf(const VARIANT& argument) {
  VARIANT* variable = V_VARIANTREF(&argument);
  while (V_VT(variable) == (VT_BYREF | VT_VARIANT)) variable = V_VARIANTREF(variable);
  return variable;
}

// The address of the value inside a VARIANT, as the VARIANT of a reference to it holds it.
void MakeReference(VARIANT* reference, VARIANT* value) {
  V_VT(reference) = static_cast<VARTYPE>(VT_BYREF | V_VT(value));
  V_BYREF(reference) = &V_I4(value);
}

}  // namespace

ReferenceArguments::ReferenceArguments(const MemberCall& call, const DISPPARAMS& original)
    : arguments_(original), copies_(original.rgvarg, original.rgvarg + original.cArgs) {
  arguments_.rgvarg = copies_.data();
  for (const ReferenceArgument& reference : call.references) {
    VARIANT* argument = FindArgument(copies_, original, reference.position, call.arguments);
    if (argument == nullptr) continue;
    if (reference.type == VT_VARIANT) {
      PrepareAnyType(*argument);
    } else {
      Prepare(*argument, reference.type);
    }
  }
}

ReferenceArguments::~ReferenceArguments() {
  for (auto& stand_in : stand_ins_) VariantClear(&stand_in->value);
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

void ReferenceArguments::Prepare(VARIANT& argument, VARTYPE type) {
  if (V_VT(&argument) == (VT_BYREF | type)) return;
  // An argument left out is the automation library's business.
  if (V_VT(&argument) == VT_ERROR) return;
  VARIANT* variable = V_VT(&argument) == (VT_BYREF | VT_VARIANT) ? VariableOf(argument) : nullptr;
  if (variable != nullptr && V_VT(variable) == (VT_BYREF | type)) {
    // The variable stands for a typed one, which the member stores into itself.
    argument = *variable;
    return;
  }
  auto stand_in = std::make_unique<StandIn>();
  VariantInit(&stand_in->value);
  if (variable != nullptr) {
    stand_in->variable = variable;
    ConvertIn(*stand_in->variable, type, &stand_in->value);
  } else if (FAILED(VariantChangeType(&stand_in->value, &argument, 0, type))) {
    // Not a variable and not convertible: refused by the automation library as a type mismatch.
    return;
  }
  MakeReference(&argument, &stand_in->value);
  stand_ins_.push_back(std::move(stand_in));
}

void ReferenceArguments::PrepareAnyType(VARIANT& argument) {
  if (V_VT(&argument) == (VT_BYREF | VT_VARIANT) || V_VT(&argument) == VT_ERROR) return;
  auto stand_in = std::make_unique<StandIn>();
  VariantInit(&stand_in->value);
  if ((V_VT(&argument) & VT_BYREF) != 0) {
    // A typed variable of the client: the member sees the reference and stores through it.
    stand_in->value = argument;
  } else if (FAILED(VariantCopy(&stand_in->value, &argument))) {
    return;
  }
  V_VT(&argument) = VT_BYREF | VT_VARIANT;
  V_VARIANTREF(&argument) = &stand_in->value;
  stand_ins_.push_back(std::move(stand_in));
}

void ReferenceArguments::ConvertIn(const VARIANT& source, VARTYPE type, VARIANT* value) {
  if (SUCCEEDED(VariantChangeType(value, const_cast<VARIANT*>(&source), 0, type))) return;
  // Whatever the variable held before, the member gets a value of its type: an empty one.
  VariantClear(value);
  V_VT(value) = type;
  V_I8(value) = 0;
}

void ReferenceArguments::WriteBack() {
  for (auto& stand_in : stand_ins_) {
    if (stand_in->variable == nullptr) continue;
    if (FAILED(VariantClear(stand_in->variable))) continue;  // a locked array keeps its value
    *stand_in->variable = stand_in->value;
    VariantInit(&stand_in->value);
  }
}

}  // namespace kesp
