// Tests of the instrument record and the collection of instruments.
#include "network/instruments.h"

#include <gtest/gtest.h>

#include "support/failure_fixture.h"

namespace kesp {
namespace {

std::shared_ptr<Instrument> Named(const std::wstring& model) {
  auto instrument = std::make_shared<CInstrument>();
  instrument->SetModel(model);
  return instrument;
}

template <typename Call>
std::int32_t NumberOf(const Call& call) {
  return RaisedBy(call).number;
}

std::wstring Models(const CInstruments& instruments) {
  std::wstring models;
  for (std::int32_t i = 1; i <= instruments.Count(); ++i) models += instruments.Item(i)->Model();
  return models;
}

TEST(CInstrumentTest, EachProperty_KeepsItsOwnValue) {
  CInstrument instrument;
  EXPECT_EQ(instrument.Model() + instrument.Serial() + instrument.IPAddress() + instrument.MACAddress(), L"");
  EXPECT_EQ(instrument.IPType(), EIPType::ipStatic);
  instrument.SetModel(L"m");
  instrument.SetSerial(L"s");
  instrument.SetIPAddress(L"10.0.0.7");
  instrument.SetIPType(EIPType::ipDynamic);
  instrument.SetMACAddress(L"00-11");
  EXPECT_EQ(instrument.Model(), L"m");
  EXPECT_EQ(instrument.Serial(), L"s");
  EXPECT_EQ(instrument.IPAddress(), L"10.0.0.7");
  EXPECT_EQ(instrument.IPType(), EIPType::ipDynamic);
  EXPECT_EQ(instrument.MACAddress(), L"00-11");
}

TEST(CInstrumentsTest, AddReference_AppendsInOrderFromOne) {
  CInstruments instruments;
  EXPECT_EQ(instruments.Count(), 0);
  const auto first = Named(L"a");
  instruments.AddReference(first);
  instruments.AddReference(Named(L"b"), L"");
  instruments.AddReference(first);  // the same object may be in it twice
  EXPECT_EQ(NumberOf([&] { instruments.AddReference(nullptr); }), 5);
  EXPECT_EQ(instruments.Item(1), first);
  EXPECT_EQ(Models(instruments), L"aba");
}

TEST(CInstrumentsTest, AddReference_KeyInUse_IsRefusedWithoutRegardToCase) {
  CInstruments instruments;
  instruments.AddReference(Named(L"a"), L"Key \u00C4");
  for (const wchar_t* key : {L"Key \u00C4", L"KEY \u00C4", L"key \u00E4"}) {
    EXPECT_EQ(NumberOf([&] { instruments.AddReference(Named(L"b"), key); }), 457);
  }
  EXPECT_EQ(Models(instruments), L"a");
}

TEST(CInstrumentsTest, Item_ByKey_FindsWithoutRegardToCase) {
  CInstruments instruments;
  instruments.AddReference(Named(L"a"));
  instruments.AddReference(Named(L"b"), L"Second");
  EXPECT_EQ(instruments.Item(std::wstring(L"sECOND"))->Model(), L"b");
  EXPECT_EQ(instruments.Item(2)->Model(), L"b");
}

TEST(CInstrumentsTest, ItemAndRemove_PositionOutsideOrUnknownKey_IsRefused) {
  CInstruments instruments;
  instruments.AddReference(Named(L"a"));
  instruments.AddReference(Named(L"b"), L"key");
  for (const std::int32_t position : {0, -1, 3, INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(NumberOf([&] { instruments.Item(position); }), 9) << position;
    EXPECT_EQ(NumberOf([&] { instruments.Remove(position); }), 9) << position;
  }
  for (const wchar_t* key : {L"", L"ke", L"keys", L"1"}) {
    EXPECT_EQ(NumberOf([&] { instruments.Item(std::wstring(key)); }), 5) << key;
    EXPECT_EQ(NumberOf([&] { instruments.Remove(std::wstring(key)); }), 5) << key;
  }
  EXPECT_EQ(instruments.Count(), 2);
  EXPECT_EQ(instruments.Removals(), 0U);
}

TEST(CInstrumentsTest, Remove_ByPositionOrKey_LaterItemsMoveUp) {
  CInstruments instruments;
  for (const wchar_t* name : {L"a", L"b", L"c", L"d"}) instruments.AddReference(Named(name), name);
  instruments.Remove(2);
  EXPECT_EQ(Models(instruments), L"acd");
  instruments.Remove(std::wstring(L"C"));
  EXPECT_EQ(Models(instruments), L"ad");
  instruments.AddReference(Named(L"e"), L"b");  // the key is free again
  EXPECT_EQ(Models(instruments), L"ade");
}

TEST(CInstrumentsTest, Clear_LetsGoOfEverything) {
  CInstruments instruments;
  const auto item = Named(L"a");
  instruments.AddReference(item, L"key");
  instruments.Clear();
  EXPECT_EQ(instruments.Count(), 0);
  EXPECT_EQ(item.use_count(), 1);
  instruments.Clear();
  EXPECT_EQ(instruments.Count(), 0);
}

TEST(CInstrumentsTest, RemoveAndClear_ItemLooksBack_SeesCollectionWithoutIt) {
  CInstruments instruments;
  std::int32_t seen = -1;
  // A client's object may do so when it is let go of.
  const auto add_one_that_looks_back = [&] {
    instruments.AddReference({new CInstrument, [&](const CInstrument* item) {
                                seen = instruments.Count();
                                delete item;
                              }});
  };
  add_one_that_looks_back();
  instruments.AddReference(Named(L"b"));
  instruments.Remove(1);
  EXPECT_EQ(seen, 1);
  add_one_that_looks_back();
  instruments.Clear();
  EXPECT_EQ(seen, 0);
}

TEST(CInstrumentsTest, Items_AreAllInTheirOrderAndKnownAndRemovalsCounted) {
  CInstruments instruments;
  const auto first = MakeInstrument();
  const auto second = MakeInstrument();
  instruments.AddReference(first);
  instruments.AddReference(second, L"key");
  EXPECT_EQ(instruments.Items(), (std::vector<std::shared_ptr<Instrument>>{first, second}));
  EXPECT_TRUE(instruments.Contains(*second));
  EXPECT_EQ(instruments.Removals(), 0U);
  instruments.Remove(L"key");
  EXPECT_EQ(instruments.Items(), (std::vector<std::shared_ptr<Instrument>>{first}));
  EXPECT_TRUE(instruments.Contains(*first));
  EXPECT_FALSE(instruments.Contains(*second));
  EXPECT_EQ(instruments.Removals(), 1U);
  instruments.Clear();
  EXPECT_EQ(instruments.Removals(), 2U);
}

}  // namespace
}  // namespace kesp
