// Replies of any bytes, and downloads, over the serial transport.
#include <gtest/gtest.h>

#include "tests/clients/late_object.h"
#include "tests/clients/serial_fixture.h"

namespace kesp::clients {
namespace {

std::string AllBytes() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  return bytes;
}

class SerialBinaryTest : public SerialEventsFixture {
 protected:
  void SetUp() override { MustOpen(); }
  void UseBinary() { EXPECT_EQ(port_->SetInputMode(imBinary), S_OK); }
};

TEST_F(SerialBinaryTest, ThreePieces_OneArrayAndTheTotalAtEachPiece) {
  UseBinary();
  std::string bytes;
  for (int i = 0; i < 300; ++i) bytes += static_cast<char>(i % 251);
  wire_.OnBytes("?\r")
      .Reply(bytes.substr(0, 100))
      .Reply(bytes.substr(100, 100))
      .After(Milliseconds(150))
      .Reply(bytes.substr(200))
      .After(Milliseconds(150));
  SetTimeOut(5000);
  const DWORD start = GetTickCount();
  EXPECT_EQ(WriteLine(L"?"), S_OK);
  recorder_->journal.clear();
  EXPECT_EQ(RefusalOf(ReadLineBinary(500)), Refusal{});
  EXPECT_TRUE(Answer());
  EXPECT_GE(GetTickCount() - start, 300U + 500U) << "the silence counts from the last piece";
  EXPECT_EQ(BytesOf(*bytes_.get()), bytes);
  EXPECT_EQ(journal(), (Lines{Entry(L"ReadBegin"), Entry(L"ReadUpdate", L"100"), Entry(L"ReadUpdate", L"200"),
                              Entry(L"ReadUpdate", L"300")}));
}

TEST_F(SerialBinaryTest, EveryByteValue_Passes) {
  UseBinary();
  wire_.Send(AllBytes());
  EXPECT_EQ(RefusalOf(ReadLineBinary()), Refusal{});
  EXPECT_EQ(BytesOf(*bytes_.get()), AllBytes());
}

TEST_F(SerialBinaryTest, Text_IsReturnedUnchangedAndCountedAsNothing) {
  wire_.Send(" a\r\n\x01 ");
  EXPECT_EQ(RefusalOf(ReadLineBinary()), Refusal{});
  EXPECT_EQ(bytes_.text(), L" a\r\n\x01 ");
  EXPECT_EQ(journal(), (Lines{Entry(L"ReadBegin"), Entry(L"ReadUpdate", L"0")}));
}

TEST_F(SerialBinaryTest, Text_FollowsTheTextThatIsThereAndReplacesAnythingElse) {
  bytes_ = Value(L"earlier ");
  wire_.Send("later");
  EXPECT_EQ(ReadLineBinary(), S_OK);
  EXPECT_EQ(bytes_.text(), L"earlier later");
  bytes_ = Value(5);
  wire_.Send("text");
  EXPECT_EQ(ReadLineBinary(), S_OK);
  EXPECT_EQ(bytes_.text(), L"text");
}

TEST_F(SerialBinaryTest, Silence_IsTimeOutAndLeavesTheVariable) {
  for (const EInputMode mode : {imText, imBinary}) {
    EXPECT_EQ(port_->SetInputMode(mode), S_OK);
    bytes_ = Value(L"before");
    EXPECT_EQ(
        RefusalOf(ReadLineBinary()),
        (Refusal{ERR_READ_TIMEOUT, L"CKespCOMPort3 - ReadLineBinary()",
                 L"Timeout waiting for instrument to respond to command on COM" + SerialPortText() + L"."}));
    EXPECT_FALSE(Answer());
    EXPECT_EQ(bytes_.text(), L"before");
  }
}

TEST_F(SerialBinaryTest, InputModeWithoutName_ChangesNothing) {
  UseBinary();
  for (const int mode : {2, -1}) EXPECT_EQ(port_->SetInputMode(static_cast<EInputMode>(mode)), S_OK);
  wire_.Send("x");
  EXPECT_EQ(ReadLineBinary(), S_OK);
  EXPECT_EQ(BytesOf(*bytes_.get()), "x");
}

TEST_F(SerialBinaryTest, LateBound_EveryKindOfVariableTakesTheBytes) {
  UseBinary();
  ComPtr<IDispatch> dispatch;
  ASSERT_EQ(port_.As(&dispatch), S_OK);
  const LateObject late(dispatch);
  for (const Value& before : {Value(), Value(5), Value(L"text")}) {
    Value result = before;
    wire_.Send("ab");
    EXPECT_TRUE(late.Call(L"ReadLineBinary", {Variable(result)}).IsTrue());
    EXPECT_EQ(BytesOf(*result.get()), "ab");
  }
}

// Ten times what the line's own buffer holds; a download looks at it twice a second.
TEST_F(SerialBinaryTest, LongDownload_ArrivesCompleteAndInOrder) {
  std::string data;
  for (int line = 0; data.size() < 40000; ++line) data += std::to_string(line) + ",12.345\r\n";
  std::thread instrument([&] { wire_.Send(data); });
  SetTimeOut(800);
  EXPECT_EQ(RefusalOf(Download()), Refusal{});
  instrument.join();
  EXPECT_TRUE(Answer());
  EXPECT_TRUE(reply_.str() == std::wstring(data.begin(), data.end())) << reply_.str().size();
  EXPECT_EQ(journal().front(), Entry(L"DownloadBegin"));
  EXPECT_EQ(journal()[journal().size() - 2], L"DownloadUpdate(" + std::to_wstring(data.size()) + L",&False)");
  EXPECT_EQ(journal().back(), L"DownloadEnd()");
}

// QueryBinary over the transport of a communication object.
class SerialQueryBinaryTest : public SerialFixture {
 protected:
  SerialQueryBinaryTest() {
    port_ = SerialTransport(comm_);
    UseSerialLine(port_);
    EXPECT_EQ(port_->SetInputMode(imBinary), S_OK);
    wire_.OnBytes("?\r").Reply(AllBytes());
  }

