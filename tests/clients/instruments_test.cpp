// The collection of instruments: the indexes it takes and refuses, what it keeps, and enumeration.
#include <gtest/gtest.h>

#include "KespCommObj.h"
#include "tests/clients/early_bound.h"
#include "tests/clients/late_object.h"

namespace kesp::clients {
namespace {

// Numbers of the run-time library travel as those of a control, so that a script reads 9.
const Refusal kNone{};
const Refusal kInvalidCall{ControlError(5), L"KespCommObj", L"Invalid procedure call or argument"};
const Refusal kOutOfRange{ControlError(9), L"KespCommObj", L"Subscript out of range"};
const Refusal kTypeMismatch{ControlError(13), L"KespCommObj", L"Type mismatch"};
const Refusal kKeyInUse{ControlError(457), L"KespCommObj",
                        L"This key is already associated with an element of this collection"};

class InstrumentsTest : public testing::Test {
 protected:
  Refusal TryToAdd(_CInstrument* instrument, const wchar_t* key) {
    return RefusalOf(instruments_->AddReference(instrument, Text(key).get()));
  }
  ComPtr<_CInstrument> Add(const wchar_t* model, const wchar_t* key = L"") {
    auto instrument = Create<_CInstrument>(__uuidof(CInstrument));
    Write(instrument, &_CInstrument::put_Model, model);
    EXPECT_EQ(TryToAdd(instrument.Get(), key), kNone);
    return instrument;
  }
  // What asking for the item comes to; the item is in item_.
  Refusal Item(const VARIANT& index) {
    _CInstrument* item = reinterpret_cast<_CInstrument*>(this);  // to be overwritten in any case
    const Refusal refusal = RefusalOf(instruments_->Item(index, &item));
    item_ = Adopt(item);
    return refusal;
  }
  std::wstring ModelAt(const Value& index) {
    EXPECT_EQ(Item(Plain(index)), kNone);
    return Read(item_, &_CInstrument::get_Model);
  }
  HRESULT Remove(const Value& index) { return instruments_->Remove(Plain(index)); }
  long Count() { return Read(instruments_, &_CInstruments::get_Count); }
  ComPtr<IEnumVARIANT> Enumerator() {
    ComPtr<IEnumVARIANT> enumerator;
    ReadObject(instruments_, &_CInstruments::get_NewEnum).As(&enumerator);
    return enumerator;
  }

