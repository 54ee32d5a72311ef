// Tests of the socket error texts.
#include "network/socket_errors.h"

#include <gtest/gtest.h>

#include <set>

namespace kesp {
namespace {

TEST(SocketErrorsTest, Description_KnownNumbers_HaveTheirTexts) {
  const std::pair<std::int32_t, const wchar_t*> cases[] = {
      {10004, L"The operation is canceled"},
      {10054, L"The connection is reset by remote side"},
      {10055, L"No buffer space is available"},
      {10060, L"The attempt to connect timed out"},
      {10061, L"Connection is forcefully rejected"},
      {11001, L"Authoritative answer: Host not found"},
      {11004, L"Valid name, no data record of requested type"},
      {40006, L"Wrong protocol or connection state for the requested transaction or request"},
      {40014, L"The argument passed to a function was not in the correct format or in the specified range"},
      {40018, L"Unsupported variant type"},
      {40020, L"Invalid operation at current state"},
  };
  for (const auto& [number, text] : cases) EXPECT_EQ(SocketErrorDescription(number), text) << number;
}

TEST(SocketErrorsTest, Description_UnknownNumber_NamesIt) {
  EXPECT_EQ(SocketErrorDescription(12345), L"Socket error 12345");
  EXPECT_EQ(SocketErrorDescription(0), L"Socket error 0");
}

TEST(SocketErrorsTest, Description_NoTwoNumbersShareAText) {
  std::set<std::wstring> texts;
  for (std::int32_t number = 10000; number < 11100; ++number) {
    EXPECT_TRUE(texts.insert(SocketErrorDescription(number)).second) << number;
  }
}

TEST(SocketErrorsTest, Failure_CarriesNumberSourceAndText) {
  const Failure failure = SocketFailure(40006);
  EXPECT_EQ(failure.number(), 40006);
  EXPECT_EQ(failure.source(), L"KespWinsock");
  EXPECT_EQ(failure.description(), SocketErrorDescription(40006));
}

TEST(SocketErrorsTest, Notification_ScodeIsControlFacilityWithTheNumber) {
  const SocketError error = SocketErrorNotification(10061);
  EXPECT_EQ(error.number, 10061);
  EXPECT_EQ(static_cast<std::uint32_t>(error.scode), 0x800A274DU);
  EXPECT_EQ(error.source, L"KespWinsock");
  EXPECT_EQ(error.description, L"Connection is forcefully rejected");
  EXPECT_EQ(error.help_file, L"");
  EXPECT_EQ(error.help_context, 0);
  EXPECT_FALSE(error.cancel_display);
}

}  // namespace
}  // namespace kesp
