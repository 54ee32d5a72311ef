// The stage of the tests of the serial branch: the facade over a serial port, its status and its trace.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "commobj/kesp_comm_obj_fixture.h"
#include "support/lines_fixture.h"

namespace kesp {

// COM1 at 9600 bit/s, the trace without the transport's own lines, and bytes for QueryBinary. An instrument
// answers "t" with "20.5" until the test takes that back.
class CKespCommObjSerialFixture : public KespCommObjFixture {
 protected:
  CKespCommObjSerialFixture();
  ~CKespCommObjSerialFixture() override;

  bool Query(const std::wstring& cmd = L"t") { return comm_->Query(result_, cmd); }
  bool QueryBinary() { return comm_->QueryBinary(bytes_, L"t"); }
  bool Update(const std::wstring& cmd = L"t") { return comm_->Update(cmd); }

  // The port is closed and no box was shown.
  void ExpectStatus(ECommError status, const std::wstring& source = {}, const std::wstring& description = {});
  // The lines that were traced since the last time.
  void ExpectTrace(const Lines& expected);
  Lines NewTrace();
  // How a failure of that member is told by the status at present.
  std::wstring ErrorInfo(const std::wstring& member) const;
  std::ptrdiff_t Calls(const std::string& call) const;

  static constexpr char kOpened[] = "Open COM1 9600,N,8,1";
  std::wstring result_ = L"before";
  BinaryValue bytes_;
  // Those of the control.
  std::vector<std::string> calls_;

 private:
  std::size_t traced_ = 0;
};

}  // namespace kesp
