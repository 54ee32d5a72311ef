// What every object tells about itself: identity, class information, error support, type information.
#include <gtest/gtest.h>

#include "tests/clients/public_classes.h"

namespace kesp::clients {
namespace {

class ClassInfoTest : public testing::TestWithParam<PublicClass> {
 protected:
  static GUID GuidOf(const ComPtr<ITypeInfo>& info, TYPEKIND kind) {
    TYPEATTR* attributes = nullptr;
    EXPECT_EQ(info->GetTypeAttr(&attributes), S_OK);
    EXPECT_EQ(attributes->typekind, kind);
    const GUID guid = attributes->guid;
    info->ReleaseTypeAttr(attributes);
    return guid;
  }
  template <class Interface>
  ComPtr<Interface> As() const {
    ComPtr<Interface> found;
    EXPECT_EQ(object_.As(&found), S_OK);
    return found;
  }

  Apartment apartment_;
  ComPtr<IUnknown> object_ = MakeObject(GetParam());
};

TEST_P(ClassInfoTest, EveryInterface_LeadsToTheSameIdentity) {
  const IID interfaces[] = {IID_IDispatch, GetParam().default_interface, IID_ISupportErrorInfo,
                            IID_IProvideClassInfo, IID_IProvideClassInfo2};
  for (const IID& from : interfaces) {
    ComPtr<IUnknown> first;
    ASSERT_EQ(object_->QueryInterface(from, reinterpret_cast<void**>(first.GetAddressOf())), S_OK);
    EXPECT_TRUE(IsSameObject(first.Get(), object_.Get()));
    for (const IID& to : interfaces) {
      ComPtr<IUnknown> second;
      EXPECT_EQ(first->QueryInterface(to, reinterpret_cast<void**>(second.GetAddressOf())), S_OK);
    }
  }
}

TEST_P(ClassInfoTest, UnknownInterface_IsRefused) {
  void* found = this;
  EXPECT_EQ(object_->QueryInterface(IID_IStream, &found), E_NOINTERFACE);
  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(object_->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

TEST_P(ClassInfoTest, ClassInfo_IsThatOfTheClass) {
  ComPtr<ITypeInfo> info;
  ASSERT_EQ(As<IProvideClassInfo>()->GetClassInfo(&info), S_OK);
  EXPECT_EQ(GuidOf(info, TKIND_COCLASS), GetParam().clsid);
  EXPECT_EQ(As<IProvideClassInfo>()->GetClassInfo(nullptr), E_POINTER);
}

TEST_P(ClassInfoTest, DefaultSource_IsTheEventInterfaceOrRefused) {
  const auto info = As<IProvideClassInfo2>();
  GUID guid = IID_IStream;
  if (GetParam().events != nullptr) {
    EXPECT_EQ(info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &guid), S_OK);
    EXPECT_EQ(guid, *GetParam().events);
  } else {
    EXPECT_EQ(info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &guid), E_INVALIDARG);
    EXPECT_EQ(guid, GUID_NULL);
  }
  EXPECT_EQ(info->GetGUID(2, &guid), E_INVALIDARG);
  EXPECT_EQ(info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, nullptr), E_POINTER);
}

TEST_P(ClassInfoTest, ErrorInfoAndConnectionPoints_AreThereWhereTheyHaveAUse) {
  const auto support = As<ISupportErrorInfo>();
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(GetParam().default_interface), S_OK);
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IDispatch), S_FALSE);
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IStream), S_FALSE);
  ComPtr<IConnectionPointContainer> container;
  EXPECT_EQ(object_.As(&container), GetParam().events != nullptr ? S_OK : E_NOINTERFACE);
}

TEST_P(ClassInfoTest, TypeInfo_IsThatOfTheDefaultInterface) {
  const auto dispatch = As<IDispatch>();
  UINT count = 99;
  EXPECT_EQ(dispatch->GetTypeInfoCount(&count), S_OK);
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(dispatch->GetTypeInfoCount(nullptr), E_POINTER);
  ComPtr<ITypeInfo> info;
  ASSERT_EQ(dispatch->GetTypeInfo(0, LOCALE_USER_DEFAULT, &info), S_OK);
  EXPECT_EQ(GuidOf(info, TKIND_DISPATCH), GetParam().default_interface);
  ITypeInfo* none = info.Get();
  EXPECT_EQ(dispatch->GetTypeInfo(1, LOCALE_USER_DEFAULT, &none), DISP_E_BADINDEX);
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(dispatch->GetTypeInfo(0, LOCALE_USER_DEFAULT, nullptr), E_POINTER);
}

INSTANTIATE_TEST_SUITE_P(All, ClassInfoTest, testing::ValuesIn(kPublicClasses),
                         [](const auto& info) { return NarrowName(info.param); });

}  // namespace
}  // namespace kesp::clients
