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
  std::function<Value()> make;
};

void PrintTo(const Content& content, std::ostream* out) {
  *out << content.name;
}

Value BytesValue(SAFEARRAY* bytes) {
  Value value = OfType(VT_ARRAY | VT_UI1);
  V_ARRAY(value.get()) = bytes;
  return value;
}

VARIANT VariableOf(VARIANT& inner) {
  VARIANT outer;
  VariantInit(&outer);
  V_VT(&outer) = VT_BYREF | VT_VARIANT;
  V_VARIANTREF(&outer) = &inner;
  return outer;
}

const Content kContents[] = {
    {"Empty", [] { return Value(); }},
    {"Null", [] { return OfType(VT_NULL); }},
    {"Number", [] { return Value(42); }},
    {"Text", [] { return Value(L"an earlier reply, longer than the next one"); }},
    {"Bytes", [] { return BytesValue(NewByteArray("earlier bytes")); }},
    {"Object",
     [] {
       Value object = OfType(VT_DISPATCH);
       Create<IDispatch>(__uuidof(CInstrument)).CopyTo(&V_DISPATCH(object.get()));
       return object;
     }},
    {"Nothing", [] { return OfType(VT_DISPATCH); }},
    {"Error", [] { return OfType(VT_ERROR); }},
};

class VariableTest : public LateArgumentsTest, public testing::WithParamInterface<Content> {
 protected:
  Value variable_ = GetParam().make();
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
  const VARIANT outer = VariableOf(inner);
  EXPECT_TRUE(Query(outer).IsTrue());
  EXPECT_EQ(V_VT(&inner), VT_BYREF | VT_VARIANT) << "the chain stays as it is";
  EXPECT_EQ(variable_.text(), L"ECHO abc");
  EXPECT_TRUE(QueryBinary(outer).IsTrue());
  EXPECT_EQ(BytesOf(*variable_.get()), "ECHO abc\r");
}

INSTANTIATE_TEST_SUITE_P(All, VariableTest, testing::ValuesIn(kContents),
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
  EXPECT_TRUE(Query(VariableOf(inner)).IsTrue());
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
  Value object = OfType(VT_UNKNOWN);
  comm_.CopyTo(reinterpret_cast<_CKespCommObj**>(&V_UNKNOWN(object.get())));
  EXPECT_EQ(Query(Plain(object)).result, DISP_E_TYPEMISMATCH);
}

TEST_F(LateArgumentsTest, TypedBytes_AreReplacedInPlace) {
  SAFEARRAY* bytes = NewByteArray("before");
  EXPECT_TRUE(QueryBinary(Reference(&bytes)).IsTrue());
  EXPECT_EQ(BytesOf(*BytesValue(bytes).get()), "ECHO abc\r");
}

// The refusal of a typed variable, in full.
void ExpectWrongVariable(const Outcome& outcome, const std::wstring& reply, VARTYPE type) {
  EXPECT_EQ(outcome.result, DISP_E_EXCEPTION) << type;
  EXPECT_EQ(
      (Refusal{outcome.scode, outcome.source, outcome.description}),
      (Refusal{ControlError(13), L"KespCommObj",
               L"Type mismatch (the reply is " + reply + L"; pass a variable of that type, or a Variant)"}))
      << type;
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
    for (const VARIANT& result : {typed, VariableOf(typed)}) {
      ExpectWrongVariable(Query(result), L"text", type);
      ExpectWrongVariable(QueryBinary(result), L"an array of bytes", type);
    }
    EXPECT_EQ(V_VT(&typed), VT_BYREF | type);
  }
  SAFEARRAY* bytes = NewByteArray("before");
  ExpectWrongVariable(Query(Reference(&bytes)), L"text", VT_ARRAY | VT_UI1);
  SafeArrayDestroy(bytes);
  BSTR text = SysAllocString(L"before");
  ExpectWrongVariable(QueryBinary(Reference(&text)), L"an array of bytes", VT_BSTR);
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
  EXPECT_EQ(BytesOf(*BytesValue(bytes).get()), "before");
}

// How much memory the process has for itself.
std::size_t BytesCommitted() {
  std::size_t bytes = 0;
  MEMORY_BASIC_INFORMATION region{};
  for (const char* at = nullptr; VirtualQuery(at, &region, sizeof region) != 0;) {
    if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) bytes += region.RegionSize;
    at = static_cast<const char*>(region.BaseAddress) + region.RegionSize;
  }
  return bytes;
}

TEST_F(LateArgumentsTest, LockedBytes_RepliesWithoutAPlaceAreFreed) {
  constexpr std::size_t kReplyBytes = std::size_t{1} << 20;
  constexpr int kReplies = 8;
  SAFEARRAY* bytes = NewByteArray("before");
  SafeArrayLock(bytes);
  const auto query = [&] { EXPECT_EQ(QueryBinary(Reference(&bytes), L"BIG?").result, DISP_E_EXCEPTION); };
  query();
  const std::size_t before = BytesCommitted();
  for (int i = 0; i < kReplies; ++i) query();
  EXPECT_LT(BytesCommitted(), before + kReplies * kReplyBytes / 2);
  SafeArrayUnlock(bytes);
  SafeArrayDestroy(bytes);
}

TEST_F(LateArgumentsTest, QueryFailsOrRaises_VariableKeepsItsValue) {
  Write(tcp_, &_CKespTCP::put_IPAddress, L"0.0.0.0");
  Value variable(L"before");
  Value bytes(7);
  const Outcome failed = Query(Variable(variable));
  EXPECT_EQ(failed.result, S_OK);
  EXPECT_FALSE(failed.IsTrue());
  EXPECT_FALSE(QueryBinary(Variable(bytes)).IsTrue());
  WriteByReference(comm_, &_CKespCommObj::put_CommStyle, csNone);
  const Outcome raised = Query(Variable(variable));
  EXPECT_EQ(raised.result, DISP_E_EXCEPTION);
  EXPECT_EQ(
      (Refusal{raised.scode, raised.source, raised.description}),
      (Refusal{ERR_NO_COMM_OBJECT, L"[CKespCommObj - Query()]", L"Communications object not initialized"}));
  EXPECT_EQ(variable.text(), L"before");
  EXPECT_EQ(V_I4(bytes.get()), 7);
}

// The automation library of Wine takes the last argument for the first one, if both have names.
TEST_F(LateArgumentsTest, NamedArguments_ThoseByValueStayAsTheyAre) {
  for (const wchar_t* member : {L"Query", L"QueryBinary"}) {
    Value result(L"before");
    const Value cmd(L"ECHO abc");
    const Value address(L"");
    const Outcome outcome = late_.Call(
        member, {}, {{L"result", Variable(result)}, {L"OmegaAddress", Plain(address)}, {L"cmd", Plain(cmd)}});
    EXPECT_TRUE(outcome.IsTrue());
    EXPECT_NE(result.text(), L"before");
    // A text that was freed would be found here again.
    const std::vector<Value> others(20, Value(L"ANOTHER!"));
    EXPECT_EQ(cmd.text(), L"ECHO abc");
    EXPECT_EQ(address.text(), L"");
  }
}

TEST_F(LateArgumentsTest, NumberAsCommand_IsItsText) {
  EXPECT_EQ(late_.Call(L"Update", {Plain(Value(5))}).result, S_OK);
}

}  // namespace
}  // namespace kesp::clients
