// What a call must come to: the automation library's own dispatch, and the rules that ours adds to it.
#pragma once

#include <vector>

#include "tests/variants/type_members.h"

namespace kesp::variants {

// A call as IDispatch::Invoke takes it, and what it fills.
struct Call {
  DISPID id = DISPID_UNKNOWN;
  IID iid = IID_NULL;
  WORD flags = 0;
  DISPPARAMS* arguments = nullptr;
  VARIANT* result = nullptr;
  EXCEPINFO* exception = nullptr;
  UINT* bad_argument = nullptr;
};

// ITypeInfo::Invoke on an object's dual interface makes the call. What docs/reference/languages.md and
// server/dispatch.h promise beyond that is written here a second time, without a line of the library's.
class SecondOpinion {
 public:
  explicit SecondOpinion(const std::vector<PublicClass>& classes) : classes_(classes) {}

  // `dual` is the object's interface as the vtable has it.
  HRESULT Invoke(const PublicClass& one, IDispatch* dual, const Call& call) const;

  // The member that the call is for; null for none.
  static const Member* Find(const PublicClass& one, DISPID id, WORD flags);

 private:
  HRESULT InvokeDefaultMember(const PublicClass& one, IDispatch* dual, const Member& member,
                              const Call& call) const;

  const std::vector<PublicClass>& classes_;
};

}  // namespace kesp::variants
