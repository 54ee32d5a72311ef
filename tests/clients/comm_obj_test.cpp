// The communication object's transports and trace settings, through its dual interface.
#include <gtest/gtest.h>

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

TEST_F(CommObjTest, SerialTransport_Allows300To57600AndHas57600) {
  const auto port = Transport<_CKespCOMPort3>(csRS232);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_MinBaudRate), br300);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_MaxBaudRate), br57600);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_BaudRate), br57600);
}

TEST_F(CommObjTest, TransportSettings_StayWhenTheStyleChanges) {
  EXPECT_EQ(Write(Transport<_CKespTCP>(csTCPIP), &_CKespTCP::put_Port, 5025), S_OK);
  Choose(csNone);
  EXPECT_EQ(Read(Transport<_CKespTCP>(csTCPIP), &_CKespTCP::get_Port), 5025);
}

TEST_F(CommObjTest, TraceSettings_ReachAllTransports) {
  EXPECT_EQ(Write(comm_, &_CKespCommObj::put_DebugFilename, std::wstring(L"C:\\t race.txt")), S_OK);
  for (const VARIANT_BOOL on : {VARIANT_TRUE, VARIANT_FALSE}) {
    EXPECT_EQ(Write(comm_, &_CKespCommObj::put_Debugging, on), S_OK);
    const auto port = Transport<_CKespCOMPort3>(csRS232);
    const auto tcp = Transport<_CKespTCP>(csTCPIP);
    const auto ieee = Transport<_CKespIEEE>(csIEEE);
    EXPECT_EQ(Read(port, &_CKespCOMPort3::get_LogFilename), L"C:\\t race.txt");
    EXPECT_EQ(Read(tcp, &_CKespTCP::get_LogFilename), L"C:\\t race.txt");
    EXPECT_EQ(Read(ieee, &_CKespIEEE::get_LogFilename), L"C:\\t race.txt");
    EXPECT_EQ(Read(port, &_CKespCOMPort3::get_CreateLogFile), on);
    EXPECT_EQ(Read(tcp, &_CKespTCP::get_CreateLogFile), on);
    EXPECT_EQ(Read(ieee, &_CKespIEEE::get_CreateLogFile), on);
  }
}

TEST_F(CommObjTest, PlainSettings_AreKept) {
  EXPECT_EQ(Write(comm_, &_CKespCommObj::put_AutoClose, VARIANT_FALSE), S_OK);
  EXPECT_EQ(Write(comm_, &_CKespCommObj::put_BinaryTimeoutms, -1), S_OK);
  EXPECT_EQ(Read(comm_, &_CKespCommObj::get_AutoClose), VARIANT_FALSE);
  EXPECT_EQ(Read(comm_, &_CKespCommObj::get_BinaryTimeoutms), -1);
}

TEST_F(CommObjTest, Released_TransportHeldByTheClientStaysUsable) {
  const auto tcp = Transport<_CKespTCP>(csTCPIP);
  comm_.Reset();
  EXPECT_EQ(Write(tcp, &_CKespTCP::put_Port, 5025), S_OK);
  EXPECT_EQ(Read(tcp, &_CKespTCP::get_Port), 5025);
  EXPECT_EQ(RefusalOf(Write(tcp, &_CKespTCP::put_Port, 0)).source, L"[CKespTCP - Port]");
}

// What every operation raises where the style has none.
TEST_F(CommObjTest, Operations_WithoutTransport_RaiseUnderTheirOwnNames) {
  Text reply(L"kept");
  Value bytes(5);
  const Text cmd(L"t");
  VARIANT_BOOL answer = VARIANT_TRUE;
  const auto query = [&] { return comm_->Query(reply.in_out(), cmd.get(), nullptr, nullptr, &answer); };
  const auto query_binary = [&] {
    return comm_->QueryBinary(bytes.get(), cmd.get(), nullptr, nullptr, &answer);
  };
  const auto update = [&] { return comm_->Update(cmd.get(), nullptr, nullptr, &answer); };
  Choose(csNone);
  const wchar_t* const no_transport = L"Communications object not initialized";
  EXPECT_EQ(RefusalOf(query()), (Refusal{ERR_NO_COMM_OBJECT, L"[CKespCommObj - Query()]", no_transport}));
  EXPECT_EQ(RefusalOf(query_binary()),
            (Refusal{ERR_NO_COMM_OBJECT, L"[CKespCommObj - QueryBinary()]", no_transport}));
  EXPECT_EQ(RefusalOf(update()), (Refusal{ERR_NO_COMM_OBJECT, L"[CKespCommObj - Update()]", no_transport}));
  EXPECT_EQ(answer, VARIANT_FALSE);
  Choose(csIEEE);
  answer = VARIANT_TRUE;
  EXPECT_EQ(RefusalOf(query_binary()),
            (Refusal{ERR_COMM_STYLE_NOT_SUPPORTED, L"[CKespCommObj - QueryBinary()]",
                     L"The selected communication style is currently not supported"}));
  EXPECT_EQ(answer, VARIANT_FALSE);
  EXPECT_EQ(reply.str(), L"kept");
  EXPECT_EQ(V_I4(bytes.get()), 5);
}

}  // namespace
}  // namespace kesp::clients
