// What only the registered type library itself can show: where it is found, and its help texts.
#include <gtest/gtest.h>

#include "KespCommObj.h"
#include "tests/clients/automation.h"

namespace kesp::clients {
namespace {

class TypeLibraryTest : public testing::Test {
 protected:
  TypeLibraryTest() { EXPECT_EQ(LoadRegTypeLib(LIBID_KespCommObj, 1, 0, 0, &library_), S_OK); }

  Apartment apartment_;
  ComPtr<ITypeLib> library_;
};

TEST_F(TypeLibraryTest, Library_HasItsTextAndWidth) {
  Text text;
  ASSERT_EQ(library_->GetDocumentation(-1, nullptr, text.out(), nullptr, nullptr), S_OK);
  EXPECT_EQ(text.str(), L"Kesp Communication Object Library");
  TLIBATTR* attributes = nullptr;
  ASSERT_EQ(library_->GetLibAttr(&attributes), S_OK);
  EXPECT_EQ(attributes->syskind, sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32);
  library_->ReleaseTLibAttr(attributes);
}

// Browsers and compilers cut longer ones, or refuse them.
void ExpectHelpText(ITypeInfo* info, MEMBERID id) {
  Text name;
  Text text;
  EXPECT_EQ(info->GetDocumentation(id, name.out(), text.out(), nullptr, nullptr), S_OK);
  EXPECT_GT(text.str().size(), 0U) << testing::PrintToString(name.str());
  EXPECT_LE(text.str().size(), 255U) << testing::PrintToString(name.str());
}

TEST_F(TypeLibraryTest, EveryTypeAndMember_HasAHelpTextOfAtMost255Characters) {
  for (UINT i = 0; i < library_->GetTypeInfoCount(); ++i) {
    ComPtr<ITypeInfo> info;
    ASSERT_EQ(library_->GetTypeInfo(i, &info), S_OK);
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
    const UINT functions = attributes->cFuncs;
    const bool is_alias = attributes->typekind == TKIND_ALIAS;
    info->ReleaseTypeAttr(attributes);
    // The second name of an enumeration.
    if (!is_alias) ExpectHelpText(info.Get(), MEMBERID_NIL);
    for (UINT n = 0; n < functions; ++n) {
      FUNCDESC* function = nullptr;
      ASSERT_EQ(info->GetFuncDesc(n, &function), S_OK);
      const MEMBERID id = function->memid;
      info->ReleaseFuncDesc(function);
      // IUnknown's and IDispatch's own have none.
      if (id < 0x60000000) ExpectHelpText(info.Get(), id);
    }
  }
}

}  // namespace
}  // namespace kesp::clients
