// What helps after a failure.
#include "console/hint.h"

#include <gtest/gtest.h>

namespace kesp::console {
namespace {

LibraryError Timeout(std::optional<std::int64_t> received, const std::string& last = {}) {
  LibraryError error("cfrTimeout", "", "Timeout");
  error.received = received;
  error.last_received = last;
  return error;
}

std::string Hint(const LibraryError& error, const char* address) {
  return HintFor(error, ParseAddress(address));
}

TEST(HintFor, TimeoutOverTheNetwork_TellsHowMuchCame) {
  EXPECT_EQ(Hint(Timeout(0), "tcp:a"),
            "Nothing was received: the instrument may not know the command, or take longer (--timeout)"
            " (docs\\no-answer.md#nothing-comes).");
  EXPECT_EQ(Hint(Timeout(17), "tcp:a"),
            "17 bytes came without the end character 13: \",eos=CODE\" behind the address names another one, "
            "\",any\" takes what comes (docs\\no-answer.md#a-part-comes-then-a-timeout).");
  EXPECT_EQ(Hint(Timeout(1), "tcp:a,eos=13+10").find("1 byte came without the end character 10:"), 0U);
  EXPECT_EQ(Hint(Timeout(std::nullopt), "tcp:a"), "");
}

TEST(HintFor, TimeoutAtAPort_TellsWhatCameLast) {
  EXPECT_EQ(Hint(Timeout(0), "com3@9600,8N1"),
            "Nothing was received: \"kesp detect com3\" looks for the bit rate"
            " (docs\\no-answer.md#nothing-comes).");
  EXPECT_EQ(
      Hint(Timeout(17, "80 0A"), "usb:A1"),
      "17 bytes came without a line feed, the last were 80 0A: \"kesp detect usb:A1\" tells whether the bit "
      "rate is right (docs\\no-answer.md#a-part-comes-then-a-timeout).");
  EXPECT_EQ(Hint(Timeout(2, "80 0A"), "com3,cr").find("2 bytes came without a carriage return,"), 0U);
  EXPECT_EQ(Hint(Timeout(std::nullopt), "com3"), "");
}

TEST(HintFor, OtherFailures_ByTransportAndStatus) {
  const LibraryError closed("cfrInitializeFailed", "", "Timeout - unable to establish connection");
  EXPECT_EQ(Hint(closed, "tcp:a").find("Nobody listens"), 0U);
  EXPECT_EQ(Hint(closed, "gpib:5").find("\"kesp doctor\""), 0U);
  EXPECT_EQ(Hint(LibraryError("cfrWriteFailed", "", ""), "gpib:5").find("\"kesp detect gpib:\""), 0U);
  EXPECT_EQ(Hint(LibraryError("cfrTimeout", "", "Port already open"), "com3"),
            "Another program holds the port: close it there (docs\\no-answer.md#access-denied).");
  EXPECT_EQ(Hint(LibraryError("cfrInvalidData", "", ""), "com3"), "");
}

TEST(HintFor, BytesThatAreNoText_CanBeShown) {
  const LibraryError error("cfrReadFailed", "", "Invalid characters received on COM3.");
  EXPECT_EQ(Hint(error, "tcp:a"),
            "The reply has bytes that are no text: --hex, or :hex in the terminal, shows them"
            " (docs\\no-answer.md#strange-characters-the-wrong-bit-rate).");
  EXPECT_EQ(Hint(error, "com3@9600"),
            "The reply has bytes that are no text: --hex, or :hex in the terminal, shows them; \"kesp detect "
            "com3\" tells whether the bit rate is right"
            " (docs\\no-answer.md#strange-characters-the-wrong-bit-rate).");
}

TEST(LoneReturnHint, ReplyThatTookTheWholeTimeout_NeedsTheOption) {
  const auto hint = [](const char* address, std::optional<int> timeout_ms, std::optional<int> waited_ms) {
    std::optional<std::chrono::milliseconds> waited;
    if (waited_ms) waited = std::chrono::milliseconds(*waited_ms);
    return LoneReturnHint(ParseAddress(address), timeout_ms, waited);
  };
  EXPECT_NE(hint("com3", std::nullopt, 3000), "");
  EXPECT_EQ(hint("com3", std::nullopt, 2999), "");
  EXPECT_NE(hint("usb:A1", 500, 510), "");
  EXPECT_EQ(hint("com3", 500, std::nullopt), "");
  for (const char* address : {"com3,cr", "com3,modem=1", "com3,precidia", "usb:A1,cr", "tcp:a", "gpib:5"})
    EXPECT_EQ(hint(address, 500, 510), "") << address;
}

}  // namespace
}  // namespace kesp::console
