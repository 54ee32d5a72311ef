// The collection of instruments: positions, keys, errors, and enumeration.
#include <gtest/gtest.h>

#include <initializer_list>

#include "KespCommObj.h"
#include "tests/clients/early_bound.h"
#include "tests/clients/late_object.h"

namespace kesp::clients {
namespace {

using Words = std::initializer_list<WORD>;

constexpr HRESULT ControlError(int number) {
  return static_cast<HRESULT>(0x800A0000u + static_cast<unsigned>(number));
}

const Refusal kInvalidCall{ControlError(5), L"KespCommObj", L"Invalid procedure call or argument"};
const Refusal kOutOfRange{ControlError(9), L"KespCommObj", L"Subscript out of range"};
const Refusal kTypeMismatch{ControlError(13), L"KespCommObj", L"Type mismatch"};
const Refusal kKeyInUse{ControlError(457), L"KespCommObj",
                        L"This key is already associated with an element of this collection"};

class InstrumentsTest : public testing::Test {
 protected:
  ComPtr<_CInstrument> Add(const wchar_t* model, const wchar_t* key = L"") {
    auto instrument = Create<_CInstrument>(__uuidof(CInstrument));
    Write(instrument, &_CInstrument::put_Model, model);
    EXPECT_EQ(RefusalOf(instruments_->AddReference(instrument.Get(), Text(key).get())), Refusal{});
    return instrument;
  }
  ComPtr<_CInstrument> Item(const Value& index) {
    ComPtr<_CInstrument> item;
    EXPECT_EQ(RefusalOf(instruments_->Item(*index.get(), &item)), Refusal{});
    return item;
  }
  Refusal RefusedItem(const Value& index) {
    _CInstrument* item = reinterpret_cast<_CInstrument*>(this);
    const Refusal refusal = RefusalOf(instruments_->Item(*index.get(), &item));
    EXPECT_EQ(item, nullptr);
    return refusal;
  }
  HRESULT Remove(const Value& index) { return instruments_->Remove(*index.get()); }
  long Count() { return Read(instruments_, &_CInstruments::get_Count); }
  std::wstring ModelAt(const Value& index) { return Read(Item(index), &_CInstrument::get_Model); }
  ComPtr<IEnumVARIANT> Enumerator() {
    ComPtr<IEnumVARIANT> enumerator;
    ReadObject(instruments_, &_CInstruments::get_NewEnum).As(&enumerator);
    return enumerator;
  }

