// Ports that cannot be opened, and operations on a port that is not open.
#include <gtest/gtest.h>

#include "tests/clients/late_object.h"
#include "tests/clients/serial_fixture.h"
#include "tests/serial_win/bare_port.h"

namespace kesp::clients {
namespace {

class SerialRefusalsTest : public OwnedSerialFixture {
 protected:
  Refusal RefusalOfOpening() {
    const Refusal refusal = RefusalOf(OpenPort());
    EXPECT_FALSE(Answer());
    return refusal;
  }
};

INSTANTIATE_TEST_SUITE_P(Transports, SerialRefusalsTest,
                         testing::Values(TransportOwner::kClient, TransportOwner::kFacade), OwnerName);

TEST_P(SerialRefusalsTest, MissingPort_IsInvalidPortNumber) {
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_Port, kMissingPort), S_OK);
  EXPECT_EQ(RefusalOfOpening(), (Refusal{ControlError(8002), L"CKespCOMPort3 - OpenPort() [commCOMControl]",
                                         L"Invalid port number"}));
}

TEST_P(SerialRefusalsTest, PortHeldByAnother_IsAlreadyOpenUntilItIsFree) {
  BarePort other(SerialWire::PortName());
  ASSERT_EQ(other.error(), DWORD{ERROR_SUCCESS});
  EXPECT_EQ(RefusalOfOpening(), (Refusal{ControlError(8005), L"CKespCOMPort3 - OpenPort() [commCOMControl]",
                                         L"Port already open"}));
  other.Close();
  EXPECT_EQ(RefusalOf(OpenPort()), Refusal{});
  EXPECT_TRUE(Answer());
}

TEST_P(SerialRefusalsTest, ClosedPort_LinesAreRefused) {
  EXPECT_EQ(RefusalOf(WriteLine(L"t")),
            (Refusal{ControlError(8018), L"CKespCOMPort3 - WriteLine() [commCOMControl]",
                     L"Operation valid only when the port is open"}));
  EXPECT_FALSE(Answer());
  EXPECT_EQ(RefusalOf(ReadLine()),
            (Refusal{ControlError(8018), L"CKespCOMPort3 - ReadLine() [commCOMControl]",
                     L"Operation valid only when the port is open"}));
  EXPECT_FALSE(Answer());
  EXPECT_EQ(RefusalOf(port_->ClearBuffers()),
            (Refusal{ControlError(8018), L"commCOMControl", L"Operation valid only when the port is open"}));
}

TEST_P(SerialRefusalsTest, SettingsThatTheSystemRefuses_AreRefusedAtOpening) {
  EXPECT_EQ(WriteByReference(port_, &_CKespCOMPort3::put_DataBits, DATA_4BITS), S_OK);
  EXPECT_EQ(RefusalOfOpening(), (Refusal{ControlError(8015), L"CKespCOMPort3 - OpenPort() [commCOMControl]",
                                         L"Could not set comm state"}));
  EXPECT_TRUE(IsAvailable()) << "it was not left open";
}

class NewSerialTransportTest : public SerialFixture {
 protected:
  NewSerialTransportTest() {
    port_ = Create<_CKespCOMPort3>(__uuidof(CKespCOMPort3));
    EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_Port, SerialPortNumber()), S_OK);
  }
};

TEST_F(NewSerialTransportTest, NoRateChosen_SettingsAreRefused) {
  EXPECT_EQ(Read(port_, &_CKespCOMPort3::GetSettings), L"<unknown>,N,8,1");
  EXPECT_EQ(RefusalOf(OpenPort()), (Refusal{ControlError(380), L"CKespCOMPort3 - OpenPort() [commCOMControl]",
                                            L"Invalid property value"}));
  EXPECT_FALSE(Answer());
  EXPECT_TRUE(IsAvailable());
}

TEST_F(NewSerialTransportTest, LateBound_NumberSourceAndDescriptionAreInTheExceptionInformation) {
  ComPtr<IDispatch> dispatch;
  ASSERT_EQ(port_.As(&dispatch), S_OK);
  const Outcome outcome = LateObject(dispatch).Call(L"OpenPort");
  EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
  EXPECT_EQ(outcome.scode, ControlError(380));
  EXPECT_EQ(outcome.source, L"CKespCOMPort3 - OpenPort() [commCOMControl]");
  EXPECT_EQ(outcome.description, L"Invalid property value");
}

}  // namespace
}  // namespace kesp::clients
