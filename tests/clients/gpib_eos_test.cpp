// EOSChar in its two readings: the number that ends a command, the character that ends a read.
#include "tests/clients/gpib_fixture.h"

namespace kesp::clients {
namespace {

const Refusal kNoCharacter{ControlError(5), kOpeningSource,
                           L"Invalid procedure call or argument (EOSChar is empty, so no character can end a "
                           L"read; set it, or set SetEOS to False)"};

// What WriteLine raises for a text that is no number.
Refusal NoNumber(const std::wstring& text) {
  const std::wstring is = text.empty() ? L"is empty" : L"is \"" + text + L"\"";
  return {ControlError(13), kWritingSource,
          L"Type mismatch (EOSChar " + is + L"; it must hold the code of a character, such as 10)"};
}

class GpibEosTest : public GpibStage {};

GPIB_TEST(GpibEosTest, Ten_EndsACommandWithALineFeedAndAReadAtOne) {
  EXPECT_EQ(ieee_.Initialize(), kDone);
  EXPECT_EQ(ieee_.Exchange(L"MODEL?"), L"KESP,71");
  EXPECT_EQ(ieee_.ReadLine(), kDone);
  EXPECT_EQ(ieee_.reply.str(), L"00\n") << "the rest of the reply";
  EXPECT_EQ(driver_.Calls(),
            (CallLines{"ibdev(0,5,0,12,1,0)", "ibclr(1)", "ibeos(1,1073)", R"(ibwrt(1,"MODEL?\n",7))",
                       "ibrd(1,[50 blanks],50)", "ibrd(1,[50 blanks],50)"}));
}

GPIB_TEST(GpibEosTest, SetEosFalse_ReadEndsWithTheReply) {
  ieee_.SetEndsReads(false);
  EXPECT_EQ(ieee_.Converse(L"MODEL?"), L"KESP,7100\n");
}

GPIB_TEST(GpibEosTest, Codes_InBothReadings) {
  struct Example {
    const wchar_t* text;
    const char* mode;     // 1024 and the first character
    const char* written;  // the number
  };
  for (const Example& example :
       {Example{L"13", "1073", R"(t\r)"}, Example{L"65", "1078", "tA"}, Example{L"0", "1072", R"(t\x00)"},
        Example{L"255", "1074", R"(t\xFF)"}, Example{L"0010", "1072", R"(t\n)"},
        Example{L" 9 ", "1056", R"(t\t)"}, Example{L"49", "1076", "t1"}}) {
    ieee_.SetEos(example.text);
    EXPECT_EQ(ieee_.Initialize(), kDone);
    EXPECT_EQ(ieee_.WriteLine(L"t"), kDone);
    EXPECT_EQ(driver_.LastCall("ibeos"), std::string("ibeos(1,") + example.mode + ")");
    EXPECT_EQ(driver_.LastCall("ibwrt"), std::string("ibwrt(1,\"") + example.written + "\",2)");
  }
}

// A text may be a good end of reads and no code of a character, for a device of which only replies are read.
GPIB_TEST(GpibEosTest, Letters_EndReadsButNoCommand) {
  struct Example {
    const wchar_t* text;
    const char* mode;
  };
  CallLines expected;
  for (const Example& example :
       {Example{L"abc", "1121"}, Example{L"\xE9", "1257"}, Example{L"\x4E2D", "1087"},
        Example{L"1.0", "1073"}, Example{L"-1", "1069"}, Example{L"+10", "1067"}, Example{L"0x0A", "1072"},
        Example{L"1 0", "1073"}, Example{L" ", "1056"}, Example{L"\n", "1034"}}) {
    ieee_.SetEos(example.text);
    EXPECT_EQ(ieee_.Initialize(), kDone);
    EXPECT_EQ(ieee_.WriteLine(L"t"), NoNumber(example.text));
    expected.push_back(std::string("ibeos(1,") + example.mode + ")");
  }
  EXPECT_EQ(driver_.Calls("ibeos"), expected);
  EXPECT_EQ(driver_.Calls("ibwrt"), CallLines{});
}

GPIB_TEST(GpibEosTest, NumberAboveAllCharacters_IsRefusedBeforeAnythingIsSent) {
  EXPECT_EQ(ieee_.Initialize(), kDone);
  for (const wchar_t* text : {L"256", L"1000", L"4294967306", L"99999999999999999999"}) {
    ieee_.SetEos(text);
    EXPECT_EQ(ieee_.WriteLine(L"t"),
              (Refusal{ControlError(5), kWritingSource,
                       L"Invalid procedure call or argument (EOSChar is \"" + std::wstring(text) +
                           L"\"; codes of characters end at 255)"}));
  }
  EXPECT_EQ(driver_.Calls("ibwrt"), CallLines{});
}

GPIB_TEST(GpibEosTest, Empty_InitializeIsRefusedAndLeavesNothingOpen) {
  ieee_.SetEos(L"");
  EXPECT_EQ(ieee_.Initialize(), kNoCharacter);
  EXPECT_EQ(driver_.Calls(), (CallLines{"ibdev(0,5,0,12,1,0)", "ibclr(1)", "ibonl(1,0)"}));
  EXPECT_EQ(driver_.OpenDescriptors(), 0);
  EXPECT_EQ(ieee_.Uninitialize(), kDone) << "no device counts as open";
  ieee_.SetEos(L"10");
  EXPECT_EQ(ieee_.Converse(L"*IDN?"), L"KESP,GP488,SIM48805,2.0\n");
}

GPIB_TEST(GpibEosTest, Empty_DeviceThatWasOpenIsClosed) {
  EXPECT_EQ(ieee_.Initialize(), kDone);
  ieee_.SetEos(L"");
  EXPECT_EQ(ieee_.Initialize(), kNoCharacter);
  EXPECT_EQ(driver_.OpenDescriptors(), 0) << driver_.RecordText();
}

GPIB_TEST(GpibEosTest, EmptyWithSetEosFalse_OpensButWritesNothing) {
  ieee_.SetEos(L"");
  ieee_.SetEndsReads(false);
  EXPECT_EQ(ieee_.Initialize(), kDone);
  EXPECT_EQ(ieee_.WriteLine(L"t"), NoNumber(L""));
  EXPECT_EQ(driver_.Calls("ibwrt"), CallLines{});
}

}  // namespace
}  // namespace kesp::clients
