// The type library as a client's compiler or object browser reads it from the registry.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "tests/clients/public_classes.h"
#include "tests/clients/public_enumerations.h"
#include "tests/clients/public_events.h"
#include "tests/clients/public_members.h"
#include "tests/clients/type_reader.h"

namespace kesp::clients {
namespace {

class TypeLibraryTest : public testing::Test {
 protected:
  TypeLibraryTest() { EXPECT_EQ(LoadRegTypeLib(LIBID_KespCommObj, 1, 0, 0, &library_), S_OK); }

  ComPtr<ITypeInfo> Find(const GUID& guid) const {
    ComPtr<ITypeInfo> info;
    EXPECT_EQ(library_->GetTypeInfoOfGuid(guid, &info), S_OK);
    return info;
  }

  // All types of a kind, by name.
  std::set<std::wstring> NamesOf(TYPEKIND kind) const {
    std::set<std::wstring> names;
    for (UINT i = 0; i < library_->GetTypeInfoCount(); ++i) {
      TYPEKIND found = TKIND_MAX;
      library_->GetTypeInfoType(i, &found);
      Text name;
      library_->GetDocumentation(static_cast<INT>(i), name.out(), nullptr, nullptr, nullptr);
      if (found == kind) names.insert(name.str());
    }
    return names;
  }

