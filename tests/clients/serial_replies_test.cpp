// When a reply is complete, and what is made of its characters.
#include <gtest/gtest.h>

#include "tests/clients/serial_fixture.h"

namespace kesp::clients {
namespace {

// The text that bytes of the line stand for.
std::wstring AnsiText(const std::string& bytes) {
  std::wstring text(bytes.size(), L'\0');
  text.resize(static_cast<std::size_t>(MultiByteToWideChar(
      CP_ACP, 0, bytes.data(), static_cast<int>(bytes.size()), text.data(), static_cast<int>(text.size()))));
  return text;
}

class SerialRepliesTest : public OwnedSerialFixture {
 protected:
  void SetUp() override { MustOpen(); }

  // Asks a question that is answered so, in one piece.
  void Ask(const std::string& answer) {
    wire_.OnBytes("?\r").Reply(answer);
    ASSERT_EQ(WriteLine(L"?"), S_OK);
  }
  // The reply; a failure fails the test.
  std::wstring Reply() {
    EXPECT_EQ(RefusalOf(ReadLine()), Refusal{});
    EXPECT_TRUE(Answer());
    return reply_.str();
  }
  void SetRaw() {
    for (const auto flag : {&_CKespCOMPort3::put_TerminateOnLF, &_CKespCOMPort3::put_StripCRLF,
                            &_CKespCOMPort3::put_CheckNonAscii}) {
      EXPECT_EQ(Write(port_, flag, VARIANT_FALSE), S_OK);
    }
  }
};

INSTANTIATE_TEST_SUITE_P(Transports, SerialRepliesTest,
                         testing::Values(TransportOwner::kClient, TransportOwner::kFacade), OwnerName);

TEST_P(SerialRepliesTest, LineFeed_EndsAtOnce) {
  SetTimeOut(kEndlessTimeOut);
  Ask("12.345\r\n");
  EXPECT_EQ(Reply(), L"12.345");
}

TEST_P(SerialRepliesTest, CarriageReturnAlone_EndsAfterTheTimeOut) {
  const DWORD start = GetTickCount();
  Ask("  12.345\r");
  EXPECT_EQ(Reply(), L"12.345");
  EXPECT_GE(GetTickCount() - start, static_cast<DWORD>(kSerialTimeOut));
}

TEST_P(SerialRepliesTest, RedirectorOrRadioModem_CarriageReturnEndsAtOnce) {
  SetTimeOut(kEndlessTimeOut);
  Ask(" 12.345 \r");
  for (const auto flag : {&_CKespCOMPort3::put_UseRedirector, &_CKespCOMPort3::put_UseRFModem}) {
    EXPECT_EQ(Write(port_, flag, VARIANT_TRUE), S_OK);
    EXPECT_EQ(Reply(), L"12.345");
    EXPECT_EQ(Write(port_, flag, VARIANT_FALSE), S_OK);
    EXPECT_EQ(WriteLine(L"?"), S_OK);
  }
}

TEST_P(SerialRepliesTest, Raw_ReplyEndsInSilenceAndIsLeftAsItCame) {
  SetRaw();
  SetTimeOut(kEndlessTimeOut);
  const std::string bytes = " a\r\n\xFF\r ";
  const DWORD start = GetTickCount();
  Ask(bytes);
  EXPECT_EQ(Reply(), AnsiText(bytes));
  EXPECT_GE(GetTickCount() - start, 100U);
}

TEST_P(SerialRepliesTest, LineEndsInside_BecomeBlanks) {
  Ask("A\rB\n");
  EXPECT_EQ(Reply(), L"A B");
}

TEST_P(SerialRepliesTest, StripOff_LineEndsStay) {
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_StripCRLF, VARIANT_FALSE), S_OK);
  Ask(" A\rB\r\n ");
  EXPECT_EQ(Reply(), L"A\rB\r\n");
}

TEST_P(SerialRepliesTest, HighestValidCode_Passes) {
  Ask("x\x80\r\n");
  EXPECT_EQ(Reply(), AnsiText("x\x80"));
}

TEST_P(SerialRepliesTest, FirstInvalidCode_IsRefusedAndTheReplyLeftAsItCame) {
  Ask("ab\x81\xFF\r\n");
  EXPECT_EQ(RefusalOf(ReadLine()),
            (Refusal{ERR_INVALID_CHARACTERS, L"CKespCOMPort3 - ReadLine()",
                     L"Invalid characters received on COM" + SerialPortText() + L"."}));
  EXPECT_FALSE(Answer());
  EXPECT_EQ(reply_.str(), AnsiText("ab\x81\xFF\r\n"));
}

TEST_P(SerialRepliesTest, CheckOff_EveryCodePasses) {
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_CheckNonAscii, VARIANT_FALSE), S_OK);
  Ask("ab\x81\xFF\r\n");
  EXPECT_EQ(Reply(), AnsiText("ab\x81\xFF"));
}

TEST_P(SerialRepliesTest, Silence_IsTimeOut) {
  const DWORD start = GetTickCount();
  EXPECT_EQ(RefusalOf(ReadLine()), (Refusal{ERR_READ_TIMEOUT, L"CKespCOMPort3 - ReadLine()",
                                            L"Timeout waiting for instrument to respond to command on COM" +
                                                SerialPortText() + L"."}));
  EXPECT_GE(GetTickCount() - start, static_cast<DWORD>(kSerialTimeOut));
  EXPECT_FALSE(Answer());
  EXPECT_EQ(reply_.str(), L"");
}

TEST_P(SerialRepliesTest, CharactersWithoutLineEnd_AreTimeOutAndLeft) {
  Ask("12.3");
  EXPECT_EQ(ReadLine(), ERR_READ_TIMEOUT);
  EXPECT_EQ(reply_.str(), L"12.3");
}

TEST_P(SerialRepliesTest, ReplyReplacesWhatTheArgumentHeld) {
  *reply_.in_out() = SysAllocString(L"something longer than the reply, left from an earlier read");
  Ask("t\n");
  EXPECT_EQ(Reply(), L"t");
  EXPECT_EQ(ReadLine(), ERR_READ_TIMEOUT);
  EXPECT_EQ(reply_.str(), L"") << "a read that failed leaves nothing of it either";
}

TEST_P(SerialRepliesTest, ReplyInPieces_IsPutTogether) {
  SetTimeOut(kEndlessTimeOut);
  wire_.OnBytes("?\r")
      .Reply("12")
      .Reply(".34")
      .After(Milliseconds(40))
      .Reply("5\r")
      .After(Milliseconds(40))
      .Reply("\n")
      .After(Milliseconds(40));
  EXPECT_EQ(WriteLine(L"?"), S_OK);
  EXPECT_EQ(Reply(), L"12.345");
}

// All pieces together take longer than the time-out, each of them less.
TEST_P(SerialRepliesTest, LineFeedDoesNotEnd_EveryPieceRestartsTheTimeOut) {
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_TerminateOnLF, VARIANT_FALSE), S_OK);
  SetTimeOut(700);
  wire_.OnBytes("?\r")
      .Reply("a\n")
      .Reply("b\n")
      .After(Milliseconds(400))
      .Reply("c\n")
      .After(Milliseconds(400));
  EXPECT_EQ(WriteLine(L"?"), S_OK);
  EXPECT_EQ(Reply(), L"a b c");
}

}  // namespace
}  // namespace kesp::clients
