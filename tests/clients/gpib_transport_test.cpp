// The IEEE-488 transport over the DLL of a driver: a conversation, its settings, bytes and failures.
#include <chrono>

#include "tests/clients/gpib_fixture.h"
#include "tests/clients/temporary_file.h"

namespace kesp::clients {
namespace {

using std::chrono::milliseconds;

class GpibTransportTest : public GpibFixture {};

TEST_F(GpibTransportTest, Conversation_WholeRecordOfTheDriver) {
  Run(Bus(), [&](IeeeClient& ieee) {
    EXPECT_EQ(ieee.Converse(L"*IDN?"), kDone);
    EXPECT_EQ(ieee.reply.str(), kIdentity);
  });
  EXPECT_EQ(driver_.Record(),
            (CallLines{"1 RegisterGpibGlobalsForThread(4 cells) = 0",
                       "1 ibdev(0,5,0,12,1,0) = 1 sta 0100 err 0 cnt 0",
                       "1 ibclr(1) = 256 sta 0100 err 0 cnt 0", "1 ibeos(1,1073) = 256 sta 0100 err 0 cnt 0",
                       R"(1 ibwrt(1,"*IDN?\n",6) = 256 sta 0100 err 0 cnt 6)",
                       R"(1 ibrd(1,[50 blanks],50) = 8448 sta 2100 err 0 cnt 24 "KESP,GP488,SIM48805,2.0\n")",
                       "1 ibonl(1,0) = 256 sta 0100 err 0 cnt 0", "1 ibonl(0,0) = 256 sta 0100 err 0 cnt 0",
                       "1 UnregisterGpibGlobalsForThread() = 0"}));
}

TEST_F(GpibTransportTest, Settings_AreKeptAndReachTheDriverAndTheLog) {
  const TemporaryFile log;
  Run(Bus(), [&](IeeeClient& ieee) {
    ieee.Set(&_CKespIEEE::put_LogFilename, log.path().c_str());
    ieee.Set(&_CKespIEEE::put_CreateLogFile, VARIANT_TRUE);
    ieee.Set(&_CKespIEEE::put_ClearDevice, VARIANT_FALSE);
    ieee.Set(&_CKespIEEE::put_TimeOutSecs, to100s);
    ieee.Set(&_CKespIEEE::put_PrimaryAddress, 7);
    ieee.Set(&_CKespIEEE::put_SecondaryAddress, 9);
    ieee.Set(&_CKespIEEE::put_EOSChar, L"13");
    EXPECT_EQ(Read(ieee.object, &_CKespIEEE::get_ClearDevice), VARIANT_FALSE);
    EXPECT_EQ(Read(ieee.object, &_CKespIEEE::get_SetEOS), VARIANT_TRUE);
    EXPECT_EQ(Read(ieee.object, &_CKespIEEE::get_TimeOutSecs), to100s);
    EXPECT_EQ(Read(ieee.object, &_CKespIEEE::get_PrimaryAddress), 7);
    EXPECT_EQ(Read(ieee.object, &_CKespIEEE::get_SecondaryAddress), 9);
    EXPECT_EQ(Read(ieee.object, &_CKespIEEE::get_EOSChar), L"13");
    EXPECT_EQ(ieee.Converse(L"*IDN?"), kDone);
    EXPECT_EQ(ieee.reply.str(), L"KESP,GP488,SIM48807,2.0\n");
  });
  EXPECT_EQ(driver_.Calls(), (CallLines{"ibdev(0,7,9,15,1,0)", "ibeos(1,1073)", R"(ibwrt(1,"*IDN?\r",6))",
                                        "ibrd(1,[50 blanks],50)", "ibonl(1,0)", "ibonl(0,0)"}));
  EXPECT_EQ(log.Messages(),
            (Lines{L"Initialize()", L"Check Board Index...", L"Check Primary Address...",
                   L"Check Secondary Address...", L"Init Board...", L"InitializeIEEEBoard()...", L"ibdev()",
                   L"ibeos()", L"InitializeIEEEBoard() Done...", L"Initialize() Done..."}));
}

TEST_F(GpibTransportTest, Bytes_AreCharactersOfTheCodePageInBothDirections) {
  ASSERT_EQ(GetACP(), 1252U);
  Run(Bus(), [&](IeeeClient& ieee) {
    ieee.Set(&_CKespIEEE::put_SetEOS, VARIANT_FALSE);
    EXPECT_EQ(ieee.Converse(L"BYTES?"), kDone);
    EXPECT_EQ(driver_.Calls()[2], R"(ibwrt(1,"BYTES?\n",7))") << "SetEOS off: no ibeos before it";
    EXPECT_EQ(ieee.reply.str(), std::wstring(L"\0\x20AC\xE9\xFF\n", 5));
    EXPECT_EQ(ieee.Initialize(), kDone);
    EXPECT_EQ(ieee.WriteLine(std::wstring(L"\0\x20AC\xE9\x4E2D", 4)), kDone);
    EXPECT_EQ(driver_.Calls().back(), R"(ibwrt(1,"\x00\x80\xE9?\n",5))");
    EXPECT_EQ(ieee.object->WriteLine(nullptr, &ieee.answer), S_OK);
    EXPECT_EQ(driver_.Calls().back(), R"(ibwrt(1,"\n",1))");
  });
}

TEST_F(GpibTransportTest, DriverCallFails_ErrorNamesItAndTheNextConversationWorks) {
  struct Example {
    const char* function;
    HRESULT number;
    const wchar_t* source;
    const wchar_t* call;
  };
  for (const Example& example :
       {Example{"ibdev", ERR_IBDEV, kOpeningSource, L"ibdev()"},
        Example{"ibclr", ERR_IBCLR, kOpeningSource, L"ibclr()"},
        Example{"ibeos", ERR_IBEOS, kOpeningSource, L"ibeos()"},
        Example{"ibwrt", ERR_IBWRT, kWritingSource, L"ibwrt() with command '*IDN?' on device 1"},
        Example{"ibrd", ERR_IBRD, kReadingSource, L"ibrd() on device 1"},
        Example{"ibonl", ERR_IBONL, kOpeningSource, L"ibonl() for device"}}) {
    SCOPED_TRACE(example.function);
    Run(BusFailing(example.function, 8), [&](IeeeClient& ieee) {
      EXPECT_EQ(ieee.Converse(L"*IDN?"),
                (Refusal{example.number, example.source,
                         L"Error calling " + std::wstring(example.call) + L": Error: 8 - DMA Error"}));
      EXPECT_EQ(ieee.Converse(L"*IDN?"), kDone);
    });
    EXPECT_EQ(driver_.OpenDescriptors(), 0) << driver_.RecordText();
  }
}

TEST_F(GpibTransportTest, ReplyStopsShort_TimesOutWithWhatCame) {
  Run(Bus(), [&](IeeeClient& ieee) {
    ieee.Set(&_CKespIEEE::put_PrimaryAddress, 6);
    ieee.Set(&_CKespIEEE::put_TimeOutSecs, to100ms);
    EXPECT_EQ(ieee.Initialize(), kDone);
    EXPECT_EQ(ieee.WriteLine(L"*IDN?"), kDone);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(ieee.ReadLine(),
              (Refusal{ERR_IBRD, kReadingSource,
                       L"Error calling ibrd() on device 1: Error: 6 - I/O operation aborted"}));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, milliseconds(90));
    EXPECT_EQ(ieee.reply.str(), L"KESP,");
  });
}

TEST_F(GpibTransportTest, TwoObjects_HaveADeviceEachAndCloseItWhenReleased) {
  Run(Bus(), [&](IeeeClient& ieee) {
    IeeeClient other;
    other.Set(&_CKespIEEE::put_PrimaryAddress, 7);
    other.Set(&_CKespIEEE::put_SecondaryAddress, 9);
    EXPECT_EQ(ieee.Initialize(), kDone);
    EXPECT_EQ(other.Initialize(), kDone);
    EXPECT_EQ(ieee.WriteLine(L"*IDN?"), kDone);
    EXPECT_EQ(other.WriteLine(L"*IDN?"), kDone);
    EXPECT_EQ(ieee.ReadLine(), kDone);
    EXPECT_EQ(other.ReadLine(), kDone);
    EXPECT_EQ(ieee.reply.str(), kIdentity);
    EXPECT_EQ(other.reply.str(), L"KESP,GP488,SIM48807,2.0\n");
    other.object.Reset();
    EXPECT_EQ(driver_.OpenDescriptors(), 1);
    EXPECT_EQ(driver_.Calls().back(), "ibonl(0,0)");
    EXPECT_EQ(ieee.WriteLine(L"*IDN?"), kDone);
  });
}

}  // namespace
}  // namespace kesp::clients