  ComPtr<_CKespCommObj> comm_ = Create<_CKespCommObj>(__uuidof(CKespCommObj));
};

TEST_F(SerialQueryBinaryTest, EmptyVariable) {
  EXPECT_EQ(comm_->QueryBinary(bytes_.get(), Text(L"?").get(), nullptr, nullptr, &answer_), S_OK);
  EXPECT_TRUE(Answer());
  EXPECT_EQ(BytesOf(*bytes_.get()), AllBytes());
}

TEST_F(SerialQueryBinaryTest, VariableOfAScript) {
  ComPtr<IDispatch> dispatch;
  ASSERT_EQ(comm_.As(&dispatch), S_OK);
  Value result(L"before");
  const Value cmd(L"?");
  EXPECT_TRUE(LateObject(dispatch).Call(L"QueryBinary", {Variable(result), Plain(cmd)}).IsTrue());
  EXPECT_EQ(BytesOf(*result.get()), AllBytes());
}

TEST_F(SerialQueryBinaryTest, VariableThatRefersToAnother) {
  Value result;
  VARIANT reference = Variable(result);
  EXPECT_EQ(comm_->QueryBinary(&reference, Text(L"?").get(), nullptr, nullptr, &answer_), S_OK);
  EXPECT_TRUE(Answer());
  EXPECT_EQ(BytesOf(*result.get()), AllBytes());
}

TEST_F(SerialQueryBinaryTest, ArrayOfBytes) {
  SAFEARRAY* bytes = NewByteArray("before");
  VARIANT reference = Reference(&bytes);
  EXPECT_EQ(comm_->QueryBinary(&reference, Text(L"?").get(), nullptr, nullptr, &answer_), S_OK);
  EXPECT_TRUE(Answer());
  V_VT(bytes_.get()) = VT_ARRAY | VT_UI1;
  V_ARRAY(bytes_.get()) = bytes;
  EXPECT_EQ(BytesOf(*bytes_.get()), AllBytes());
}

TEST_F(SerialQueryBinaryTest, TypedVariableOfTheOtherKind_IsATypeMismatchBeforeAnythingIsSent) {
  BSTR text = nullptr;
  SAFEARRAY* bytes = NewByteArray("before");
  const std::pair<EInputMode, VARIANT> pairs[] = {{imBinary, Reference(&text)}, {imText, Reference(&bytes)}};
  for (auto [mode, variable] : pairs) {
    EXPECT_EQ(port_->SetInputMode(mode), S_OK);
    EXPECT_EQ(RefusalOf(comm_->QueryBinary(&variable, Text(L"?").get(), nullptr, nullptr, &answer_)).result,
              ControlError(13));
    EXPECT_EQ(RefusalOf(port_->ReadLineBinary(&variable, 100, &answer_)).result, ControlError(13));
  }
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "");
  SafeArrayDestroy(bytes);
}

}  // namespace
}  // namespace kesp::clients
