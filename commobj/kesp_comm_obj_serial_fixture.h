// The stage of the tests of a failing serial port: the facade over it, and the texts that are expected.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "commobj/kesp_comm_obj_fixture.h"
#include "serial/serial_control_errors.h"

namespace kesp {

using Lines = std::vector<std::wstring>;

class SerialFaultFixture : public KespCommObjFixture {
 protected:
  SerialFaultFixture() {
    StartTrace();
    comm_->serial().SetCreateLogFile(false);
    comm_->serial().SetBaudRate(EKespBaudRate3::br9600);
    fakes_.clock.SetStepPerReading(1);
    comm_->serial().SetInputMode(EInputMode::imBinary);
  }

  static std::wstring Description(std::int32_t number) { return SerialControlErrorDescription(number); }
  static std::wstring NumberAndDescription(std::int32_t number) {
    return L"(" + std::to_wstring(number) + L" - " + Description(number) + L") **";
  }
  // The status and the texts of a failure that the control itself had in this member.
  void ExpectStatus(ECommError status, const std::wstring& member, std::int32_t number) {
    ExpectStatus(status, L"CKespCOMPort3 - " + member + L" [commCOMControl]", Description(number));
  }
  void ExpectStatus(ECommError status, const std::wstring& source, const std::wstring& description) {
    EXPECT_EQ(comm_->CommError(), status);
    EXPECT_EQ(comm_->CommErrorSource(), source);
    EXPECT_EQ(comm_->CommErrorDescr(), description);
    EXPECT_TRUE(fakes_.user.boxes().empty());
    EXPECT_FALSE(ports_.line.open);
  }
  std::wstring InfoLine(const std::wstring& member) const {
    return L"RS-232: ** " + member + L" Error info: Source- " + comm_->CommErrorSource() +
           L"  Description- " + comm_->CommErrorDescr() + L" **";
  }

  bool Query() { return comm_->Query(result_, L"t"); }
  bool QueryBinary() { return comm_->QueryBinary(bytes_, L"t"); }
  bool Update() { return comm_->Update(L"t"); }

  std::wstring result_ = L"before";
  BinaryValue bytes_;
};

}  // namespace kesp