  Apartment apartment_;
  ComPtr<_CInstruments> instruments_ = Create<_CInstruments>(__uuidof(CInstruments));
};

TEST_F(InstrumentsTest, Added_SameObjectComesBackByPositionAndKey) {
  const auto first = Add(L"A");
  const auto second = Add(L"B", L"Bench");
  EXPECT_EQ(Count(), 2);
  EXPECT_TRUE(IsSameObject(Item(1).Get(), first.Get()));
  EXPECT_TRUE(IsSameObject(Item(2).Get(), second.Get()));
  EXPECT_TRUE(IsSameObject(Item(L"Bench").Get(), second.Get()));
  EXPECT_TRUE(IsSameObject(Item(L"bEnCH").Get(), second.Get())) << "keys have no case";
  Write(first, &_CInstrument::put_Model, L"changed");
  EXPECT_EQ(ModelAt(1), L"changed");
}

TEST_F(InstrumentsTest, Position_OfAnyNumericType) {
  Add(L"A");
  Add(L"B");
  Value small;
  V_VT(small.get()) = VT_I2;
  V_I2(small.get()) = 2;
  EXPECT_EQ(ModelAt(small), L"B");
  Value real;
  V_VT(real.get()) = VT_R8;
  V_R8(real.get()) = 2.0;
  EXPECT_EQ(ModelAt(real), L"B");
  Value number(2);
  const Value keep(number);
  EXPECT_EQ(instruments_->Item(Variable(number), ComPtr<_CInstrument>().GetAddressOf()), S_OK);
}

TEST_F(InstrumentsTest, PositionOutside_IsOutOfRange) {
  EXPECT_EQ(RefusedItem(1), kOutOfRange);
  Add(L"A");
  for (const long position : {0L, 2L, -1L, 2147483647L}) EXPECT_EQ(RefusedItem(position), kOutOfRange);
  EXPECT_EQ(RefusalOf(Remove(2)), kOutOfRange);
  Value huge;
  V_VT(huge.get()) = VT_R8;
  V_R8(huge.get()) = 1e300;
  EXPECT_EQ(RefusedItem(huge), kOutOfRange);
}

TEST_F(InstrumentsTest, UnknownKey_IsAnInvalidCall) {
  Add(L"A", L"key");
  EXPECT_EQ(RefusedItem(L"other"), kInvalidCall);
  EXPECT_EQ(RefusedItem(L""), kInvalidCall);
  EXPECT_EQ(RefusedItem(L"1"), kInvalidCall) << "a text is a key, never a position";
  EXPECT_EQ(RefusalOf(Remove(L"other")), kInvalidCall);
}

TEST_F(InstrumentsTest, OtherTypesAsIndex_AreTypeMismatches) {
  Add(L"A");
  Value empty;
  Value null;
  V_VT(null.get()) = VT_NULL;
  Value object;
  V_VT(object.get()) = VT_DISPATCH;
  Add(L"B").CopyTo(reinterpret_cast<_CInstrument**>(&V_DISPATCH(object.get())));
  Value bytes;
  V_VT(bytes.get()) = VT_ARRAY | VT_UI1;
  V_ARRAY(bytes.get()) = NewByteArray("1");
  for (const Value& index : {empty, null, bytes}) {
    EXPECT_EQ(RefusedItem(index), kTypeMismatch) << index.type();
    EXPECT_EQ(RefusalOf(Remove(index)), kTypeMismatch) << index.type();
  }
  EXPECT_NE(RefusedItem(object).result, S_OK);
  EXPECT_EQ(Count(), 2);
}

TEST_F(InstrumentsTest, KeyInUse_IsRefused) {
  Add(L"A", L"key");
  const auto other = Create<_CInstrument>(__uuidof(CInstrument));
  EXPECT_EQ(RefusalOf(instruments_->AddReference(other.Get(), Text(L"KEY").get())), kKeyInUse);
  EXPECT_EQ(Count(), 1);
  EXPECT_EQ(Remove(L"key"), S_OK);
  EXPECT_EQ(instruments_->AddReference(other.Get(), Text(L"KEY").get()), S_OK) << "it is free again";
}

TEST_F(InstrumentsTest, Nothing_IsRefused) {
  EXPECT_EQ(RefusalOf(instruments_->AddReference(nullptr, Text(L"key").get())), kInvalidCall);
  EXPECT_EQ(Count(), 0);
}

TEST_F(InstrumentsTest, Removed_LaterOnesMoveUp) {
  Add(L"A");
  Add(L"B", L"b");
  Add(L"C");
  EXPECT_EQ(Remove(1), S_OK);
  EXPECT_EQ(Count(), 2);
  EXPECT_EQ(ModelAt(1), L"B");
  EXPECT_EQ(Remove(L"B"), S_OK);
  EXPECT_EQ(ModelAt(1), L"C");
}

TEST_F(InstrumentsTest, Cleared_IsEmptyAndItsObjectsLiveOn) {
  const auto kept = Add(L"A", L"key");
  Add(L"B");
  EXPECT_EQ(instruments_->Clear(), S_OK);
  EXPECT_EQ(Count(), 0);
  EXPECT_EQ(Read(kept, &_CInstrument::get_Model), L"A");
  Add(L"C", L"key");
  EXPECT_EQ(Count(), 1);
}

TEST_F(InstrumentsTest, SameObjectTwice_IsTwoItems) {
  const auto instrument = Add(L"A");
  EXPECT_EQ(instruments_->AddReference(instrument.Get(), nullptr), S_OK);
  EXPECT_EQ(Count(), 2);
  EXPECT_TRUE(IsSameObject(Item(1).Get(), Item(2).Get()));
}

TEST_F(InstrumentsTest, Enumeration_GivesItemsInOrder) {
  Add(L"A");
  Add(L"B");
  Add(L"C");
  const auto enumerator = Enumerator();
  VARIANT items[2];
  ULONG fetched = 0;
  EXPECT_EQ(enumerator->Next(2, items, &fetched), S_OK);
  ASSERT_EQ(fetched, 2u);
  EXPECT_EQ(V_VT(&items[0]), VT_DISPATCH);
  EXPECT_TRUE(IsSameObject(V_DISPATCH(&items[0]), Item(1).Get()));
  EXPECT_TRUE(IsSameObject(V_DISPATCH(&items[1]), Item(2).Get()));
  VariantClear(&items[0]);
  VariantClear(&items[1]);
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
    ComPtr<_CInstrument> instrument;
    V_DISPATCH(item.get())
        ->QueryInterface(__uuidof(_CInstrument), reinterpret_cast<void**>(instrument.GetAddressOf()));
    models += Read(instrument, &_CInstrument::get_Model);
    VariantClear(item.get());
    Remove(1);
    Add(L"X");
  }
  EXPECT_EQ(models, L"AB");
  EXPECT_EQ(ModelAt(1), L"X");
}

TEST_F(InstrumentsTest, LateBound_ItemIsTheDefaultMember) {
  const auto instrument = Add(L"A", L"key");
  const LateObject late(instruments_);
  const Outcome by_position =
      late.Invoke(DISPID_VALUE, DISPATCH_METHOD | DISPATCH_PROPERTYGET, {Plain(Value(1))});
  ASSERT_EQ(by_position.result, S_OK);
  EXPECT_TRUE(IsSameObject(V_DISPATCH(by_position.value.get()), instrument.Get()));
  const Value key(L"KEY");
  const Outcome by_key = late.Invoke(DISPID_VALUE, DISPATCH_METHOD, {Plain(key)});
  ASSERT_EQ(by_key.result, S_OK);
  EXPECT_TRUE(IsSameObject(V_DISPATCH(by_key.value.get()), instrument.Get()));
}

// Scripts write tcp.Devices(1), which reaches the transport as an argument of Devices.
TEST_F(InstrumentsTest, LateBound_ArgumentsOfAPropertyGoToTheCollectionItHolds) {
  const auto tcp = Create<_CKespTCP>(__uuidof(CKespTCP));
  instruments_ = ReadObject(tcp, &_CKespTCP::get_Devices);
  const auto instrument = Add(L"A", L"key");
  const LateObject late(tcp);
  const WORD flags = DISPATCH_METHOD | DISPATCH_PROPERTYGET;
  const Value key(L"KEY");
  for (const VARIANT& index : {Plain(Value(1)), Plain(key)}) {
    const Outcome outcome = late.Invoke(late.IdOf(L"Devices"), flags, {index});
    ASSERT_EQ(outcome.result, S_OK);
    EXPECT_TRUE(IsSameObject(V_DISPATCH(outcome.value.get()), instrument.Get()));
  }
  const Outcome refused = late.Invoke(late.IdOf(L"Devices"), flags, {Plain(Value(2))});
  EXPECT_EQ(refused.scode, ControlError(9));
  EXPECT_EQ(late.Invoke(late.IdOf(L"GetKey"), flags, {Plain(Value(1))}).result, DISP_E_BADPARAMCOUNT);
}

// An object without a default member has no use for them.
TEST_F(InstrumentsTest, LateBound_ArgumentsOfAPropertyWithoutDefaultMember_AreRefused) {
  const LateObject port(Create<IDispatch>(__uuidof(CKespCOMPort3)));
  EXPECT_EQ(port.Invoke(port.IdOf(L"SmartSwitch"), DISPATCH_PROPERTYGET, {Plain(Value(1))}).result,
            DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(port.Invoke(port.IdOf(L"Port"), DISPATCH_PROPERTYGET, {Plain(Value(1))}).result,
            DISP_E_BADPARAMCOUNT);
}

// Script engines ask for the enumerator in each of these ways.
TEST_F(InstrumentsTest, LateBound_EnumeratorAsMethodOrProperty) {
  const LateObject late(instruments_);
  for (const WORD flags :
       Words{DISPATCH_METHOD, DISPATCH_PROPERTYGET, DISPATCH_METHOD | DISPATCH_PROPERTYGET}) {
    const Outcome outcome = late.Invoke(DISPID_NEWENUM, flags, {});
    ASSERT_EQ(outcome.result, S_OK) << flags;
    ASSERT_EQ(outcome.value.type(), VT_UNKNOWN) << flags;
    ComPtr<IEnumVARIANT> enumerator;
    EXPECT_EQ(V_UNKNOWN(outcome.value.get())
                  ->QueryInterface(IID_IEnumVARIANT, reinterpret_cast<void**>(enumerator.GetAddressOf())),
              S_OK);
  }
}

TEST_F(InstrumentsTest, Devices_IsTheTransportsOwnCollection) {
  const auto tcp = Create<_CKespTCP>(__uuidof(CKespTCP));
  instruments_ = ReadObject(tcp, &_CKespTCP::get_Devices);
  Add(L"A");
  EXPECT_EQ(Read(ReadObject(tcp, &_CKespTCP::get_Devices), &_CInstruments::get_Count), 1);
}

}  // namespace
}  // namespace kesp::clients
