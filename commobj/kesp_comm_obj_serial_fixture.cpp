// The stage of the tests of the serial branch: what is expected of the facade.
#include "commobj/kesp_comm_obj_serial_fixture.h"

#include <algorithm>

namespace kesp {

CKespCommObjSerialFixture::CKespCommObjSerialFixture() {
  StartTrace();
  comm_->serial().SetCreateLogFile(false);
  comm_->serial().SetBaudRate(EKespBaudRate3::br9600);
  comm_->serial().SetInputMode(EInputMode::imBinary);
  fakes_.clock.SetStepPerReading(1);
  ports_.line.record = [this](const std::string& call) { calls_.push_back(call); };
  ports_.line.Answer("t\r", "20.5\r\n");
}

CKespCommObjSerialFixture::~CKespCommObjSerialFixture() {
  ports_.line.record = [](const std::string&) {};
}

void CKespCommObjSerialFixture::ExpectStatus(ECommError status, const std::wstring& source,
                                             const std::wstring& description) {
  EXPECT_EQ(comm_->CommError(), status);
  EXPECT_EQ(comm_->CommErrorSource(), source);
  EXPECT_EQ(comm_->CommErrorDescr(), description);
  EXPECT_TRUE(fakes_.user.boxes().empty());
  EXPECT_FALSE(ports_.line.open);
}

void CKespCommObjSerialFixture::ExpectTrace(const Lines& expected) {
  EXPECT_EQ(NewTrace(), expected);
}

Lines CKespCommObjSerialFixture::NewTrace() {
  const Lines all = Trace();
  const Lines fresh(all.begin() + static_cast<std::ptrdiff_t>(traced_), all.end());
  traced_ = all.size();
  return fresh;
}

std::wstring CKespCommObjSerialFixture::ErrorInfo(const std::wstring& member) const {
  return L"RS-232: ** " + member + L" Error info: Source- " + comm_->CommErrorSource() + L"  Description- " +
         comm_->CommErrorDescr() + L" **";
}

std::ptrdiff_t CKespCommObjSerialFixture::Calls(const std::string& call) const {
  return std::count(calls_.begin(), calls_.end(), call);
}

}  // namespace kesp
