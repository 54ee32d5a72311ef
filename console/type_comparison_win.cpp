// Type by type, and member by member.
#include "console/type_comparison_win.h"

#include <wrl/client.h>

#include <array>
#include <cstdio>
#include <vector>

#include "console/com_calls_win.h"
#include "console/public_classes_win.h"

namespace kesp::console {
namespace {

// A type in words: what clients are compiled against, but for the types of arguments.
struct TypeWords {
  std::string name;
  std::vector<std::string> facts;
};

std::string NameOf(ITypeInfo* info, MEMBERID member) {
  ComText name;
  info->GetDocumentation(member, name.out(), nullptr, nullptr, nullptr);
  return name.str();
}

void AddFunctions(ITypeInfo* info, UINT count, TypeWords& words) {
  for (UINT i = 0; i < count; ++i) {
    FUNCDESC* function = nullptr;
    if (FAILED(info->GetFuncDesc(i, &function))) continue;
    words.facts.push_back(NameOf(info, function->memid) + " " + std::to_string(function->memid) + " " +
                          std::to_string(function->invkind) + " " + std::to_string(function->oVft) + " " +
                          std::to_string(function->cParams));
    info->ReleaseFuncDesc(function);
  }
}

void AddConstants(ITypeInfo* info, UINT count, TypeWords& words) {
  for (UINT i = 0; i < count; ++i) {
    VARDESC* constant = nullptr;
    if (FAILED(info->GetVarDesc(i, &constant))) continue;
    words.facts.push_back(
        NameOf(info, constant->memid) + " = " +
        (constant->varkind == VAR_CONST ? std::to_string(V_I4(constant->lpvarValue)) : "?"));
    info->ReleaseVarDesc(constant);
  }
}

TypeWords WordsOf(ITypeLib* library, UINT index) {
  TypeWords words;
  ComPtr<ITypeInfo> info;
  TYPEATTR* attributes = nullptr;
  if (FAILED(library->GetTypeInfo(index, &info)) || FAILED(info->GetTypeAttr(&attributes))) return words;
  words.name = NameOf(info.Get(), MEMBERID_NIL);
  words.facts.push_back(GuidText(attributes->guid) + " " + std::to_string(attributes->typekind) + " " +
                        std::to_string(attributes->wTypeFlags) + " " +
                        std::to_string(attributes->cImplTypes));
  AddFunctions(info.Get(), attributes->cFuncs, words);
  AddConstants(info.Get(), attributes->cVars, words);
  info->ReleaseTypeAttr(attributes);
  return words;
}

}  // namespace

std::string DifferenceOf(ITypeLib* one, ITypeLib* other) {
  const UINT count = one->GetTypeInfoCount();
  if (count != other->GetTypeInfoCount())
    return "the number of types differs from that in the library's file";
  for (UINT i = 0; i < count; ++i) {
    const TypeWords left = WordsOf(one, i);
    const TypeWords right = WordsOf(other, i);
    if (left.name != right.name || left.facts != right.facts)
      return left.name + " differs from " + right.name + " in the library's file";
  }
  return "";
}

std::string ResultText(HRESULT result) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "%08lX", static_cast<unsigned long>(result));
  return text.data();
}

}  // namespace kesp::console
