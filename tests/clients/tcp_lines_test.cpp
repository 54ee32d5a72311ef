// Lines over a real connection: bytes in and out, the waits for a reply, and what is refused.
#include <gtest/gtest.h>

#include "tests/clients/tcp_fixture.h"

namespace kesp::clients {
namespace {

class TcpLinesTest : public TcpFixture {
 protected:
  // How long the call took. Upper bounds leave three seconds for a busy machine.
  static DWORD TimeOf(const std::function<void()>& call) {
    const DWORD start = GetTickCount();
    call();
    return GetTickCount() - start;
  }
};

TEST_F(TcpLinesTest, WithoutConnection_WritingAndReadingAreRefused) {
  const auto refused_by = [](const wchar_t* source) {
    return Refusal{ERR_NOT_INITIALIZED, source, L"Socket not initialized"};
  };
  EXPECT_EQ(RefusalOf(WriteLine(L"t")), refused_by(L"[CKespTCP - WriteLine()]"));
  EXPECT_EQ(RefusalOf(ReadLine()), refused_by(L"[CKespTCP - ReadLine()]"));
  EXPECT_EQ(RefusalOf(ReadLineBinary()), refused_by(L"[CKespTCP - ReadLineBinary()]"));
}

TEST_F(TcpLinesTest, KeptOpen_ManyExchanges) {
  ASSERT_TRUE(Initialize());
  for (int i = 0; i < 50; ++i) {
    const std::wstring cmd = L"ECHO " + std::to_wstring(i);
    EXPECT_EQ(Exchange(cmd), cmd);
  }
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

TEST_F(TcpLinesTest, NoText_IsALoneCarriageReturn) {
  ASSERT_TRUE(Initialize());
  EXPECT_EQ(Judge([&](VARIANT_BOOL* answer) { return tcp_->WriteLine(nullptr, answer); }), S_OK);
  EXPECT_EQ(Exchange(L"*IDN?"), kIdentity);
}

TEST_F(TcpLinesTest, LongCommandAndReply_ArriveWhole) {
  SetTimeOut(20000);
  ASSERT_TRUE(Initialize());
  const std::wstring cmd = L"ECHO " + std::wstring(60000, L'x');
  EXPECT_EQ(Exchange(cmd), cmd);
  const std::string bytes = ExchangeBytes(L"HUGE?");
  ASSERT_EQ(bytes.size(), 16777217u);
  EXPECT_EQ(bytes.substr(0, 16), "0123456789ABCDEF");
  EXPECT_EQ(bytes.substr(16777200), "0123456789ABCDEF\r");
  EXPECT_EQ(Exchange(L"HUGE?").size(), 16777216u);
}

TEST_F(TcpLinesTest, NoEnd_TextEndsWithTheFirstPieceAndBytesAfterTheQuietGap) {
  Write(tcp_, &_CKespTCP::put_TerminateOnEOS, VARIANT_FALSE);
  ASSERT_TRUE(Initialize());
  WriteLine(L"SPLIT?");
  EXPECT_GE(TimeOf([&] { EXPECT_EQ(ReadLineBinary(500), S_OK); }), 500u);
  EXPECT_EQ(BytesOf(*bytes_.get()), "SPLIT 1.0,2.0,3.0\r");
  const std::wstring first = Exchange(L"SPLIT?");
  EXPECT_FALSE(first.empty());
  EXPECT_LT(first.size(), 17u);
}

TEST_F(TcpLinesTest, TypedArrayVariable_IsReplacedInPlace) {
  ASSERT_TRUE(Initialize());
  SAFEARRAY* array = NewByteArray("old contents");
  VARIANT reference;
  VariantInit(&reference);
  V_VT(&reference) = VT_BYREF | VT_ARRAY | VT_UI1;
  V_ARRAYREF(&reference) = &array;
  WriteLine(L"ECHO z");
  EXPECT_EQ(Judge([&](VARIANT_BOOL* answer) { return tcp_->ReadLineBinary(&reference, 100, answer); }), S_OK);
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
  WriteLine(L"ECHO z");
  EXPECT_EQ(
      RefusalOf(Judge([&](VARIANT_BOOL* answer) { return tcp_->ReadLineBinary(&reference, 100, answer); })),
      (Refusal{
          ControlError(13), L"KespCommObj",
          L"Type mismatch (the reply is an array of bytes; pass a variable of that type, or a Variant)"}));
  EXPECT_EQ(number, 7);
  EXPECT_EQ(ReadLineBinary(), S_OK);
  EXPECT_EQ(BytesOf(*bytes_.get()), "ECHO z\r");
}

TEST_F(TcpLinesTest, Silent_EndsAfterThreeToFourSeconds) {
  ASSERT_TRUE(Initialize());
  WriteLine(L"SILENT?");
  const DWORD elapsed = TimeOf([&] {
    EXPECT_EQ(RefusalOf(ReadLine()), (Refusal{ERR_TIMEOUT, L"[CKespTCP - ReadLine()]", L"Timeout"}));
  });
  EXPECT_GE(elapsed, 2990u);
  EXPECT_LT(elapsed, 7000u);
}

TEST_F(TcpLinesTest, FloodWithoutEnd_EndsInTime) {
  ASSERT_TRUE(Initialize());
  Write(tcp_, &_CKespTCP::put_EOSChar, L"!");
  SetTimeOut(1000);
  WriteLine(L"FLOOD?");
  EXPECT_LT(TimeOf([&] {
              const HRESULT result = ReadLine();
              // On a fast machine the flood reaches the limit of what may wait before the time is up.
              EXPECT_TRUE(result == ERR_TIMEOUT || result == ERR_GET_DATA) << std::hex << result;
            }),
            5000u);
  EXPECT_LT(TimeOf([&] { EXPECT_TRUE(Uninitialize()); }), 3000u);
  ASSERT_TRUE(Initialize());
  Write(tcp_, &_CKespTCP::put_EOSChar, L"\r");
  EXPECT_EQ(Exchange(L"*IDN?"), kIdentity);
}

TEST_F(TcpLinesTest, PeerClosesOrResets_ReadEndsInTime) {
  SetTimeOut(1000);
  for (const wchar_t* cmd : {L"CLOSE?", L"RESET?", L"PARTCLOSE?"}) {
    ASSERT_TRUE(Initialize());
    WriteLine(cmd);
    EXPECT_LT(TimeOf([&] {
                const HRESULT result = ReadLine();
                EXPECT_TRUE(result == ERR_TIMEOUT || result == ERR_NO_CONNECTION) << std::hex << result;
              }),
              5000u);
    EXPECT_NE(Read(tcp_, &_CKespTCP::get_State), sckConnected);
    EXPECT_EQ(WriteLine(L"t"), ERR_NO_CONNECTION);
    EXPECT_TRUE(Uninitialize());
  }
}

}  // namespace
}  // namespace kesp::clients
