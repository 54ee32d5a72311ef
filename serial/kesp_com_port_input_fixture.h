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
  CKespCOMPort3InputTest();
  ~CKespCOMPort3InputTest() override;

  struct Mode {
    bool terminate_on_lf;
    bool strip_crlf;
    bool check_non_ascii;
  };
  void Use(const Mode& mode);

  // Reads; the outcome is in raised_, the reply in reply_, the milliseconds from the first look at the clock
  // to the last in lasted_.
  void Read();
  void ExpectReply(const std::wstring& reply);
  void ExpectTimeOut(std::int16_t port = 1);

  std::wstring reply_ = L"before";
  Raised raised_;
  std::int32_t lasted_ = 0;
};

}  // namespace kesp
