// Lines over a real connection: bytes in and out, ends of replies, and what is refused.
#include <gtest/gtest.h>

#include "tests/clients/tcp_fixture.h"

namespace kesp::clients {
namespace {

class TcpLinesTest : public TcpFixture {};

TEST_F(TcpLinesTest, WithoutConnection_WritingAndReadingAreRefused) {
  EXPECT_EQ(RefusalOf(WriteLine(L"t")),
            (Refusal{ERR_NOT_INITIALIZED, L"[CKespTCP - WriteLine()]", L"Socket not initialized"}));
  EXPECT_EQ(RefusalOf(ReadLine()),
            (Refusal{ERR_NOT_INITIALIZED, L"[CKespTCP - ReadLine()]", L"Socket not initialized"}));
  EXPECT_EQ(RefusalOf(ReadLineBinary()),
            (Refusal{ERR_NOT_INITIALIZED, L"[CKespTCP - ReadLineBinary()]", L"Socket not initialized"}));
}

TEST_F(TcpLinesTest, InvalidTarget_IsRefusedBeforeAnythingIsSent) {
  const auto tcp = Create<_CKespTCP>(__uuidof(CKespTCP));
  VARIANT_BOOL answer = VARIANT_TRUE;
  EXPECT_EQ(RefusalOf(tcp->Initialize(&answer)),
            (Refusal{ERR_INVALID_IP_ADDRESS, L"[CKespTCP - Initialize()]", L"Invalid IP Address"}));
  Write(tcp, &_CKespTCP::put_IPAddress, L"127.0.0.1");
  EXPECT_EQ(RefusalOf(tcp->Initialize(&answer)),
            (Refusal{ERR_INVALID_PORT, L"[CKespTCP - Initialize()]", L"Invalid Port"}));
  EXPECT_EQ(Read(tcp, &_CKespTCP::get_State), sckClosed);
}

TEST_F(TcpLinesTest, HostName_IsResolved) {
  Write(tcp_, &_CKespTCP::put_IPAddress, L"localhost");
  ASSERT_TRUE(Initialize());
  EXPECT_EQ(Exchange(L"*IDN?"), L"KESP,TORTURE,SIM00666,1.0");
}

TEST_F(TcpLinesTest, KeptOpen_ManyExchanges) {
  ASSERT_TRUE(Initialize());
  for (int i = 0; i < 50; ++i) {
    const std::wstring cmd = L"ECHO " + std::to_wstring(i);
    EXPECT_EQ(Exchange(cmd), cmd);
  }
}

TEST_F(TcpLinesTest, MergedReplies_ComeInOneRead) {
  ASSERT_TRUE(Initialize());
  EXPECT_EQ(WriteLine(L"MERGED?"), S_OK);
  EXPECT_EQ(Exchange(L"ECHO x"), L"MERGED 1.0 ECHO x");
  EXPECT_EQ(Exchange(L"PAIR?"), L"PAIR 1.0 PAIR 2.0");
}

TEST_F(TcpLinesTest, StripOff_ReplyStaysAsItCame) {
  Write(tcp_, &_CKespTCP::put_StripCRLF, VARIANT_FALSE);
  Write(tcp_, &_CKespTCP::put_EOSChar, L"\n");
  ASSERT_TRUE(Initialize());
  EXPECT_EQ(Exchange(L"CRLF?").substr(0, 5), L"1.0\r\n");
}

TEST_F(TcpLinesTest, Code80Passes_Code81IsRefusedUnlessUnchecked) {
  ASSERT_TRUE(Initialize());
  EXPECT_EQ(Exchange(L"HIGH80?").size(), 7u);
  WriteLine(L"NONASCII?");
  EXPECT_EQ(ReadLine(), ERR_INVALID_CHARACTERS);
  Write(tcp_, &_CKespTCP::put_CheckNonAscii, VARIANT_FALSE);
  EXPECT_EQ(Exchange(L"NONASCII?").size(), 7u);
}

TEST_F(TcpLinesTest, EveryByte_ArrivesAsTextAndAsBytes) {
  std::string expected;
  for (int byte = 0; byte < 256; ++byte) {
    if (byte != '\r') expected += static_cast<char>(byte);
  }
  expected += '\r';
  Write(tcp_, &_CKespTCP::put_CheckNonAscii, VARIANT_FALSE);
  Write(tcp_, &_CKespTCP::put_StripCRLF, VARIANT_FALSE);
  ASSERT_TRUE(Initialize());
  EXPECT_EQ(ExchangeBytes(L"ALLBYTES?"), expected);
  // 256 characters, all different: what came in as text goes out again as the same bytes.
  const std::wstring text = Exchange(L"ALLBYTES?");
  ASSERT_EQ(text.size(), 256u);
  const std::wstring without_end = text.substr(0, 255);
  EXPECT_EQ(ExchangeBytes(L"ECHO" + without_end), "ECHO" + expected);
}

TEST_F(TcpLinesTest, EmbeddedNul_GoesThroughBothWays) {
  const std::wstring cmd(L"ECHO a\0b", 8);
  ASSERT_TRUE(Initialize());
  EXPECT_EQ(Exchange(cmd), cmd);
  EXPECT_EQ(ExchangeBytes(cmd), std::string("ECHO a\0b\r", 9));
}

TEST_F(TcpLinesTest, CharactersWithoutByte_BecomeQuestionMarks) {
  ASSERT_TRUE(Initialize());
  EXPECT_EQ(Exchange(L"ECHO \x03A9\x0416 x"), L"ECHO ?? x");
  EXPECT_EQ(Exchange(L"ECHO \xD83D\xDE00 x"), L"ECHO ? x") << "a surrogate pair is one character";
  EXPECT_EQ(Exchange(L"ECHO \x4E2D"), L"ECHO ?");
}

TEST_F(TcpLinesTest, EmptyCommand_IsALoneCarriageReturn) {
  ASSERT_TRUE(Initialize());
  VARIANT_BOOL answer = VARIANT_FALSE;
  EXPECT_EQ(tcp_->WriteLine(nullptr, &answer), S_OK);
  EXPECT_EQ(answer, VARIANT_TRUE);
  EXPECT_EQ(Exchange(L"*IDN?"), L"KESP,TORTURE,SIM00666,1.0");
}

TEST_F(TcpLinesTest, LongCommand_ArrivesWhole) {
  ASSERT_TRUE(Initialize());
  const std::wstring cmd = L"ECHO " + std::wstring(60000, L'x');
  EXPECT_EQ(Exchange(cmd), cmd);
}

TEST_F(TcpLinesTest, MegabyteReply_ArrivesWhole) {
  SetTimeOut(20000);
  ASSERT_TRUE(Initialize());
  const std::string bytes = ExchangeBytes(L"BIG?");
  ASSERT_EQ(bytes.size(), 1048577u);
  EXPECT_EQ(bytes.substr(0, 16), "0123456789ABCDEF");
  EXPECT_EQ(bytes.substr(1048560), "0123456789ABCDEF\r");
  EXPECT_EQ(Exchange(L"BIG?").size(), 1048576u);
}

TEST_F(TcpLinesTest, NoEnd_TextEndsWithTheFirstPiece) {
  Write(tcp_, &_CKespTCP::put_TerminateOnEOS, VARIANT_FALSE);
  ASSERT_TRUE(Initialize());
  const std::wstring first = Exchange(L"SPLIT?");
  EXPECT_FALSE(first.empty());
  EXPECT_LT(first.size(), 17u);
}

TEST_F(TcpLinesTest, NoEnd_BytesEndAfterTheQuietGap) {
  Write(tcp_, &_CKespTCP::put_TerminateOnEOS, VARIANT_FALSE);
  ASSERT_TRUE(Initialize());
  WriteLine(L"SPLIT?");
  const DWORD start = GetTickCount();
  EXPECT_EQ(ReadLineBinary(500), S_OK);
  EXPECT_EQ(BytesOf(*bytes_.get()), "SPLIT 1.0,2.0,3.0\r");
  EXPECT_GE(GetTickCount() - start, 500u);
}

TEST_F(TcpLinesTest, EndOfSeveralCharacters_IsLookedForAsAWhole) {
  Write(tcp_, &_CKespTCP::put_EOSChar, L"2.0\r");
  ASSERT_TRUE(Initialize());
  EXPECT_EQ(Exchange(L"PAIR?"), L"PAIR 1.0 PAIR 2.0");
}

TEST_F(TcpLinesTest, TypedArrayVariable_IsReplacedInPlace) {
  ASSERT_TRUE(Initialize());
  SAFEARRAY* array = NewByteArray("old contents");
  VARIANT reference;
  VariantInit(&reference);
  V_VT(&reference) = VT_BYREF | VT_ARRAY | VT_UI1;
  V_ARRAYREF(&reference) = &array;
  VARIANT_BOOL answer = VARIANT_FALSE;
  WriteLine(L"ECHO z");
  EXPECT_EQ(tcp_->ReadLineBinary(&reference, 100, &answer), S_OK);
  EXPECT_EQ(V_VT(&reference), VT_BYREF | VT_ARRAY | VT_UI1);
  Value owner;
  V_VT(owner.get()) = VT_ARRAY | VT_UI1;
  V_ARRAY(owner.get()) = array;
  EXPECT_EQ(BytesOf(*owner.get()), "ECHO z\r");
}

// A number cannot hold a reply: the client hears of it, and the reply stays for the next read.
TEST_F(TcpLinesTest, TypedVariableOfAnotherKind_IsATypeMismatch) {
  ASSERT_TRUE(Initialize());
  long number = 7;
  VARIANT reference;
  VariantInit(&reference);
  V_VT(&reference) = VT_BYREF | VT_I4;
  V_I4REF(&reference) = &number;
  VARIANT_BOOL answer = VARIANT_TRUE;
  WriteLine(L"ECHO z");
  EXPECT_EQ(RefusalOf(tcp_->ReadLineBinary(&reference, 100, &answer)),
            (Refusal{static_cast<HRESULT>(0x800A000D), L"KespCommObj", L"Type mismatch"}));
  EXPECT_EQ(number, 7);
  EXPECT_EQ(tcp_->ReadLineBinary(bytes_.get(), 100, &answer), S_OK);
  EXPECT_EQ(BytesOf(*bytes_.get()), "ECHO z\r");
}

}  // namespace
}  // namespace kesp::clients
