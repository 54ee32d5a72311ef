// Replies and commands of the IEEE-488 transport: pieces, bytes of all values, what is left after an error.
#include "tests/clients/gpib_fixture.h"

namespace kesp::clients {
namespace {

class GpibRepliesTest : public GpibStage {
 protected:
  // Opens a device that answers "t" with this reply (as JSON writes it); it alone ends reads.
  void OpenWith(const std::string& reply, const std::string& more = R"("reply_terminator": "")") {
    driver_.Load(BusWith(R"({"gpib": {"primary": 5}, "commands": {"t": ")" + reply + "\"}, " + more + "}"));
    ieee_.SetEndsReads(false);
    ieee_.SetTimeOut(to100ms);
    EXPECT_EQ(ieee_.Initialize(), kDone);
    EXPECT_EQ(ieee_.WriteLine(L"t"), kDone);
  }
  // The next piece; the error's text where there is none.
  std::wstring Piece() {
    const Refusal refusal = ieee_.ReadLine();
    return refusal == kDone ? ieee_.reply.str() : refusal.description;
  }

  const std::wstring silence_ = L"Error calling ibrd() on device 1: Error: 6 - I/O operation aborted";
};

// Each byte's character, as Windows has it.
std::wstring AllCharacters() {
  EXPECT_EQ(GetACP(), 1252U);
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes.push_back(static_cast<char>(byte));
  std::wstring characters(bytes.size(), L'\0');
  EXPECT_EQ(MultiByteToWideChar(1252, 0, bytes.data(), static_cast<int>(bytes.size()), characters.data(),
                                static_cast<int>(characters.size())),
            256);
  return characters;
}

GPIB_TEST(GpibRepliesTest, LongerThanFifty_ComesInPieces) {
  const std::string reply = std::string(50, 'a') + std::string(50, 'b') + std::string(20, 'c');
  OpenWith(reply, R"("reply_terminator": "\n")");
  EXPECT_EQ(Piece(), std::wstring(50, L'a'));
  EXPECT_EQ(Piece(), std::wstring(50, L'b'));
  EXPECT_EQ(Piece(), std::wstring(20, L'c') + L"\n");
  EXPECT_EQ(Piece(), silence_);
}

GPIB_TEST(GpibRepliesTest, ExactlyFifty_IsOnePiece) {
  OpenWith(std::string(50, 'a'));
  EXPECT_EQ(Piece(), std::wstring(50, L'a'));
  EXPECT_EQ(Piece(), silence_) << "nothing is left";
}

GPIB_TEST(GpibRepliesTest, FiftyOne_IsTwoPieces) {
  OpenWith(std::string(50, 'a') + "b");
  EXPECT_EQ(Piece(), std::wstring(50, L'a'));
  EXPECT_EQ(Piece(), L"b");
}

GPIB_TEST(GpibRepliesTest, Reply_IsNotTrimmed) {
  OpenWith("  21.5 \\t ", R"("reply_terminator": "\r\n")");
  EXPECT_EQ(Piece(), L"  21.5 \t \r\n");
}

// A blank is what the buffer holds before the read.
GPIB_TEST(GpibRepliesTest, BlanksOfTheReply_AreTold) {
  OpenWith("   ");
  EXPECT_EQ(Piece(), L"   ");
}

GPIB_TEST(GpibRepliesTest, NextCommand_DropsTheRest) {
  OpenWith(std::string(60, 'a'));
  EXPECT_EQ(Piece(), std::wstring(50, L'a'));
  EXPECT_EQ(ieee_.WriteLine(L"t"), kDone);
  EXPECT_EQ(Piece(), std::wstring(50, L'a'));
  EXPECT_EQ(Piece(), std::wstring(10, L'a'));
}

GPIB_TEST(GpibRepliesTest, EveryByteValue_IsReceived) {
  std::string reply;
  for (int byte = 0; byte < 256; ++byte) {
    const char* const digits = "0123456789ABCDEF";
    reply += std::string("\\u00") + digits[byte / 16] + digits[byte % 16];
  }
  OpenWith(reply);
  std::wstring received;
  for (int piece = 0; piece < 6; ++piece) received += Piece();
  EXPECT_EQ(received, AllCharacters());
}

GPIB_TEST(GpibRepliesTest, EveryByteValue_IsSent) {
  EXPECT_EQ(ieee_.Initialize(), kDone);
  EXPECT_EQ(ieee_.WriteLine(AllCharacters()), kDone);
  std::string all;
  for (int byte = 0; byte < 256; ++byte) {
    const std::string known = "\r\n\t\\\"";
    const auto place = known.find(static_cast<char>(byte));
    if (place != std::string::npos) {
      all += std::string("\\") + "rnt\\\""[place];
    } else if (byte >= 0x20 && byte < 0x7F) {
      all.push_back(static_cast<char>(byte));
    } else {
      const char* const digits = "0123456789ABCDEF";
      all += std::string("\\x") + digits[byte / 16] + digits[byte % 16];
    }
  }
  EXPECT_EQ(driver_.Calls("ibwrt"), CallLines{"ibwrt(1,\"" + all + "\\n\",257)"});
}

GPIB_TEST(GpibRepliesTest, CharacterWithoutAByte_IsSentAsAQuestionMark) {
  EXPECT_EQ(ieee_.Initialize(), kDone);
  EXPECT_EQ(ieee_.WriteLine(L"\x20AC \x4E2D \xD83D\xDE00"), kDone);
  EXPECT_EQ(driver_.Calls("ibwrt"), CallLines{R"(ibwrt(1,"\x80 ? ?\n",6))"});
}

// The device stops without the end that the read waits for.
GPIB_TEST(GpibRepliesTest, PartOfAReply_IsInTheResultAfterTheTimeOut) {
  OpenWith("21.", R"("reply_terminator": "", "end": false)");
  EXPECT_EQ(ieee_.ReadLine(), (Refusal{ERR_IBRD, kReadingSource, silence_}));
  EXPECT_EQ(ieee_.reply.str(), L"21.");
}

GPIB_TEST(GpibRepliesTest, Silence_LeavesTheResultEmpty) {
  OpenWith("21.5");
  EXPECT_EQ(Piece(), L"21.5");
  EXPECT_EQ(Piece(), silence_);
  EXPECT_EQ(ieee_.reply.str(), L"") << "not the earlier reply";
}

// The buffer is 50 blanks, whatever the driver claims to have put there.
GPIB_TEST(GpibRepliesTest, CountOfTheDriver_IsHeldWithinTheBuffer) {
  driver_.Load(MeterBus(Failures(Failing("ibrd", 1, R"("status": 256, "count": 3)") + "," +
                                 Failing("ibrd", 2, R"("status": 256, "count": 51)") + "," +
                                 Failing("ibrd", 3, R"("status": 256, "count": 2147483647)") + "," +
                                 Failing("ibrd", 4, R"("status": 256, "count": -1)") + "," +
                                 Failing("ibrd", 5, R"("status": 256, "count": 0)"))));
  EXPECT_EQ(ieee_.Initialize(), kDone);
  for (const std::size_t length : {3U, 50U, 50U, 0U, 0U}) {
    EXPECT_EQ(ieee_.ReadLine(), kDone);
    EXPECT_EQ(ieee_.reply.str(), std::wstring(length, L' '));
  }
}

}  // namespace
}  // namespace kesp::clients
