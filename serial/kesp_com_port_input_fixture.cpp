// The stage of the tests of text replies: reading, and what it came to.
#include "serial/kesp_com_port_input_fixture.h"

namespace kesp {

CKespCOMPort3InputTest::CKespCOMPort3InputTest() {
  Open();
}

CKespCOMPort3InputTest::~CKespCOMPort3InputTest() {
  EXPECT_EQ(environment_.pump.count(), 0) << "a read pumped messages";
}

void CKespCOMPort3InputTest::Use(const Mode& mode) {
  port_.SetTerminateOnLF(mode.terminate_on_lf);
  port_.SetStripCRLF(mode.strip_crlf);
  port_.SetCheckNonAscii(mode.check_non_ascii);
}

void CKespCOMPort3InputTest::Read() {
  const std::int32_t start = Now();
  raised_ = RaisedBy([&] { EXPECT_TRUE(port_.ReadLine(reply_)); });
  // The counter may turn negative meanwhile.
  lasted_ =
      static_cast<std::int32_t>(static_cast<std::uint32_t>(Now()) - static_cast<std::uint32_t>(start)) - 1;
}

void CKespCOMPort3InputTest::ExpectReply(const std::wstring& reply) {
  EXPECT_EQ(raised_, Raised{});
  EXPECT_EQ(reply_, reply);
}

void CKespCOMPort3InputTest::ExpectTimeOut(std::int16_t port) {
  EXPECT_EQ(raised_, (Raised{com_port_error::ERR_READ_TIMEOUT, kReadLineSource,
                             L"Timeout waiting for instrument to respond to command on COM" +
                                 std::to_wstring(port) + L"."}));
}

}  // namespace kesp
