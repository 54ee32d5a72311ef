// The communication object's transports, and what its operations raise where there is none.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "KespCommObj.h"
#include "tests/clients/early_bound.h"

namespace kesp::clients {
namespace {

class CommObjTest : public testing::Test {
 protected:
  HRESULT Choose(long style) { return WriteByReference(comm_, &_CKespCommObj::put_CommStyle, style); }

  // The transport that a style selects, under its own interface.
  template <class Interface>
  ComPtr<Interface> Transport(long style) {
    EXPECT_EQ(Choose(style), S_OK);
    ComPtr<Interface> transport;
    EXPECT_EQ(ReadObject(comm_, &_CKespCommObj::get_CommObject).As(&transport), S_OK);
    return transport;
  }

  Apartment apartment_;
  ComPtr<_CKespCommObj> comm_ = Create<_CKespCommObj>(__uuidof(CKespCommObj));
};

TEST_F(CommObjTest, CommObject_IsTheTransportOfTheStyleAndStaysTheSame) {
  const auto port = Transport<_CKespCOMPort3>(csRS232);
  const auto tcp = Transport<_CKespTCP>(csTCPIP);
  const auto ieee = Transport<_CKespIEEE>(csIEEE);
  EXPECT_TRUE(IsSameObject(Transport<_CKespCOMPort3>(csRS232).Get(), port.Get()));
  EXPECT_TRUE(IsSameObject(Transport<_CKespTCP>(csTCPIP).Get(), tcp.Get()));
  EXPECT_TRUE(IsSameObject(Transport<_CKespIEEE>(csIEEE).Get(), ieee.Get()));
}

TEST_F(CommObjTest, CommObject_WithoutStyle_IsEmpty) {
  EXPECT_EQ(Choose(csNone), S_OK);
  IDispatch* transport = comm_.Get();
  EXPECT_EQ(comm_->get_CommObject(&transport), S_OK);
  EXPECT_EQ(transport, nullptr);
}

TEST_F(CommObjTest, TraceSettings_ReachTheTransportsThatTheClientSees) {
  EXPECT_EQ(Write(comm_, &_CKespCommObj::put_DebugFilename, L"C:\\t race.txt"), S_OK);
  EXPECT_EQ(Write(comm_, &_CKespCommObj::put_Debugging, VARIANT_TRUE), S_OK);
  const auto tcp = Transport<_CKespTCP>(csTCPIP);
  EXPECT_EQ(Read(tcp, &_CKespTCP::get_LogFilename), L"C:\\t race.txt");
  EXPECT_EQ(Read(tcp, &_CKespTCP::get_CreateLogFile), VARIANT_TRUE);
}

TEST_F(CommObjTest, OperationsWithoutTransport_RaiseUnderTheirNamesAndLeaveTheirArguments) {
  EXPECT_EQ(Choose(csNone), S_OK);
  Text reply(L"kept");
  Value bytes(5);
  const Text cmd(L"t");
  VARIANT_BOOL answer = VARIANT_TRUE;
  struct Operation {
    const wchar_t* source;
    std::function<HRESULT()> call;
  };
  const Operation operations[] = {
      {L"Query()", [&] { return comm_->Query(reply.in_out(), cmd.get(), nullptr, nullptr, &answer); }},
      {L"QueryBinary()",
       [&] { return comm_->QueryBinary(bytes.get(), cmd.get(), nullptr, nullptr, &answer); }},
      {L"Update()", [&] { return comm_->Update(cmd.get(), nullptr, nullptr, &answer); }},
      {L"DetectInstrument()",
       [&] { return comm_->DetectInstrument(reply.in_out(), dlAllCommands, &answer); }},
      {L"Update()",
       [&] {
         answer = VARIANT_FALSE;
         return comm_->SetInputMode(imBinary);
       }},
  };
  for (const auto& [source, call] : operations) {
    answer = VARIANT_TRUE;
    EXPECT_EQ(RefusalOf(call()),
              (Refusal{ERR_NO_COMM_OBJECT, std::wstring(L"[CKespCommObj - ") + source + L"]",
                       L"Communications object not initialized"}));
    EXPECT_EQ(answer, VARIANT_FALSE);
  }
  EXPECT_EQ(reply.str(), L"kept");
  EXPECT_EQ(V_I4(bytes.get()), 5);
}

}  // namespace
}  // namespace kesp::clients