  Apartment apartment_;
  ComPtr<_CInstruments> instruments_ = Create<_CInstruments>(__uuidof(CInstruments));
  ComPtr<_CInstrument> item_;
};

TEST_F(InstrumentsTest, Indexes_AreNumbersOfAnyTypeOrTextsThatAreKeys) {
  const auto first = Add(L"A");
  const auto second = Add(L"B", L"Bench");
  Value small = OfType(VT_I2);
  V_I2(small.get()) = 2;
  Value bytes = OfType(VT_ARRAY | VT_UI1);
  V_ARRAY(bytes.get()) = NewByteArray("1");
  Value object = OfType(VT_DISPATCH);
  first.CopyTo(reinterpret_cast<_CInstrument**>(&V_DISPATCH(object.get())));
  Value variable(2);
  struct Case {
    VARIANT index;
    const Refusal& expected;
  };
  const Value bench(L"bEnCH");
  const Value real = Real(2);
  const Value huge = Real(1e300);
  const Value other(L"other");
  const Value digit(L"1");
  const Value empty_text(L"");
  const Case cases[] = {
      {Plain(Value(2)), kNone},
      {Plain(small), kNone},
      {Plain(real), kNone},
      {Variable(variable), kNone},
      {Plain(bench), kNone},
      {Plain(Value(0)), kOutOfRange},
      {Plain(Value(-1)), kOutOfRange},
      {Plain(Value(3)), kOutOfRange},
      {Plain(huge), kOutOfRange},
      {Plain(other), kInvalidCall},
      {Plain(digit), kInvalidCall},
      {Plain(empty_text), kInvalidCall},
      {VARIANT{}, kTypeMismatch},
      {Plain(OfType(VT_NULL)), kTypeMismatch},
      {Plain(bytes), kTypeMismatch},
  };
  int number = 0;
  for (const auto& [index, expected] : cases) {
    SCOPED_TRACE(number++);
    EXPECT_EQ(Item(index), expected);
    EXPECT_TRUE(IsSameObject(item_.Get(), expected == kNone ? second.Get() : nullptr));
    if (expected == kNone) continue;
    EXPECT_EQ(RefusalOf(instruments_->Remove(index)), expected);
  }
  EXPECT_NE(Item(Plain(object)), kNone);
  EXPECT_EQ(Count(), 2);
}

TEST_F(InstrumentsTest, KeyInUseOrNothing_IsRefused) {
  Add(L"A", L"key");
  const auto other = Create<_CInstrument>(__uuidof(CInstrument));
  EXPECT_EQ(TryToAdd(other.Get(), L"KEY"), kKeyInUse);
  EXPECT_EQ(TryToAdd(nullptr, L"other"), kInvalidCall);
  EXPECT_EQ(Count(), 1);
  EXPECT_EQ(Remove(L"key"), S_OK);
  EXPECT_EQ(TryToAdd(other.Get(), L"KEY"), kNone) << "it is free again";
}

TEST_F(InstrumentsTest, RemovedAndCleared_LaterOnesMoveUpAndTheObjectsLiveOn) {
  const auto kept = Add(L"A");
  Add(L"B");
  EXPECT_EQ(instruments_->AddReference(kept.Get(), nullptr), S_OK) << "the same object may be in it twice";
  EXPECT_EQ(Remove(1), S_OK);
  EXPECT_EQ(ModelAt(1), L"B");
  EXPECT_EQ(ModelAt(2), L"A");
  EXPECT_EQ(instruments_->Clear(), S_OK);
  EXPECT_EQ(Count(), 0);
  EXPECT_EQ(Read(kept, &_CInstrument::get_Model), L"A");
}

TEST_F(InstrumentsTest, Enumeration_GivesItemsInOrder) {
  for (const wchar_t* model : {L"A", L"B", L"C"}) Add(model);
  const auto enumerator = Enumerator();
  VARIANT items[2];
  ULONG fetched = 0;
  EXPECT_EQ(enumerator->Next(2, items, &fetched), S_OK);
  ASSERT_EQ(fetched, 2u);
  for (int i : {0, 1}) {
    EXPECT_EQ(V_VT(&items[i]), VT_DISPATCH);
    EXPECT_EQ(Item(Plain(Value(i + 1))), kNone);
    EXPECT_TRUE(IsSameObject(V_DISPATCH(&items[i]), item_.Get()));
    VariantClear(&items[i]);
  }
  ComPtr<IEnumVARIANT> clone;
  EXPECT_EQ(enumerator->Clone(&clone), S_OK);
  EXPECT_EQ(clone->Skip(1), S_OK);
  EXPECT_EQ(clone->Skip(1), S_FALSE);
  EXPECT_EQ(enumerator->Next(2, items, &fetched), S_FALSE);
  EXPECT_EQ(fetched, 1u);
  VariantClear(&items[0]);
  EXPECT_EQ(enumerator->Reset(), S_OK);
  EXPECT_EQ(enumerator->Next(1, items, nullptr), S_OK);
  VariantClear(&items[0]);
}

TEST_F(InstrumentsTest, ChangedWhileEnumerating_TheEnumerationIsThatOfItsBeginning) {
  Add(L"A");
  Add(L"B");
  const auto enumerator = Enumerator();
  std::wstring models;
  Value item;
  while (enumerator->Next(1, item.get(), nullptr) == S_OK) {
    models += LateObject(V_DISPATCH(item.get())).Get(L"Model").value.text();
    VariantClear(item.get());
    Remove(1);
    Add(L"X");
  }
  EXPECT_EQ(models, L"AB");
  EXPECT_EQ(ModelAt(1), L"X");
}

TEST_F(InstrumentsTest, Devices_IsTheTransportsOwnCollection) {
  const auto tcp = Create<_CKespTCP>(__uuidof(CKespTCP));
  instruments_ = ReadObject(tcp, &_CKespTCP::get_Devices);
  EXPECT_EQ(Count(), 0);
  Add(L"A");
  EXPECT_TRUE(IsSameObject(ReadObject(tcp, &_CKespTCP::get_Devices).Get(), instruments_.Get()));
  const auto other = ReadObject(Create<_CKespTCP>(__uuidof(CKespTCP)), &_CKespTCP::get_Devices);
  EXPECT_EQ(Read(other, &_CInstruments::get_Count), 0);
}

}  // namespace
}  // namespace kesp::clients
