// Edit as far as it shows nothing, early and late bound: what it raises, where there is no dialog, and how
// its arguments are passed.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KespCommObj.h"
#include "tests/clients/early_bound.h"
#include "tests/clients/late_object.h"

namespace kesp::clients {
namespace {

constexpr wchar_t kSource[] = L"[CKespCommObj - Edit()]";
constexpr wchar_t kNoTransport[] = L"Communications object not initialized";

// An argument that a script leaves out.
VARIANT LeftOut() {
  VARIANT value;
  VariantInit(&value);
  V_VT(&value) = VT_ERROR;
  V_ERROR(&value) = DISP_E_PARAMNOTFOUND;
  return value;
}

class EditingTest : public testing::Test {
 protected:
  void SetStyle(ECommStyle style) {
    EXPECT_EQ(WriteByReference(comm_, &_CKespCommObj::put_CommStyle, style), S_OK);
  }
  // Raised late bound, so the call got as far as the object.
  static void ExpectRaised(const Outcome& outcome) {
    EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
    EXPECT_EQ(outcome.scode, ERR_NO_COMM_OBJECT);
    EXPECT_EQ(outcome.source, kSource);
    EXPECT_EQ(outcome.description, kNoTransport);
  }
  // The answer is there, and it is False.
  static void ExpectFalse(const Outcome& outcome) {
    EXPECT_EQ(outcome.result, S_OK);
    ASSERT_EQ(outcome.value.type(), VT_BOOL);
    EXPECT_EQ(V_BOOL(outcome.value.get()), VARIANT_FALSE);
  }

  Apartment apartment_;
  ComPtr<_CKespCommObj> comm_ = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  LateObject late_{comm_};
  LateObject port_{Create<IDispatch>(__uuidof(CKespCOMPort3))};
  LateObject tcp_{Create<IDispatch>(__uuidof(CKespTCP))};
  VARIANT_BOOL answer_ = VARIANT_FALSE;
};

// Which bits have a name is no matter, and no text at all is an empty one.
TEST_F(EditingTest, EarlyBound_RaisesWithoutTransportAndIsFalseAtOnceForIeee) {
  const Text file(L"C:\\help\\lab.hlp");
  for (const auto& [flags, help_file] : {std::pair{0L, file.get()}, {-1L, file.get()}, {15L, BSTR{}}}) {
    const auto edit = [&, flags = flags, help_file = help_file] {
      answer_ = 5;
      return RefusalOf(comm_->Edit(static_cast<EEditCommFlags>(flags), help_file, 7, &answer_));
    };
    SetStyle(csNone);
    EXPECT_EQ(edit(), (Refusal{ERR_NO_COMM_OBJECT, kSource, kNoTransport})) << flags;
    EXPECT_EQ(answer_, VARIANT_FALSE) << flags;
    SetStyle(csIEEE);
    EXPECT_EQ(edit(), Refusal{}) << flags;
    EXPECT_EQ(answer_, VARIANT_FALSE) << flags;
  }
}

TEST_F(EditingTest, LateBound_EachArgumentMayBeLeftOutOrNamed) {
  const Value flags(5);
  const Value help_file(L"C:\\help\\lab.hlp");
  const Value help_context(7);
  const std::pair<std::vector<VARIANT>, std::vector<Named>> calls[] = {
      {{}, {}},
      {{Plain(flags)}, {}},
      {{Plain(flags), Plain(help_file)}, {}},
      {{Plain(flags), Plain(help_file), Plain(help_context)}, {}},
      {{LeftOut(), Plain(help_file)}, {}},
      {{LeftOut(), LeftOut(), Plain(help_context)}, {}},
      {{LeftOut(), LeftOut(), LeftOut()}, {}},
      {{}, {{L"HCID", Plain(help_context)}}},
      {{}, {{L"HelpFile", Plain(help_file)}}},
      {{}, {{L"HelpFile", Plain(help_file)}, {L"HCID", Plain(help_context)}, {L"Flags", Plain(flags)}}},
  };
  for (const auto& [arguments, named] : calls) {
    SCOPED_TRACE(arguments.size());
    SCOPED_TRACE(named.size());
    SetStyle(csNone);
    ExpectRaised(late_.Call(L"Edit", arguments, named));
    SetStyle(csIEEE);
    ExpectFalse(late_.Call(L"Edit", arguments, named));
  }
}

TEST_F(EditingTest, LateBound_ScriptsVariablesAndOtherTypesAreConverted) {
  Value flags(L"9");
  Value help_file(3);
  Value help_context(L"-7");
  SetStyle(csIEEE);
  ExpectFalse(late_.Call(L"Edit", {Variable(flags), Variable(help_file), Variable(help_context)}));
  EXPECT_EQ(flags.text(), L"9");
  EXPECT_EQ(V_I4(help_file.get()), 3);
}

// Of the transports, too: the call does not get as far as their dialogs.
TEST_F(EditingTest, LateBound_ArgumentsThatDoNotFit_AreRefused) {
  const Value word(L"all");
  const Value one(1);
  const Value text(L"");
  SetStyle(csNone);
  for (const LateObject* object : {&late_, &port_, &tcp_}) {
    EXPECT_EQ(object->Call(L"Edit", {Plain(word)}).result, DISP_E_TYPEMISMATCH);
    EXPECT_EQ(object->Call(L"Edit", {Plain(one), Plain(text), Plain(word)}).result, DISP_E_TYPEMISMATCH);
    EXPECT_EQ(object->Call(L"Edit", {Plain(one), Plain(text), Plain(one), Plain(one)}).result,
              DISP_E_BADPARAMCOUNT);
  }
}

TEST_F(EditingTest, NamesOfArguments_ArePositionsOnEveryClass) {
  const std::pair<const LateObject*, DISPID> objects[] = {{&late_, 17}, {&port_, 40}, {&tcp_, 21}};
  for (const auto& [object, id] : objects) {
    std::vector<DISPID> ids;
    EXPECT_EQ(object->IdsOf({L"Edit", L"Flags", L"HelpFile", L"HCID"}, ids), S_OK) << id;
    EXPECT_EQ(ids, (std::vector<DISPID>{id, 0, 1, 2}));
  }
}

}  // namespace
}  // namespace kesp::clients
