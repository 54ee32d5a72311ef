// Every member of the default interfaces, in the order of its dispatch identifiers.
#pragma once

#include <string>
#include <vector>

#include "KespCommObj.h"
#include "tests/clients/automation.h"

namespace kesp::clients {

enum class MemberKind { kMethod, kReadOnly, kReadWrite };

struct PublicMember {
  DISPID id;
  const wchar_t* name;
  MemberKind kind;
  const wchar_t* type;       // of the value or the result; what stands in the type library
  const wchar_t* arguments;  // of a method: "name type" with a comma between two; "=" and its default for an
                             // optional one, "&" in front of a type by reference
};

struct PublicInterface {
  const IID& iid;
  std::vector<PublicMember> members;
};

const std::vector<PublicInterface>& PublicInterfaces();

}  // namespace kesp::clients
