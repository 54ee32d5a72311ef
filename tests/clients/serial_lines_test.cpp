// What the serial transport writes for each kind of controller, byte by byte.
#include <gtest/gtest.h>

#include "tests/clients/serial_fixture.h"

namespace kesp::clients {
namespace {

struct WrittenLine {
  int style;  // of EKespControllerStyle3
  const wchar_t* cmd;
  const wchar_t* address;
  const wchar_t* value;
  std::string bytes;
};

const std::vector<WrittenLine>& WrittenLines() {
  static const std::vector<WrittenLine> lines = {
      // Blanks before the carriage return stay.
      {CS_KESP, L"*IDN?", L"", L"", "*IDN?\r"},
      {CS_KESP, L"  *IDN?  ", L"", L"", "*IDN?  \r"},
      {CS_KESP, L"", L"", L"", "\r"},
      {CS_KESP, L"t", L"01", L"100", "t\r"},
      {CS_KESP, L"a\r\nb\t", L"", L"", "a\r\nb\t\r"},
      // A style that writes nothing, and one without a name, which writes nothing either.
      {CS_PRECIDIA, L"*IDN?", L"01", L"1", ""},
      {17, L"*IDN?", L"01", L"1", ""},
      // Commands go out as they are, trimmed.
      {CS_MAXSTREAM, L"+++", L"", L"", "+++"},
      {CS_MAXSTREAM, L" ATDL1A\r ", L"", L"", "ATDL1A\r"},
      {CS_MAXSTREAM, L"", L"", L"", ""},
      // The addressed style: a read request, and a write request with its block check.
      {CS_OMEGA, L"PV", L"01", L"",
       "\x04"
       "0011PV\x05\r"},
      {CS_OMEGA, L"PV", L"5", L"",
       "\x04"
       "55PV\x05\r"},
      {CS_OMEGA, L"PV", L"123", L"",
       "\x04"
       "1122PV\x05\r"},
      {CS_OMEGA, L"SL", L"01", L"100",
       "\x04"
       "0011\x02SL100\x03-\r"},
      {CS_OMEGA, L"SL", L"12", L" 2 ",
       "\x04"
       "1122\x02SL 2 \x03.\r"},
  };
  return lines;
}

class SerialLinesTest : public OwnedSerialFixture {};
INSTANTIATE_TEST_SUITE_P(Transports, SerialLinesTest,
                         testing::Values(TransportOwner::kClient, TransportOwner::kFacade), OwnerName);

TEST_P(SerialLinesTest, EveryStyle_WritesItsFrameAndNothingElse) {
  MustOpen();
  for (const WrittenLine& line : WrittenLines()) {
    ASSERT_EQ(
        Write(port_, &_CKespCOMPort3::put_ControllerStyle, static_cast<EKespControllerStyle3>(line.style)),
        S_OK);
    ASSERT_EQ(RefusalOf(WriteLine(line.cmd, line.address, line.value)), Refusal{});
    EXPECT_TRUE(Answer());
    EXPECT_EQ(wire_.Receive(line.bytes.size()), line.bytes) << testing::PrintToString(line.cmd);
  }
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "");
}

TEST_P(SerialLinesTest, EveryCharacterOfTheCodePage_IsOneByte) {
  MustOpen();
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  std::wstring cmd(bytes.size(), L'\0');
  ASSERT_EQ(MultiByteToWideChar(CP_ACP, 0, bytes.data(), 256, cmd.data(), 256), 256);
  EXPECT_EQ(WriteLine(cmd), S_OK);
  EXPECT_EQ(wire_.Receive(257), bytes + "\r");
}

TEST_P(SerialLinesTest, AddressMissing_IsRefusedAndNothingWritten) {
  MustOpen();
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_ControllerStyle, CS_OMEGA), S_OK);
  EXPECT_EQ(RefusalOf(WriteLine(L"PV", L"", L"1", VARIANT_TRUE)),
            (Refusal{COMPORT3_ERR_ADDRESS_NOT_SPECIFIED, L"CKespCOMPort3 - WriteLine()",
                     L"Omega controller address not specified."}));
  EXPECT_FALSE(Answer());
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "");
}

// The tick counter of the library and of the test is the same one, so that this holds on a slow machine.
TEST_P(SerialLinesTest, CarriageReturnBefore_GoesFiftyMillisecondsAhead) {
  MustOpen();
  const DWORD start = GetTickCount();
  EXPECT_EQ(WriteLine(L"*IDN?", L"", L"", VARIANT_TRUE), S_OK);
  EXPECT_EQ(wire_.Receive(1), "\r");
  EXPECT_EQ(wire_.Receive(6), "*IDN?\r");
  EXPECT_GE(GetTickCount() - start, 50U);
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "");
}

// What the instrument makes of the lone carriage return is not taken for the reply.
class CarriageReturnBeforeTest : public SerialFixture {
 protected:
  CarriageReturnBeforeTest() { self_ = this; }
  ~CarriageReturnBeforeTest() override { self_ = nullptr; }

  // The transport works off messages while it waits, which is when the instrument answers.
  void AnswerToTheCarriageReturn(DWORD on_its_way) {
    on_its_way_ = on_its_way;
    SetTimer(nullptr, 0, USER_TIMER_MINIMUM, PlayInstrument);
  }

  static void CALLBACK PlayInstrument(HWND, UINT, UINT_PTR timer, DWORD) {
    KillTimer(nullptr, timer);
    EXPECT_EQ(self_->wire_.Receive(1), "\r");
    self_->wire_.Send("junk\r\n");
    Sleep(self_->on_its_way_);
    ++self_->answers_;
  }

  static inline CarriageReturnBeforeTest* self_ = nullptr;
  DWORD on_its_way_ = 0;
  int answers_ = 0;
};

// Nobody can tell when the answer has arrived, so it is given more and more time.
TEST_F(CarriageReturnBeforeTest, ItsAnswerIsDiscarded) {
  MustOpen();
  wire_.OnBytes("*IDN?\r").Reply("KESP\r\n");
  int tries = 0;
  for (DWORD on_its_way = 50; on_its_way < 2000 && reply_.str() != L"KESP"; on_its_way *= 2) {
    AnswerToTheCarriageReturn(on_its_way);
    EXPECT_EQ(WriteLine(L"*IDN?", L"", L"", VARIANT_TRUE), S_OK);
    EXPECT_EQ(answers_, ++tries);
    EXPECT_EQ(RefusalOf(ReadLine()), Refusal{});
    EXPECT_EQ(wire_.Receive(6), "*IDN?\r");
  }
  EXPECT_EQ(reply_.str(), L"KESP");
}

}  // namespace
}  // namespace kesp::clients
