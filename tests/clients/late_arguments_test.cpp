// The result argument as late-bound clients pass it: script variables of any content, typed variables,
// values.
#include <gtest/gtest.h>

#include <functional>

#include "KespCommObj.h"
#include "tests/clients/comm_obj_fixture.h"
#include "tests/clients/late_object.h"

namespace kesp::clients {
namespace {

class LateArgumentsTest : public CommObjFixture {
 protected:
  Outcome Query(const VARIANT& result, const wchar_t* cmd = L"ECHO abc") const {
    const Value command(cmd);
    return late_.Call(L"Query", {result, Plain(command)});
  }
  Outcome QueryBinary(const VARIANT& result, const wchar_t* cmd = L"ECHO abc") const {
    const Value command(cmd);
    return late_.Call(L"QueryBinary", {result, Plain(command)});
  }

  LateObject late_{comm_};
};

// What a script's variable may hold before the call.
struct Content {
  const char* name;
  std::function<void(Value&)> fill;
};

void PrintTo(const Content& content, std::ostream* out) {
  *out << content.name;
}

const std::vector<Content>& Contents() {
  static const std::vector<Content> contents = {
      {"Empty", [](Value&) {}},
      {"Null", [](Value& value) { V_VT(value.get()) = VT_NULL; }},
      {"Number", [](Value& value) { value = Value(42); }},
      {"Text", [](Value& value) { value = Value(L"an earlier reply, longer than the next one"); }},
      {"Real",
       [](Value& value) {
         V_VT(value.get()) = VT_R8;
         V_R8(value.get()) = 1.5;
       }},
      {"Bytes",
       [](Value& value) {
         V_VT(value.get()) = VT_ARRAY | VT_UI1;
         V_ARRAY(value.get()) = NewByteArray("earlier bytes");
       }},
      {"Object",
       [](Value& value) {
         V_VT(value.get()) = VT_DISPATCH;
         Create<IDispatch>(__uuidof(CInstrument)).CopyTo(&V_DISPATCH(value.get()));
       }},
      {"Nothing",
       [](Value& value) {
         V_VT(value.get()) = VT_DISPATCH;
         V_DISPATCH(value.get()) = nullptr;
       }},
      {"Error",
       [](Value& value) {
         V_VT(value.get()) = VT_ERROR;
         V_ERROR(value.get()) = E_FAIL;
       }},
  };
  return contents;
}

class VariableTest : public LateArgumentsTest, public testing::WithParamInterface<Content> {
 protected:
  VariableTest() { GetParam().fill(variable_); }

