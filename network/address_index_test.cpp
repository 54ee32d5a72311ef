// Tests of the set of addresses that follows a collection.
#include "network/address_index.h"

#include <gtest/gtest.h>

#include <memory>

#include "network/counting_instrument_fake.h"

namespace kesp {
namespace {

class AddressIndexTest : public testing::Test {
 protected:
  std::shared_ptr<Instrument> Add(const std::wstring& address) {
    auto instrument = std::make_shared<CInstrument>();
    instrument->SetIPAddress(address);
    instruments_.AddReference(instrument);
    return instrument;
  }
  bool Holds(const std::wstring& address) { return index_.Holds(instruments_, address); }

  CInstruments instruments_;
  AddressIndex index_;
};

TEST_F(AddressIndexTest, Holds_WhatTheItemsHaveAlsoThoseAddedLater) {
  EXPECT_FALSE(Holds(L"10.0.0.1"));
  Add(L"10.0.0.1");
  EXPECT_FALSE(Holds(L"10.0.0.2"));
  Add(L"10.0.0.2");
  EXPECT_TRUE(Holds(L"10.0.0.1"));
  EXPECT_TRUE(Holds(L"10.0.0.2"));
  EXPECT_FALSE(Holds(L"10.0.0.3"));
  EXPECT_FALSE(Holds(L""));
}

TEST_F(AddressIndexTest, ItemsRemoved_AreForgotten) {
  Add(L"10.0.0.1");
  Add(L"10.0.0.2");
  EXPECT_TRUE(Holds(L"10.0.0.1"));
  instruments_.Remove(1);
  EXPECT_FALSE(Holds(L"10.0.0.1"));
  EXPECT_TRUE(Holds(L"10.0.0.2"));
}

TEST_F(AddressIndexTest, ClearedAndFilledAgain_HoldsTheNewOnesOnly) {
  Add(L"10.0.0.1");
  EXPECT_TRUE(Holds(L"10.0.0.1"));
  instruments_.Clear();
  Add(L"10.0.0.2");
  EXPECT_FALSE(Holds(L"10.0.0.1"));
  EXPECT_TRUE(Holds(L"10.0.0.2"));
}

TEST_F(AddressIndexTest, AddressChangedInAnItem_CountsFromTheNextRestart) {
  const auto instrument = Add(L"10.0.0.1");
  EXPECT_TRUE(Holds(L"10.0.0.1"));
  instrument->SetIPAddress(L"10.0.0.9");
  index_.Restart();
  EXPECT_FALSE(Holds(L"10.0.0.1"));
  EXPECT_TRUE(Holds(L"10.0.0.9"));
}

TEST_F(AddressIndexTest, ManyQuestions_EachItemIsReadOnce) {
  int asked = 0;
  for (int i = 0; i < 1000; ++i) {
    instruments_.AddReference(std::make_shared<CountingInstrument>(asked));
    EXPECT_FALSE(Holds(L"10.0.1.1"));
  }
  EXPECT_EQ(asked, 1000);
}

}  // namespace
}  // namespace kesp
