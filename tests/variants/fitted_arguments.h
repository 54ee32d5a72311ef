// The second opinion on arguments that a client passes otherwise than the automation library wants them.
#pragma once

#include "tests/variants/second_opinion.h"

namespace kesp::variants {

// Calls the member by ITypeInfo::Invoke with arguments that fit it, and hands on what they bring.
HRESULT InvokeFitted(const PublicClass& one, IDispatch* dual, const Member& member, const Call& call);

}  // namespace kesp::variants
