// An object in place of the variable for a result, as JScript hands it over: the reply goes into its member
// "value".
#include <gtest/gtest.h>

#include "KespCommObj.h"
#include "tests/clients/comm_obj_fixture.h"
#include "tests/clients/late_object.h"
#include "tests/clients/result_holder.h"

namespace kesp::clients {
namespace {

class ResultObjectTest : public CommObjFixture {
 protected:
  Outcome Call(const wchar_t* member, const wchar_t* cmd = L"ECHO abc") {
    const Value command(cmd);
    const Outcome outcome = late_.Call(member, {holder_.argument(), Plain(command)});
    EXPECT_EQ(holder_.references, 1u);
    return outcome;
  }

  ResultHolder holder_;
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

TEST_F(ResultObjectTest, Query_ReplyThatIsThereAlready_IsWrittenAllTheSame) {
  holder_.value = Value(L"ECHO abc");
  EXPECT_TRUE(Call(L"Query").IsTrue());
  EXPECT_EQ(holder_.puts, 1);
}

TEST_F(ResultObjectTest, QueryBinary_TheBytesAreItsValue) {
  EXPECT_TRUE(Call(L"QueryBinary").IsTrue());
  EXPECT_EQ(BytesOf(*holder_.value.get()), "ECHO abc\r");
}

// Also where nobody asks for the answer.
TEST_F(ResultObjectTest, Failure_DoesNotTouchIt) {
  Write(tcp_, &_CKespTCP::put_IPAddress, L"0.0.0.0");
  for (const Value& held : {Value(L"before"), Value(5), Value()}) {
    holder_.value = held;
    for (const wchar_t* member : {L"Query", L"QueryBinary"}) {
      EXPECT_FALSE(Call(member).IsTrue());
      Value command(L"ECHO abc");
      VARIANT arguments[] = {*command.get(), holder_.argument()};
      DISPPARAMS parameters{.rgvarg = arguments, .rgdispidNamedArgs = nullptr, .cArgs = 2, .cNamedArgs = 0};
      EXPECT_EQ(late_.get()->Invoke(late_.IdOf(member), IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr,
                                    nullptr, nullptr),
                S_OK);
    }
    EXPECT_EQ(holder_.value.type(), held.type());
  }
  WriteByReference(comm_, &_CKespCommObj::put_CommStyle, csNone);
  EXPECT_EQ(Call(L"Query").result, DISP_E_EXCEPTION);
  EXPECT_EQ(holder_.puts, 0);
}

TEST_F(ResultObjectTest, ObjectThatRefusesToBeRead_GetsTheReply) {
  holder_.reading = E_ACCESSDENIED;
  EXPECT_TRUE(Call(L"Query").IsTrue());
  EXPECT_EQ(holder_.value.text(), L"ECHO abc");
}

// The client learns that its reply is lost.
TEST_F(ResultObjectTest, ObjectThatRefusesToBeWritten_TheCallIsMadeAndIsATypeMismatch) {
  holder_.writing = E_ACCESSDENIED;
  for (const wchar_t* member : {L"Query", L"QueryBinary"}) {
    const Outcome outcome = Call(member);
    EXPECT_EQ(outcome.result, DISP_E_TYPEMISMATCH);
    EXPECT_EQ(outcome.bad_argument, 1u) << "the second from the end";
    EXPECT_EQ(outcome.value.type(), VT_EMPTY);
  }
  EXPECT_EQ(holder_.value.text(), L"before");
  ExpectStatus(cfrSuccess, L"", L"");
}

TEST_F(ResultObjectTest, ObjectThatRefusesToBeWritten_AnErrorOfTheCallIsWhatIsTold) {
  holder_.writing = E_ACCESSDENIED;
  WriteByReference(comm_, &_CKespCommObj::put_CommStyle, csNone);
  EXPECT_EQ(Call(L"Query").scode, static_cast<HRESULT>(ERR_NO_COMM_OBJECT));
}

TEST_F(ResultObjectTest, ObjectInAVariable_IsReplacedByTheReply) {
  for (const wchar_t* member : {L"Query", L"QueryBinary"}) {
    Value variable;
    VARIANT object = holder_.argument();
    VariantCopy(variable.get(), &object);
    EXPECT_EQ(holder_.references, 2u);
    const Value command(L"ECHO abc");
    EXPECT_TRUE(late_.Call(member, {Variable(variable), Plain(command)}).IsTrue());
    EXPECT_NE(variable.type(), VT_DISPATCH);
    EXPECT_EQ(holder_.references, 1u);
  }
  EXPECT_EQ(holder_.puts, 0);
}

TEST_F(ResultObjectTest, ObjectWithoutAValue_IsNoVariable) {
  holder_.has_value = false;
  EXPECT_EQ(Call(L"Query").result, DISP_E_TYPEMISMATCH);
}

// A property's value is only read.
TEST_F(ResultObjectTest, PropertyPutByReference_TakesNoObject) {
  holder_.value = Value(static_cast<long>(csIEEE));
  EXPECT_EQ(late_.Put(L"CommStyle", holder_.argument()).result, DISP_E_TYPEMISMATCH);
}

// What the object does when it is read or written is the client's own affair.
class ResultObjectMomentTest : public ResultObjectTest,
                               public testing::WithParamInterface<std::function<void()> ResultHolder::*> {};

TEST_P(ResultObjectMomentTest, ClientLetsGoOfTheLibrarysObject_ItStaysUntilTheCallIsDone) {
  IDispatch* last = comm_.Detach();
  holder_.*GetParam() = [&] { EXPECT_GT(last->Release(), 0u); };
  Value command(L"ECHO abc");
  VARIANT arguments[] = {*command.get(), holder_.argument()};
  DISPPARAMS parameters{.rgvarg = arguments, .rgdispidNamedArgs = nullptr, .cArgs = 2, .cNamedArgs = 0};
  const DISPID query = late_.IdOf(L"Query");
  late_ = LateObject(nullptr);
  EXPECT_EQ(last->Invoke(query, IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr), S_OK);
  EXPECT_EQ(holder_.value.text(), L"ECHO abc");
}

TEST_P(ResultObjectMomentTest, ClientCallsBack_BothCallsAreMade) {
  Value inner;
  holder_.*GetParam() = [&] {
    const Value command(L"ECHO inner");
    EXPECT_TRUE(late_.Call(L"Query", {Variable(inner), Plain(command)}).IsTrue());
  };
  EXPECT_TRUE(Call(L"Query").IsTrue());
  EXPECT_EQ(inner.text(), L"ECHO inner");
  EXPECT_EQ(holder_.value.text(), L"ECHO abc");
}

INSTANTIATE_TEST_SUITE_P(All, ResultObjectMomentTest,
                         testing::Values(&ResultHolder::on_get, &ResultHolder::on_put),
                         [](const auto& info) { return info.index == 0 ? "Get" : "Put"; });

}  // namespace
}  // namespace kesp::clients
