// The communication object over IEEE-488: its operations, and a failure of each step.
#include "tests/clients/comm_obj_client.h"
#include "tests/clients/gpib_fixture.h"

namespace kesp::clients {
namespace {

class GpibQueryTest : public testing::Test, protected CommObjClient {
 protected:
  void TearDown() override { EXPECT_EQ(driver_.OpenDescriptors(), 0) << driver_.RecordText(); }

  const SimulatedDriver driver_;
  IeeeClient ieee_{Use<_CKespIEEE>(csIEEE)};
};

TEST_F(GpibQueryTest, QueryAndUpdate_OpenTheDeviceAndCloseIt) {
  driver_.Load(Bus());
  EXPECT_TRUE(Query(L"*IDN?"));
  EXPECT_EQ(reply_.str(), kIdentity);
  ExpectStatus(cfrSuccess);
  EXPECT_TRUE(Update(L"SETP 20"));
  ExpectStatus(cfrSuccess);
  EXPECT_EQ(driver_.Calls(), (CallLines{"ibdev(0,5,0,12,1,0)", "ibclr(1)", "ibeos(1,1073)",
                                        R"(ibwrt(1,"*IDN?\n",6))", "ibrd(1,[50 blanks],50)", "ibonl(1,0)",
                                        "ibonl(0,0)", "ibdev(0,5,0,12,1,0)", "ibclr(1)", "ibeos(1,1073)",
                                        R"(ibwrt(1,"SETP 20\n",8))", "ibonl(1,0)", "ibonl(0,0)"}));
}

TEST_F(GpibQueryTest, StepFails_StatusTellsWhich) {
  driver_.Load(BusFailing("ibclr", 4));
  EXPECT_FALSE(Query(L"*IDN?"));
  ExpectStatus(cfrInitializeFailed, kOpeningSource,
               L"Error calling ibclr(): Error: 4 - Invalid argument to function call");
  ieee_.Set(&_CKespIEEE::put_TimeOutSecs, to100ms);
  EXPECT_FALSE(Query(L"SETP 20"));
  ExpectStatus(cfrReadFailed, kReadingSource,
               L"Error calling ibrd() on device 1: Error: 6 - I/O operation aborted");
  ieee_.Set(&_CKespIEEE::put_PrimaryAddress, 9);
  EXPECT_FALSE(Update(L"SETP 20"));
  ExpectStatus(
      cfrWriteFailed, kWritingSource,
      L"Error calling ibwrt() with command 'SETP 20' on device 1: Error: 2 - Write function detected no "
      L"listeners");
}

TEST_F(GpibQueryTest, DetectInstrument_LeavesTheAddressOfTheDevice) {
  driver_.Load(Bus());
  VARIANT_BOOL found = VARIANT_FALSE;
  EXPECT_EQ(comm_->DetectInstrument(reply_.in_out(), dlCommonCommands, &found), S_OK);
  EXPECT_EQ(found, VARIANT_TRUE);
  EXPECT_EQ(reply_.str(), L"KESP,2.0\n");
  EXPECT_EQ(Read(ieee_.object, &_CKespIEEE::get_PrimaryAddress), 2);
}

}  // namespace
}  // namespace kesp::clients