  Apartment apartment_;
  ComPtr<ITypeLib> library_;
};

TEST_F(TypeLibraryTest, Library_HasItsNameTextAndVersion) {
  Text name;
  Text text;
  ASSERT_EQ(library_->GetDocumentation(-1, name.out(), text.out(), nullptr, nullptr), S_OK);
  EXPECT_EQ(name.str(), L"KespCommObj");
  EXPECT_EQ(text.str(), L"Kesp Communication Object Library");
  TLIBATTR* attributes = nullptr;
  ASSERT_EQ(library_->GetLibAttr(&attributes), S_OK);
  EXPECT_EQ(attributes->wMajorVerNum, 1);
  EXPECT_EQ(attributes->wMinorVerNum, 0);
  EXPECT_EQ(attributes->syskind, sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32);
  library_->ReleaseTLibAttr(attributes);
}

TEST_F(TypeLibraryTest, Types_AreThePublicOnesAndNoOthers) {
  std::set<std::wstring> classes;
  std::set<std::wstring> interfaces;
  for (const PublicClass& one : kPublicClasses) {
    classes.insert(one.name);
    interfaces.insert(one.interface_name);
    if (one.events_name != nullptr) interfaces.insert(one.events_name);
  }
  std::set<std::wstring> enumerations;
  for (const PublicEnumeration& one : PublicEnumerations()) enumerations.insert(one.name);
  EXPECT_EQ(NamesOf(TKIND_COCLASS), classes);
  EXPECT_EQ(NamesOf(TKIND_DISPATCH), interfaces);
  EXPECT_EQ(NamesOf(TKIND_ENUM), enumerations);
  // Each enumeration has one type name besides, and that is all.
  for (const TYPEKIND kind : {TKIND_RECORD, TKIND_MODULE, TKIND_INTERFACE, TKIND_UNION}) {
    EXPECT_EQ(NamesOf(kind), std::set<std::wstring>()) << kind;
  }
}

TEST_F(TypeLibraryTest, Classes_HaveTheirFlagsAndTexts) {
  for (const PublicClass& one : kPublicClasses) {
    const TypeReader type(Find(one.clsid));
    WORD expected = one.is_creatable() ? TYPEFLAG_FCANCREATE : 0;
    if (std::wstring(one.name) == L"CKespCommObj") expected |= TYPEFLAG_FAPPOBJECT;
    EXPECT_EQ(type->wTypeFlags, expected) << NarrowName(one);
    EXPECT_NE(type.HelpText(), L"") << NarrowName(one);
  }
}

TEST_F(TypeLibraryTest, Classes_HaveDefaultAndSourceInterfaces) {
  for (const PublicClass& one : kPublicClasses) {
    const TypeReader type(Find(one.clsid));
    ASSERT_EQ(type->cImplTypes, one.events ? 2 : 1) << NarrowName(one);
    EXPECT_EQ(type.ImplementedType(0).guid, one.default_interface) << NarrowName(one);
    EXPECT_EQ(type.ImplementedType(0).flags, IMPLTYPEFLAG_FDEFAULT) << NarrowName(one);
    if (one.events == nullptr) continue;
    EXPECT_EQ(type.ImplementedType(1).guid, *one.events) << NarrowName(one);
    EXPECT_EQ(type.ImplementedType(1).flags, IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE) << NarrowName(one);
  }
}

TEST_F(TypeLibraryTest, Enumerations_HaveTheirNamesAndValues) {
  for (const PublicEnumeration& one : PublicEnumerations()) {
    const TypeReader type = TypeReader::OfName(library_.Get(), one.name, TKIND_ENUM);
    std::vector<std::pair<std::wstring, long>> expected;
    for (const PublicName& member : one.members) expected.emplace_back(member.name, member.value);
    EXPECT_EQ(type.Constants(), expected) << testing::PrintToString(std::wstring(one.name));
    EXPECT_NE(type.HelpText(), L"") << testing::PrintToString(std::wstring(one.name));
  }
}

TEST_F(TypeLibraryTest, Events_HavePositionsAsIdentifiersAndTheirArguments) {
  for (const PublicEvents& source : AllPublicEvents()) {
    const TypeReader type(Find(source.iid));
    EXPECT_EQ(type->typekind, TKIND_DISPATCH);
    ASSERT_EQ(type->cFuncs, source.events.size());
    for (UINT i = 0; i < type->cFuncs; ++i) {
      const PublicEvent& event = source.events[i];
      const FunctionReader function = type.Function(i);
      const std::string trace = testing::PrintToString(std::wstring(event.name));
      EXPECT_EQ(function.Name(), event.name);
      EXPECT_EQ(function->memid, static_cast<MEMBERID>(i + 1)) << trace;
      EXPECT_EQ(function->invkind, INVOKE_FUNC) << trace;
      EXPECT_EQ(function->elemdescFunc.tdesc.vt, VT_VOID) << trace;
      EXPECT_NE(function.HelpText(), L"") << trace;
      ASSERT_EQ(static_cast<std::size_t>(function->cParams), event.arguments.size()) << trace;
      for (std::size_t n = 0; n < event.arguments.size(); ++n) {
        EXPECT_EQ(function.ArgumentName(n), event.arguments[n].name) << trace;
        EXPECT_EQ(function.ArgumentType(n), DescriptionOf(event.arguments[n].kind)) << trace;
      }
    }
  }
}

TEST_F(TypeLibraryTest, DefaultInterfaces_AreDualAndNotExtensible) {
  for (const PublicClass& one : kPublicClasses) {
    const TypeReader type(Find(one.default_interface));
    EXPECT_EQ(type->typekind, TKIND_DISPATCH) << NarrowName(one);
    EXPECT_TRUE(type->wTypeFlags & TYPEFLAG_FDUAL) << NarrowName(one);
    EXPECT_TRUE(type->wTypeFlags & TYPEFLAG_FNONEXTENSIBLE) << NarrowName(one);
    const TypeReader vtable_half = type.VtableHalf();
    EXPECT_EQ(vtable_half->typekind, TKIND_INTERFACE) << NarrowName(one);
    EXPECT_EQ(vtable_half->guid, one.default_interface) << NarrowName(one);
    EXPECT_TRUE(vtable_half->wTypeFlags & TYPEFLAG_FOLEAUTOMATION) << NarrowName(one);
  }
}

// Exactly these members, so nothing that does not work yet is offered.
TEST_F(TypeLibraryTest, DefaultInterfaces_HaveTheirMembersAndNoOthers) {
  for (const PublicInterface& one : PublicInterfaces()) {
    const TypeReader type(Find(one.iid));
    std::vector<std::wstring> expected;
    for (const PublicMember& member : one.members) {
      const std::wstring id = std::to_wstring(member.id) + L" ";
      const std::wstring name = member.name;
      const std::wstring type_name = member.type;
      const std::wstring result = type_name.empty() ? L"" : L" " + type_name;
      if (member.kind == MemberKind::kMethod) {
        expected.push_back(id + L"method " + name + L"(" + member.arguments + L")" + result);
        continue;
      }
      expected.push_back(id + L"get " + name + L"()" + result);
      if (member.kind == MemberKind::kReadWrite) {
        expected.push_back(id + L"put " + name + L"(vData " + member.arguments + type_name + L")");
      }
    }
    std::vector<std::wstring> found = type.DeclaredMembers();
    std::sort(found.begin(), found.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(found, expected);
  }
}

TEST_F(TypeLibraryTest, EveryMember_HasAHelpText) {
  for (const PublicClass& one : kPublicClasses) {
    const TypeReader type(Find(one.default_interface));
    EXPECT_NE(type.HelpText(), L"") << NarrowName(one);
    for (UINT i = 0; i < type->cFuncs; ++i) {
      const FunctionReader function = type.Function(i);
      if (function.IsInherited()) continue;
      EXPECT_NE(function.HelpText(), L"") << testing::PrintToString(function.Name());
    }
  }
}

TEST_F(TypeLibraryTest, Enumerator_IsHiddenFromBrowsers) {
  const TypeReader type(Find(__uuidof(_CInstruments)));
  for (UINT i = 0; i < type->cFuncs; ++i) {
    const FunctionReader function = type.Function(i);
    const bool is_restricted = (function->wFuncFlags & FUNCFLAG_FRESTRICTED) != 0;
    // IUnknown's and IDispatch's own are hidden by those who declared them.
    if (function.IsInherited()) continue;
    EXPECT_EQ(is_restricted, function->memid == DISPID_NEWENUM) << testing::PrintToString(function.Name());
  }
}

}  // namespace
}  // namespace kesp::clients
