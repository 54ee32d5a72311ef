// An object in place of the variable for a result, as JScript hands it over: the reply goes into its member
// "value".
#include <gtest/gtest.h>

#include "KespCommObj.h"
#include "tests/clients/comm_obj_fixture.h"
#include "tests/clients/late_object.h"

namespace kesp::clients {
namespace {

constexpr DISPID kValue = 7;

// Such an object, which lives in the test itself, so that its references are not counted.
class Holder final : public IDispatch {
 public:
  Value value{L"before"};
  bool has_value = true;
  HRESULT reading = S_OK;
  HRESULT writing = S_OK;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    const bool known = iid == IID_IUnknown || iid == IID_IDispatch;
    *object = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
    const bool known = has_value && names[0] == std::wstring(L"value");
    ids[0] = known ? kValue : DISPID_UNKNOWN;
    return known ? S_OK : DISP_E_UNKNOWNNAME;
  }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* arguments, VARIANT* result, EXCEPINFO*,
                      UINT*) override {
    if (id != kValue) return DISP_E_MEMBERNOTFOUND;
    if (flags == DISPATCH_PROPERTYGET) return FAILED(reading) ? reading : VariantCopy(result, value.get());
    EXPECT_EQ(flags, DISPATCH_PROPERTYPUT);
    EXPECT_EQ(arguments->cArgs, 1u);
    EXPECT_EQ(arguments->cNamedArgs, 1u);
    return FAILED(writing) ? writing : VariantCopy(value.get(), arguments->rgvarg);
  }

  ULONG references = 1;
};

class ResultObjectTest : public CommObjFixture {
 protected:
  Outcome Call(const wchar_t* member, const wchar_t* cmd = L"ECHO abc") {
    const Value command(cmd);
    VARIANT object;
    V_VT(&object) = VT_DISPATCH;
    V_DISPATCH(&object) = &holder_;
    const Outcome outcome = late_.Call(member, {object, Plain(command)});
    EXPECT_EQ(holder_.references, 1u);
    return outcome;
  }

  Holder holder_;
  LateObject late_{comm_};
};

TEST_F(ResultObjectTest, Query_TheReplyIsItsValue) {
  EXPECT_TRUE(Call(L"Query").IsTrue());
  EXPECT_EQ(holder_.value.text(), L"ECHO abc");
}

TEST_F(ResultObjectTest, Query_ValueThatIsNoText_IsReplaced) {
  holder_.value = Value(5);
  EXPECT_TRUE(Call(L"Query").IsTrue());
  EXPECT_EQ(holder_.value.text(), L"ECHO abc");
}

TEST_F(ResultObjectTest, QueryBinary_TheBytesAreItsValue) {
  EXPECT_TRUE(Call(L"QueryBinary").IsTrue());
  EXPECT_EQ(BytesOf(*holder_.value.get()), "ECHO abc\r");
}

TEST_F(ResultObjectTest, Failure_LeavesTheValue) {
  Write(tcp_, &_CKespTCP::put_IPAddress, L"0.0.0.0");
  EXPECT_FALSE(Call(L"Query").IsTrue());
  EXPECT_EQ(holder_.value.text(), L"before");
}

TEST_F(ResultObjectTest, ObjectThatRefusesToBeRead_GetsTheReply) {
  holder_.reading = E_ACCESSDENIED;
  EXPECT_TRUE(Call(L"Query").IsTrue());
  EXPECT_EQ(holder_.value.text(), L"ECHO abc");
}

TEST_F(ResultObjectTest, ObjectThatRefusesToBeWritten_TheCallIsMadeAndTheReplyIsLost) {
  holder_.writing = E_ACCESSDENIED;
  EXPECT_TRUE(Call(L"Query").IsTrue());
  EXPECT_EQ(holder_.value.text(), L"before");
  ExpectStatus(cfrSuccess, L"", L"");
}

TEST_F(ResultObjectTest, ObjectWithoutAValue_IsNoVariable) {
  holder_.has_value = false;
  EXPECT_EQ(Call(L"Query").result, DISP_E_TYPEMISMATCH);
}

// A property's value is only read.
TEST_F(ResultObjectTest, PropertyPutByReference_TakesNoObject) {
  VARIANT object;
  V_VT(&object) = VT_DISPATCH;
  V_DISPATCH(&object) = &holder_;
  holder_.value = Value(static_cast<long>(csIEEE));
  EXPECT_EQ(late_.Put(L"CommStyle", object).result, DISP_E_TYPEMISMATCH);
}

}  // namespace
}  // namespace kesp::clients