  Value variable_;
};

TEST_P(VariableTest, Query_ReplacesItWithTheText) {
  EXPECT_TRUE(Query(Variable(variable_)).IsTrue());
  EXPECT_EQ(variable_.type(), VT_BSTR);
  EXPECT_EQ(variable_.text(), L"ECHO abc");
}

TEST_P(VariableTest, QueryBinary_ReplacesItWithTheBytes) {
  EXPECT_TRUE(QueryBinary(Variable(variable_)).IsTrue());
  EXPECT_EQ(BytesOf(*variable_.get()), "ECHO abc\r");
}

TEST_P(VariableTest, VariableOfAVariable_IsFollowedToTheEnd) {
  VARIANT inner = Variable(variable_);
  VARIANT outer;
  VariantInit(&outer);
  V_VT(&outer) = VT_BYREF | VT_VARIANT;
  V_VARIANTREF(&outer) = &inner;
  EXPECT_TRUE(Query(outer).IsTrue());
  EXPECT_EQ(V_VT(&inner), VT_BYREF | VT_VARIANT) << "the chain stays as it is";
  EXPECT_EQ(variable_.text(), L"ECHO abc");
  EXPECT_TRUE(QueryBinary(outer).IsTrue());
  EXPECT_EQ(BytesOf(*variable_.get()), "ECHO abc\r");
}

INSTANTIATE_TEST_SUITE_P(All, VariableTest, testing::ValuesIn(Contents()),
                         [](const auto& info) { return info.param.name; });

TEST_F(LateArgumentsTest, TypedText_IsReplacedInPlace) {
  BSTR text = SysAllocString(L"before");
  EXPECT_TRUE(Query(Reference(&text)).IsTrue());
  EXPECT_STREQ(text, L"ECHO abc");
  SysFreeString(text);
  text = nullptr;
  EXPECT_TRUE(Query(Reference(&text)).IsTrue());
  EXPECT_STREQ(text, L"ECHO abc");
  SysFreeString(text);
}

// A variable that itself refers to a typed text, as a by-reference argument handed on does.
TEST_F(LateArgumentsTest, VariableThatRefersToATypedText_TheTextIsReplaced) {
  BSTR text = SysAllocString(L"before");
  VARIANT inner = Reference(&text);
  VARIANT outer;
  VariantInit(&outer);
  V_VT(&outer) = VT_BYREF | VT_VARIANT;
  V_VARIANTREF(&outer) = &inner;
  EXPECT_TRUE(Query(outer).IsTrue());
  EXPECT_EQ(V_VT(&inner), VT_BYREF | VT_BSTR);
  EXPECT_STREQ(text, L"ECHO abc");
  if (V_VT(&inner) != (VT_BYREF | VT_BSTR)) VariantClear(&inner);
  SysFreeString(text);
}

TEST_F(LateArgumentsTest, PlainText_IsTakenAndTheReplyIsLost) {
  const Value text(L"a literal");
  EXPECT_TRUE(Query(Plain(text)).IsTrue());
  EXPECT_EQ(text.text(), L"a literal");
  EXPECT_TRUE(QueryBinary(Plain(text)).IsTrue());
  EXPECT_EQ(text.text(), L"a literal");
}

TEST_F(LateArgumentsTest, PlainValueThatIsNoText_IsATypeMismatch) {
  Value object;
  V_VT(object.get()) = VT_UNKNOWN;
  comm_.CopyTo(reinterpret_cast<_CKespCommObj**>(&V_UNKNOWN(object.get())));
  EXPECT_EQ(Query(Plain(object)).result, DISP_E_TYPEMISMATCH);
}

TEST_F(LateArgumentsTest, TypedBytes_AreReplacedInPlace) {
  SAFEARRAY* bytes = NewByteArray("before");
  EXPECT_TRUE(QueryBinary(Reference(&bytes)).IsTrue());
  Value owner;
  V_VT(owner.get()) = VT_ARRAY | VT_UI1;
  V_ARRAY(owner.get()) = bytes;
  EXPECT_EQ(BytesOf(*owner.get()), "ECHO abc\r");
}

// A variable of a type that cannot hold the reply is refused before anything is sent.
TEST_F(LateArgumentsTest, TypedVariableOfAnotherType_IsATypeMismatchAndNothingIsSent) {
  Write(tcp_, &_CKespTCP::put_IPAddress, L"0.0.0.0");
  Value variable;
  EXPECT_FALSE(Query(Variable(variable)).IsTrue());
  UseInstrument(comm_.Get());
  static constexpr VARTYPE kTypes[] = {VT_I2,   VT_I4,           VT_R8,       VT_BOOL,  VT_DATE,
                                       VT_CY,   VT_UNKNOWN,      VT_DISPATCH, VT_ERROR, VT_ARRAY | VT_VARIANT,
                                       VT_UINT, VT_ARRAY | VT_I2};
  for (const VARTYPE type : kTypes) {
    DECIMAL content{};
    VARIANT typed{};
    V_VT(&typed) = static_cast<VARTYPE>(VT_BYREF | type);
    V_BYREF(&typed) = &content;
    VARIANT variable_of_it{};
    V_VT(&variable_of_it) = VT_BYREF | VT_VARIANT;
    V_VARIANTREF(&variable_of_it) = &typed;
    for (const VARIANT& result : {typed, variable_of_it}) {
      for (const Outcome& outcome : {Query(result), QueryBinary(result)}) {
        EXPECT_EQ(outcome.result, DISP_E_TYPEMISMATCH) << type;
        EXPECT_EQ(outcome.bad_argument, 1U) << type;
      }
    }
    EXPECT_EQ(V_VT(&typed), VT_BYREF | type);
  }
  SAFEARRAY* bytes = NewByteArray("before");
  EXPECT_EQ(Query(Reference(&bytes)).result, DISP_E_TYPEMISMATCH);
  SafeArrayDestroy(bytes);
  // The member itself knows that this reply is none.
  BSTR text = SysAllocString(L"before");
  EXPECT_EQ(static_cast<unsigned long>(QueryBinary(Reference(&text)).scode), 0x800A000Dul);
  EXPECT_STREQ(text, L"before");
  SysFreeString(text);
  ExpectStatus(cfrInvalidIPAddress, L"[CKespTCP - Initialize()]", L"Invalid IP Address");
}

TEST_F(LateArgumentsTest, LockedBytes_AreLeftAloneAndTheCallIsRefused) {
  SAFEARRAY* bytes = NewByteArray("before");
  SafeArrayLock(bytes);
  const Outcome outcome = QueryBinary(Reference(&bytes));
  EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
  EXPECT_EQ(static_cast<unsigned long>(outcome.scode), 0x800A000Aul);
  SafeArrayUnlock(bytes);
  Value owner;
  V_VT(owner.get()) = VT_ARRAY | VT_UI1;
  V_ARRAY(owner.get()) = bytes;
  EXPECT_EQ(BytesOf(*owner.get()), "before");
}

// After a failure, too, the variable holds what the member left there: a text.
TEST_F(LateArgumentsTest, QueryFails_VariableKeepsItsText) {
  Write(tcp_, &_CKespTCP::put_IPAddress, L"0.0.0.0");
  Value variable(L"before");
  const Outcome outcome = Query(Variable(variable));
  EXPECT_EQ(outcome.result, S_OK);
  EXPECT_FALSE(outcome.IsTrue());
  EXPECT_EQ(variable.text(), L"before");
  Value bytes(7);
  EXPECT_FALSE(QueryBinary(Variable(bytes)).IsTrue());
  EXPECT_EQ(V_I4(bytes.get()), 7);
}

TEST_F(LateArgumentsTest, QueryRaises_ExcepInfoAndVariableKept) {
  WriteByReference(comm_, &_CKespCommObj::put_CommStyle, csNone);
  Value variable(L"before");
  const Outcome outcome = Query(Variable(variable));
  EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
  EXPECT_EQ(outcome.scode, ERR_NO_COMM_OBJECT);
  EXPECT_EQ(outcome.source, L"[CKespCommObj - Query()]");
  EXPECT_EQ(outcome.description, L"Communications object not initialized");
  EXPECT_EQ(variable.text(), L"before");
}

TEST_F(LateArgumentsTest, NumberAsCommand_IsItsText) {
  Value variable;
  EXPECT_TRUE(late_.Call(L"Query", {Variable(variable), Plain(Value(L"ECHO 5"))}).IsTrue());
  EXPECT_EQ(late_.Call(L"Update", {Plain(Value(5))}).result, S_OK);
}

}  // namespace
}  // namespace kesp::clients
