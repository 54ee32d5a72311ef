// Which member a call is for, and whether it may have those arguments.
#include "tests/variants/second_opinion.h"

#include "tests/variants/fitted_arguments.h"

namespace kesp::variants {

const Member* SecondOpinion::Find(const PublicClass& one, DISPID id, WORD flags) {
  // A client need not know whether it calls a method or reads a property.
  constexpr WORD kEither = DISPATCH_METHOD | DISPATCH_PROPERTYGET;
  if ((flags & kEither) != 0) flags |= kEither;
  for (const Member& member : one.members) {
    if (member.id == id && (member.kind & flags) != 0) return &member;
  }
  return nullptr;
}

HRESULT SecondOpinion::Invoke(const PublicClass& one, IDispatch* dual, const Call& call) const {
  if (call.iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (call.arguments == nullptr) return E_POINTER;
  if (call.result != nullptr) VariantInit(call.result);
  const Member* member = Find(one, call.id, call.flags);
  if (member == nullptr) return DISP_E_MEMBERNOTFOUND;
  const DISPPARAMS& given = *call.arguments;
  if (given.cNamedArgs > given.cArgs) return DISP_E_BADPARAMCOUNT;
  if (given.cArgs > member->parameters.size()) return InvokeDefaultMember(one, dual, *member, call);
  return InvokeFitted(one, dual, *member, call);
}

// tcp.Devices(1) means tcp.Devices.Item(1).
HRESULT SecondOpinion::InvokeDefaultMember(const PublicClass& one, IDispatch* dual, const Member& member,
                                           const Call& call) const {
  if (member.kind != INVOKE_PROPERTYGET || !member.parameters.empty()) return DISP_E_BADPARAMCOUNT;
  clients::Value held;
  DISPPARAMS none{};
  Call read = call;
  read.arguments = &none;
  read.result = held.get();
  const HRESULT outcome = InvokeFitted(one, dual, member, read);
  if (FAILED(outcome)) return outcome;
  if (held.type() != VT_DISPATCH || V_DISPATCH(held.get()) == nullptr) return DISP_E_BADPARAMCOUNT;
  const std::wstring name = ClassNameOf(V_DISPATCH(held.get()));
  for (const PublicClass& other : classes_) {
    if (other.name != name) continue;
    ComPtr<IDispatch> part;
    V_DISPATCH(held.get())
        ->QueryInterface(other.default_interface, reinterpret_cast<void**>(part.GetAddressOf()));
    Call on_part = call;
    on_part.id = DISPID_VALUE;
    return Invoke(other, part.Get(), on_part);
  }
  // A transport as a communication object's CommObject, which has no default member either.
  return DISP_E_MEMBERNOTFOUND;
}

}  // namespace kesp::variants
