// The stage of the tests of text replies: an open port, and what a read came to.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {

inline constexpr wchar_t kReadLineSource[] = L"CKespCOMPort3 - ReadLine()";

class CKespCOMPort3InputTest : public SerialConversationTest {
 protected:
  CKespCOMPort3InputTest() { Open(); }
  ~CKespCOMPort3InputTest() override { EXPECT_EQ(environment_.pump.count(), 0) << "a read pumped messages"; }

  struct Mode {
    bool terminate_on_lf;
    bool strip_crlf;
    bool check_non_ascii;
  };
  void Use(const Mode& mode) {
    port_.SetTerminateOnLF(mode.terminate_on_lf);
    port_.SetStripCRLF(mode.strip_crlf);
    port_.SetCheckNonAscii(mode.check_non_ascii);
  }

  // Reads; the outcome is in raised_, the reply in reply_, the milliseconds from the first look at the clock
  // to the last in lasted_.
  void Read() {
    const std::int32_t start = Now();
    raised_ = RaisedBy([&] { EXPECT_TRUE(port_.ReadLine(reply_)); });
    // The counter may turn negative meanwhile.
    lasted_ =
        static_cast<std::int32_t>(static_cast<std::uint32_t>(Now()) - static_cast<std::uint32_t>(start)) - 1;
  }
  void ExpectReply(const std::wstring& reply) {
    EXPECT_EQ(raised_, Raised{});
    EXPECT_EQ(reply_, reply);
  }
  void ExpectTimeOut(std::int16_t port = 1) {
    EXPECT_EQ(raised_, (Raised{com_port_error::ERR_READ_TIMEOUT, kReadLineSource,
                               L"Timeout waiting for instrument to respond to command on COM" +
                                   std::to_wstring(port) + L"."}));
  }

  std::wstring reply_ = L"before";
  Raised raised_;
  std::int32_t lasted_ = 0;
};

}  // namespace kesp
