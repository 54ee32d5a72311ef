// A client that has its objects made in the system's surrogate process: surrogate_client 64|32 [GoogleTest's
// options].
//
// The width is that of the surrogate, and thus of the library, which may be another than the client's. The
// simulated GPIB driver with its built-in bus lies beside that library.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "tests/both_widths/surrogate_process.h"
#include "tests/clients/event_recorder.h"
#include "tests/clients/ieee_client.h"
#include "tests/clients/instrument_address.h"
#include "tests/clients/late_object.h"

namespace kesp::clients {
namespace {

bool wants_32_bit = false;

template <class Interface>
ComPtr<Interface> CreateOutside(REFCLSID clsid) {
  const DWORD width = wants_32_bit ? CLSCTX_ACTIVATE_32_BIT_SERVER : CLSCTX_ACTIVATE_64_BIT_SERVER;
  ComPtr<Interface> object;
  EXPECT_EQ(CoCreateInstance(clsid, nullptr, CLSCTX_LOCAL_SERVER | width, __uuidof(Interface),
                             reinterpret_cast<void**>(object.GetAddressOf())),
            S_OK);
  return object;
}

// Each case begins without a surrogate. Windows ends one that nobody uses; Wine lets it run.
class SurrogateTest : public testing::Test {
 protected:
  SurrogateTest() { KillSurrogateProcesses(); }
  ~SurrogateTest() override {
    EXPECT_EQ(GetModuleHandleW(L"KespCommObj.dll"), nullptr) << "the library is loaded in the client";
    KillSurrogateProcesses();
  }

  const Apartment apartment_;
};

TEST_F(SurrogateTest, Object_LivesInASurrogateOfThatWidth) {
  const auto comm = CreateOutside<_CKespCommObj>(__uuidof(CKespCommObj));
  ASSERT_NE(comm, nullptr);
  const auto processes = SurrogateProcesses();
  ASSERT_EQ(processes.size(), 1u);
  EXPECT_EQ(processes[0].is_32_bit, wants_32_bit);
  EXPECT_EQ(Write(comm, &_CKespCommObj::put_BinaryTimeoutms, 321), S_OK);
  EXPECT_EQ(Read(comm, &_CKespCommObj::get_BinaryTimeoutms), 321);
}

TEST_F(SurrogateTest, NetworkQuery_ReplyComesBack) {
  const auto comm = CreateOutside<_CKespCommObj>(__uuidof(CKespCommObj));
  ASSERT_NE(comm, nullptr);
  UseInstrument(comm.Get());
  const LateObject late{ComPtr<IDispatch>(comm.Get())};
  Value reply(L"");
  EXPECT_TRUE(late.Call(L"Query", {Variable(reply), Plain(Value(L"*IDN?"))}).IsTrue());
  EXPECT_EQ(reply.text(), L"KESP,7100,NET00011,1.0");
}

TEST_F(SurrogateTest, GpibQuery_GoesThroughTheDriverOfTheSurrogatesWidth) {
  IeeeClient ieee(CreateOutside<_CKespIEEE>(__uuidof(CKespIEEE)));
  ieee.Set(&_CKespIEEE::put_SetEOS, VARIANT_FALSE);
  EXPECT_EQ(ieee.Converse(L"*IDN?"), kDone);
  EXPECT_EQ(ieee.reply.str(), L"KESP,GP488,SIM48805,1.0\n");
}

TEST_F(SurrogateTest, Refusal_NumberSourceAndTextComeBack) {
  const LateObject late(CreateOutside<IDispatch>(__uuidof(CKespTCP)));
  const Outcome outcome = late.Put(L"Port", Plain(Value(0)));
  EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
  EXPECT_EQ(outcome.scode, ERR_INVALID_PORT);
  EXPECT_EQ(outcome.source, L"[CKespTCP - Port]");
  EXPECT_EQ(outcome.description, L"Invalid Port");
}

TEST_F(SurrogateTest, Detection_IsHeardAndEndedByAbort) {
  IeeeClient ieee(CreateOutside<_CKespIEEE>(__uuidof(CKespIEEE)));
  const auto recorder = EventRecorder::Make(__uuidof(__CKespIEEE));
  Connection connection(ieee.object.Get(), __uuidof(__CKespIEEE), recorder.Get());
  recorder->handlers[L"AutoDetectUpdate"] = [&](DISPPARAMS& arguments) {
    // The last argument comes first.
    if (recorder->Count(L"AutoDetectUpdate") == 2) *V_BOOLREF(&arguments.rgvarg[0]) = VARIANT_TRUE;
  };
  ieee.Set(&_CKespIEEE::put_PrimaryAddress, 9);
  EXPECT_EQ(ieee.AutoDetect(dlSCPIOnly), kDone);
  EXPECT_EQ(ieee.answer, VARIANT_FALSE);
  EXPECT_EQ(recorder->journal, (Lines{L"AutoDetectBegin()", L"AutoDetectUpdate(*IDN?,9,&False)",
                                      L"AutoDetectUpdate(*IDN?,1,&False)", L"AutoDetectEnd()"}));
}

TEST_F(SurrogateTest, Killed_CallFailsAndANewObjectCanBeMade) {
  const auto tcp = CreateOutside<_CKespTCP>(__uuidof(CKespTCP));
  ASSERT_NE(tcp, nullptr);
  EXPECT_EQ(Write(tcp, &_CKespTCP::put_Port, 4711), S_OK);
  KillSurrogateProcesses();
  short port = 0;
  EXPECT_TRUE(FAILED(tcp->get_Port(&port)));
  const auto another = CreateOutside<_CKespTCP>(__uuidof(CKespTCP));
  ASSERT_NE(another, nullptr);
  EXPECT_EQ(Write(another, &_CKespTCP::put_Port, 4712), S_OK);
  EXPECT_EQ(Read(another, &_CKespTCP::get_Port), 4712);
}

TEST_F(SurrogateTest, Dialog_IsShownByTheSurrogateAndItsAnswerComesBack) {
  const auto tcp = CreateOutside<_CKespTCP>(__uuidof(CKespTCP));
  ASSERT_NE(tcp, nullptr);
  std::atomic<bool> was_closed = false;
  std::thread user([&] { was_closed = CloseDialogOfASurrogate(); });
  VARIANT_BOOL is_changed = VARIANT_TRUE;
  EXPECT_EQ(tcp->Edit(static_cast<EEditCommFlags>(0), Text(L"").get(), 0, &is_changed), S_OK);
  user.join();
  EXPECT_TRUE(was_closed);
  EXPECT_EQ(is_changed, VARIANT_FALSE);
}

}  // namespace
}  // namespace kesp::clients

int main(int count, char** words) {
  testing::InitGoogleTest(&count, words);
  if (!kesp::clients::MayKillSurrogateProcesses()) {
    std::fputs("surrogate_client ends all surrogate processes, so it runs under Wine only\n", stderr);
    return 2;
  }
  kesp::clients::wants_32_bit = count > 1 && std::string(words[1]) == "32";
  return RUN_ALL_TESTS();
}
