// The stage of the tests of a failing serial port: the facade over it, and the texts that are expected.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "commobj/kesp_comm_obj_fixture.h"
#include "serial/serial_control_errors.h"
#include "support/lines_fixture.h"

namespace kesp {

class SerialFaultFixture : public KespCommObjFixture {
 protected:
  SerialFaultFixture();
  ~SerialFaultFixture() override;

  static std::wstring Description(std::int32_t number);
  static std::wstring NumberAndDescription(std::int32_t number);
  // The status and the texts of a failure that the control itself had in this member.
  void ExpectStatus(ECommError status, const std::wstring& member, std::int32_t number);
  void ExpectStatus(ECommError status, const std::wstring& source, const std::wstring& description);
  std::wstring InfoLine(const std::wstring& member) const;

  bool Query();
  bool QueryBinary();
  bool Update();

  std::wstring result_ = L"before";
  BinaryValue bytes_;
};

}  // namespace kesp
