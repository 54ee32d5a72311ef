// The IEEE-488 transport on a machine without the driver.
#include "tests/clients/ieee_client.h"

namespace kesp::clients {
namespace {

class GpibMissingTest : public testing::Test {
 protected:
  static Refusal NotInstalled(const std::wstring& source) {
    const std::wstring files = sizeof(void*) == 8 ? L"Gpib-32.dll or ni4882.dll" : L"Gpib-32.dll";
    return {ControlError(53), source, L"File not found: " + files + L" (the GPIB driver is not installed)"};
  }

  Apartment apartment_;
  IeeeClient ieee_;
};

TEST_F(GpibMissingTest, EveryCallOfTheDriver_RaisesFileNotFound) {
  for (int attempt = 0; attempt < 2; ++attempt) {
    EXPECT_EQ(ieee_.Initialize(), NotInstalled(kOpeningSource));
    EXPECT_EQ(ieee_.WriteLine(L"t"), NotInstalled(kWritingSource));
    EXPECT_EQ(ieee_.ReadLine(), NotInstalled(kReadingSource));
    EXPECT_EQ(ieee_.Uninitialize(), kDone) << "which has nothing to close";
  }
}

TEST_F(GpibMissingTest, SettingsAndKey_AreThere) {
  EXPECT_EQ(ieee_.Initialize().result, ControlError(53));
  ieee_.SetAddress(30);
  EXPECT_EQ(ieee_.Address(), 30);
  EXPECT_EQ(Read(ieee_.object, &_CKespIEEE::GetKey).size(), 11U);
}

TEST_F(GpibMissingTest, EosChar_IsLookedAtFirst) {
  ieee_.SetEos(L"abc");
  EXPECT_EQ(ieee_.WriteLine(L"t").result, ControlError(13));
}

TEST_F(GpibMissingTest, AutoDetect_RaisesWithEverythingAsBefore) {
  Text result(L"before");
  VARIANT_BOOL found = VARIANT_TRUE;
  EXPECT_EQ(RefusalOf(ieee_.object->AutoDetect(result.in_out(), dlAllCommands, soFindFirst, &found)),
            NotInstalled(kOpeningSource));
  EXPECT_EQ(found, VARIANT_FALSE);
  EXPECT_EQ(result.str(), L"");
  EXPECT_EQ(ieee_.Address(), 5);
  EXPECT_EQ(ieee_.TimeOut(), to3s);
}

TEST_F(GpibMissingTest, QueryAndUpdate_AreInitializeFailed) {
  const auto comm = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  EXPECT_EQ(WriteByReference(comm, &_CKespCommObj::put_CommStyle, csIEEE), S_OK);
  const Refusal refusal = NotInstalled(kOpeningSource);
  const auto expect_status = [&] {
    EXPECT_EQ(Read(comm, &_CKespCommObj::get_CommError), cfrInitializeFailed);
    EXPECT_EQ(Read(comm, &_CKespCommObj::get_CommErrorSource), refusal.source);
    EXPECT_EQ(Read(comm, &_CKespCommObj::get_CommErrorDescr), refusal.description);
  };
  Text reply(L"before");
  VARIANT_BOOL answer = VARIANT_TRUE;
  EXPECT_EQ(comm->Query(reply.in_out(), Text(L"*IDN?").get(), nullptr, nullptr, &answer), S_OK);
  EXPECT_EQ(answer, VARIANT_FALSE);
  EXPECT_EQ(reply.str(), L"before");
  expect_status();
  answer = VARIANT_TRUE;
  EXPECT_EQ(comm->Update(Text(L"SETP 20").get(), nullptr, nullptr, &answer), S_OK);
  EXPECT_EQ(answer, VARIANT_FALSE);
  expect_status();
}

}  // namespace
}  // namespace kesp::clients
