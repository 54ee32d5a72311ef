// A network transport that looks for instruments, with settings of its own to be found again afterwards.
#pragma once

#include <string>

#include "tests/clients/tcp_fixture.h"

namespace kesp::clients {

class TcpDetectionStage : public TcpEventsFixture {
 protected:
  TcpDetectionStage() {
    SetTimeOut(5000);
    EXPECT_EQ(Write(tcp_, &_CKespTCP::put_IPType, ipDynamic), S_OK);
  }

  // The result is in result_ and found_.
  Refusal AutoDetect(EDetectLevel level = dlAllCommands) {
    found_ = 5;
    return RefusalOf(tcp_->AutoDetect(result_.in_out(), level, &found_));
  }
  void ExpectFound(const std::wstring& answer) {
    EXPECT_EQ(found_, VARIANT_TRUE);
    EXPECT_EQ(result_.str(), answer);
  }
  void ExpectNothingFound() {
    EXPECT_EQ(found_, VARIANT_FALSE);
    EXPECT_EQ(result_.str(), L"");
  }
  void ExpectRestored(EKespProtocol protocol) {
    EXPECT_EQ(Read(tcp_, &_CKespTCP::get_TimeOutmSecs), 5000);
    EXPECT_EQ(Read(tcp_, &_CKespTCP::get_IPType), ipDynamic);
    EXPECT_EQ(Read(tcp_, &_CKespTCP::get_Protocol), protocol);
  }

  Text result_{L"before"};
  VARIANT_BOOL found_ = VARIANT_FALSE;
};

inline const Refusal kDone;

}  // namespace kesp::clients
