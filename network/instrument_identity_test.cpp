// Tests of taking an identity apart.
#include "network/instrument_identity.h"

#include <gtest/gtest.h>

namespace kesp {
namespace {

void ExpectIdentity(const std::wstring& answer, const std::wstring& model, const std::wstring& serial) {
  const auto identity = IdentityIn(answer);
  ASSERT_TRUE(identity) << testing::PrintToString(answer);
  EXPECT_EQ(identity->model, model);
  EXPECT_EQ(identity->serial, serial);
}

TEST(InstrumentIdentityTest, SecondAndThirdField_AreTakenAsTheyAre) {
  ExpectIdentity(L"KESP,7100,SIM00001,1.0", L"7100", L"SIM00001");
  ExpectIdentity(L"KESP,7100,SIM00001", L"7100", L"SIM00001");
  ExpectIdentity(L" KESP , 71 00 , SIM\t1 ,x", L" 71 00 ", L" SIM\t1 ");
  ExpectIdentity(L",,", L"", L"");
  ExpectIdentity(L",,,", L"", L"");
  ExpectIdentity(L"a;b,c;d,e", L"c;d", L"e");
}

TEST(InstrumentIdentityTest, HundredFields_AreNoMoreThanFour) {
  std::wstring answer = L"f1";
  for (int i = 2; i <= 100; ++i) answer += L",f" + std::to_wstring(i);
  ExpectIdentity(answer, L"f2", L"f3");
}

TEST(InstrumentIdentityTest, LongFields_AreTakenWhole) {
  const std::wstring model(70000, L'x');
  const std::wstring serial(256, L'y');
  ExpectIdentity(L"KESP," + model + L"," + serial + L",1.0", model, serial);
}

TEST(InstrumentIdentityTest, FewerThanThreeFields_AreNone) {
  for (const std::wstring answer : {L"", L"KESP", L"KESP,7100", L","}) {
    EXPECT_FALSE(IdentityIn(answer)) << testing::PrintToString(answer);
  }
}

}  // namespace
}  // namespace kesp
