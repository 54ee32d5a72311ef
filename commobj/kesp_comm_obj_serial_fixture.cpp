// The stage of the tests of a failing serial port: what is expected of the facade.
#include "commobj/kesp_comm_obj_serial_fixture.h"

namespace kesp {

SerialFaultFixture::SerialFaultFixture() {
  StartTrace();
  comm_->serial().SetCreateLogFile(false);
  comm_->serial().SetBaudRate(EKespBaudRate3::br9600);
  fakes_.clock.SetStepPerReading(1);
  comm_->serial().SetInputMode(EInputMode::imBinary);
}

SerialFaultFixture::~SerialFaultFixture() = default;

std::wstring SerialFaultFixture::Description(std::int32_t number) {
  return SerialControlErrorDescription(number);
}

std::wstring SerialFaultFixture::NumberAndDescription(std::int32_t number) {
  return L"(" + std::to_wstring(number) + L" - " + Description(number) + L") **";
}

void SerialFaultFixture::ExpectStatus(ECommError status, const std::wstring& member, std::int32_t number) {
  ExpectStatus(status, L"CKespCOMPort3 - " + member + L" [commCOMControl]", Description(number));
}

void SerialFaultFixture::ExpectStatus(ECommError status, const std::wstring& source,
                                      const std::wstring& description) {
  EXPECT_EQ(comm_->CommError(), status);
  EXPECT_EQ(comm_->CommErrorSource(), source);
  EXPECT_EQ(comm_->CommErrorDescr(), description);
  EXPECT_TRUE(fakes_.user.boxes().empty());
  EXPECT_FALSE(ports_.line.open);
}

std::wstring SerialFaultFixture::InfoLine(const std::wstring& member) const {
  return L"RS-232: ** " + member + L" Error info: Source- " + comm_->CommErrorSource() + L"  Description- " +
         comm_->CommErrorDescr() + L" **";
}

bool SerialFaultFixture::Query() {
  return comm_->Query(result_, L"t");
}

bool SerialFaultFixture::QueryBinary() {
  return comm_->QueryBinary(bytes_, L"t");
}

bool SerialFaultFixture::Update() {
  return comm_->Update(L"t");
}

}  // namespace kesp
