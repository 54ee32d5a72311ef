// Values that settings refuse: the number, IErrorInfo's texts, and that nothing changed.
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <initializer_list>

#include "KespCommObj.h"
#include "tests/clients/early_bound.h"

namespace kesp::clients {
namespace {

using Shorts = std::initializer_list<short>;

class RefusalsTest : public testing::Test {
 protected:
  Apartment apartment_;
};

TEST_F(RefusalsTest, CommStyle_OutsideItsRange) {
  const auto comm = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  for (const long style : {3L, -2L, LONG_MAX, LONG_MIN}) {
    EXPECT_EQ(RefusalOf(WriteByReference(comm, &_CKespCommObj::put_CommStyle, style)),
              (Refusal{ERR_COMM_STYLE_NOT_SUPPORTED, L"[CKespCommObj - CommStyle]",
                       L"The selected communication style is currently not supported"}))
        << style;
    EXPECT_EQ(Read(comm, &_CKespCommObj::get_CommStyle), csRS232);
  }
  for (const long style : {-1L, 1L, 2L, 0L}) {
    EXPECT_EQ(WriteByReference(comm, &_CKespCommObj::put_CommStyle, style), S_OK);
    EXPECT_EQ(Read(comm, &_CKespCommObj::get_CommStyle), style);
  }
}

TEST_F(RefusalsTest, SerialPort_OutsideItsRange) {
  const auto port = Create<_CKespCOMPort3>(__uuidof(CKespCOMPort3));
  for (const short number : Shorts{0, 257, -1, SHRT_MAX, SHRT_MIN}) {
    EXPECT_EQ(RefusalOf(Write(port, &_CKespCOMPort3::put_Port, number)),
              (Refusal{COMPORT3_ERR_INVALID_COM_PORT, L"CKespCOMPort3 - Port", L"Invalid COM port."}));
    EXPECT_EQ(Read(port, &_CKespCOMPort3::get_Port), 1);
  }
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_Port, 256), S_OK);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_Port), 256);
}

TEST_F(RefusalsTest, SerialTimeOut_Negative) {
  const auto port = Create<_CKespCOMPort3>(__uuidof(CKespCOMPort3));
  EXPECT_EQ(RefusalOf(Write(port, &_CKespCOMPort3::put_TimeOut, -1)),
            (Refusal{ERR_INVALID_TIMEOUT, L"[CKespCOMPort3 - TimeOut]", L"Invalid timeout setting."}));
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_TimeOut), 3000);
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_TimeOut, 0), S_OK);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_TimeOut), 0);
}

TEST_F(RefusalsTest, BaudRate_OutsideTheAllowedRates) {
  const auto port = Create<_CKespCOMPort3>(__uuidof(CKespCOMPort3));
  const Refusal refused{ERR_BAUD_RATE_NOT_SUPPORTED, L"CKespCOMPort3 - BaudRate",
                        L"Baud rate not supported."};
  EXPECT_EQ(RefusalOf(Write(port, &_CKespCOMPort3::put_BaudRate, br9600)), refused);
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_MaxBaudRate, br57600), S_OK);
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_MinBaudRate, br300), S_OK);
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_BaudRate, br9600), S_OK);
  EXPECT_EQ(RefusalOf(Write(port, &_CKespCOMPort3::put_BaudRate, br150)), refused);
  EXPECT_EQ(RefusalOf(Write(port, &_CKespCOMPort3::put_BaudRate, br115200)), refused);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_BaudRate), br9600);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::GetSettings), L"9600,N,8,1");
}

TEST_F(RefusalsTest, BaudRateBounds_OutsideAllRatesOrCrossed) {
  const auto port = Create<_CKespCOMPort3>(__uuidof(CKespCOMPort3));
  Write(port, &_CKespCOMPort3::put_MaxBaudRate, br9600);
  Write(port, &_CKespCOMPort3::put_MinBaudRate, br300);
  // Both bounds report under the name of the upper one.
  const std::wstring source = L"CKespCOMPort3 - MaxBaudRate";
  const Refusal unknown{ERR_BAUD_RATE_NOT_SUPPORTED, source, L"Baud rate not supported."};
  for (const int rate : {14, -2}) {
    const auto value = static_cast<EKespBaudRate3>(rate);
    EXPECT_EQ(RefusalOf(Write(port, &_CKespCOMPort3::put_MinBaudRate, value)), unknown);
    EXPECT_EQ(RefusalOf(Write(port, &_CKespCOMPort3::put_MaxBaudRate, value)), unknown);
  }
  EXPECT_EQ(RefusalOf(Write(port, &_CKespCOMPort3::put_MinBaudRate, br19200)),
            (Refusal{ERR_INVALID_BAUD_RATE, source,
                     L"Cannot set minimum baud rate higher than maximum baud rate."}));
  EXPECT_EQ(RefusalOf(Write(port, &_CKespCOMPort3::put_MaxBaudRate, br150)),
            (Refusal{ERR_INVALID_BAUD_RATE, source,
                     L"Cannot set maximum baud rate lower than minimum baud rate."}));
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_MinBaudRate), br300);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_MaxBaudRate), br9600);
}

TEST_F(RefusalsTest, NetworkPort_BelowOne) {
  const auto tcp = Create<_CKespTCP>(__uuidof(CKespTCP));
  EXPECT_EQ(Write(tcp, &_CKespTCP::put_Port, SHRT_MAX), S_OK);
  for (const short number : Shorts{0, -1, SHRT_MIN}) {
    EXPECT_EQ(RefusalOf(Write(tcp, &_CKespTCP::put_Port, number)),
              (Refusal{ERR_INVALID_PORT, L"[CKespTCP - Port]", L"Invalid Port"}));
    EXPECT_EQ(Read(tcp, &_CKespTCP::get_Port), SHRT_MAX);
  }
}

TEST_F(RefusalsTest, NetworkAddress_Empty) {
  const auto tcp = Create<_CKespTCP>(__uuidof(CKespTCP));
  const Refusal refused{ERR_INVALID_IP_ADDRESS, L"[CKespTCP - IPAddress]", L"Invalid IP Address"};
  EXPECT_EQ(RefusalOf(Write(tcp, &_CKespTCP::put_IPAddress, L"")), refused);
  EXPECT_EQ(RefusalOf(tcp->put_IPAddress(nullptr)), refused);
  EXPECT_EQ(Read(tcp, &_CKespTCP::get_IPAddress), L"0.0.0.0");
  EXPECT_EQ(Write(tcp, &_CKespTCP::put_IPAddress, L"any text"), S_OK);
}

TEST_F(RefusalsTest, IeeeAddresses_OutsideTheirRanges) {
  const auto ieee = Create<_CKespIEEE>(__uuidof(CKespIEEE));
  for (const short address : Shorts{0, 31, -1}) {
    EXPECT_EQ(
        RefusalOf(Write(ieee, &_CKespIEEE::put_PrimaryAddress, address)),
        (Refusal{ERR_INVALID_PRIMARY_ADDRESS, L"[CKespIEEE - PrimaryAddress]", L"Invalid primary address."}));
    EXPECT_EQ(Read(ieee, &_CKespIEEE::get_PrimaryAddress), 1);
  }
  for (const short address : Shorts{31, -1}) {
    EXPECT_EQ(RefusalOf(Write(ieee, &_CKespIEEE::put_SecondaryAddress, address)),
              (Refusal{ERR_INVALID_SECONDARY_ADDRESS, L"[CKespIEEE - SecondaryAddress]",
                       L"Invalid secondary address."}));
  }
  for (const short board : Shorts{1, -1}) {
    EXPECT_EQ(RefusalOf(Write(ieee, &_CKespIEEE::put_BoardIndex, board)),
              (Refusal{ERR_INVALID_BOARD_INDEX, L"[CKespIEEE - BoardIndex]", L"Invalid board index."}));
  }
  EXPECT_EQ(Write(ieee, &_CKespIEEE::put_PrimaryAddress, 30), S_OK);
  EXPECT_EQ(Write(ieee, &_CKespIEEE::put_SecondaryAddress, 30), S_OK);
  EXPECT_EQ(Write(ieee, &_CKespIEEE::put_SecondaryAddress, 0), S_OK);
  EXPECT_EQ(Write(ieee, &_CKespIEEE::put_BoardIndex, 0), S_OK);
}

TEST_F(RefusalsTest, NullOutPointers_AreRefusedWithoutErrorInformation) {
  const auto comm = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  const auto tcp = Create<_CKespTCP>(__uuidof(CKespTCP));
  const auto port = Create<_CKespCOMPort3>(__uuidof(CKespCOMPort3));
  const auto instruments = Create<_CInstruments>(__uuidof(CInstruments));
  VARIANT_BOOL yes = VARIANT_TRUE;
  Text text(L"kept");
  const Text cmd(L"t");
  const Value index(1);
  const std::function<HRESULT()> calls[] = {
      [&] { return comm->get_CommStyle(nullptr); },
      [&] { return comm->put_CommStyle(nullptr); },
      [&] { return comm->GetKey(nullptr); },
      [&] { return comm->get_CommObject(nullptr); },
      [&] { return comm->Query(nullptr, cmd.get(), nullptr, nullptr, &yes); },
      [&] { return comm->Query(text.in_out(), cmd.get(), nullptr, nullptr, nullptr); },
      [&] { return comm->QueryBinary(nullptr, cmd.get(), nullptr, nullptr, &yes); },
      [&] { return comm->Update(cmd.get(), nullptr, nullptr, nullptr); },
      [&] { return comm->Edit(EEditCommFlags{}, nullptr, 0, nullptr); },
      [&] { return tcp->get_EOSChar(nullptr); },
      [&] { return tcp->get_Devices(nullptr); },
      [&] { return tcp->Initialize(nullptr); },
      [&] { return tcp->ReadLine(nullptr, &yes); },
      [&] { return tcp->ReadLineBinary(nullptr, 100, &yes); },
      [&] { return tcp->Edit(EEditCommFlags{}, nullptr, 0, nullptr); },
      [&] { return port->get_SmartSwitch(nullptr); },
      [&] { return port->put_Parity(nullptr); },
      [&] { return port->BaudRateName(br9600, nullptr); },
      [&] { return port->Edit(EEditCommFlags{}, nullptr, 0, nullptr); },
      [&] { return instruments->Item(*index.get(), nullptr); },
      [&] { return instruments->get_NewEnum(nullptr); },
  };
  int number = 0;
  for (const auto& call : calls) {
    SetErrorInfo(0, nullptr);
    // An earlier refusal's error information must not be taken for this one's.
    tcp->put_Port(0);
    EXPECT_EQ(RefusalOf(call()), (Refusal{E_POINTER, L"", L""})) << number;
    ++number;
  }
  EXPECT_EQ(text.str(), L"kept");
}

// Clients write 1 as well as -1 for true.
TEST_F(RefusalsTest, Booleans_AnyNumberButZeroIsTrue) {
  const auto comm = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  for (const VARIANT_BOOL value : {VARIANT_BOOL{1}, VARIANT_BOOL{-1}, VARIANT_BOOL{256}}) {
    EXPECT_EQ(comm->put_CRBeforeCommand(VARIANT_FALSE), S_OK);
    EXPECT_EQ(comm->put_CRBeforeCommand(value), S_OK);
    EXPECT_EQ(Read(comm, &_CKespCommObj::get_CRBeforeCommand), VARIANT_TRUE) << value;
  }
}

TEST_F(RefusalsTest, EnumerationsStoredUnchecked_TakeAnyNumber) {
  const auto port = Create<_CKespCOMPort3>(__uuidof(CKespCOMPort3));
  EXPECT_EQ(WriteByReference(port, &_CKespCOMPort3::put_DataBits, 77), S_OK);
  EXPECT_EQ(WriteByReference(port, &_CKespCOMPort3::put_StopBits, -3), S_OK);
  EXPECT_EQ(WriteByReference(port, &_CKespCOMPort3::put_Parity, PARITY_MARK), S_OK);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_DataBits), 77);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_StopBits), -3);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::GetSettings), L"<unknown>,M,8,1");
}

TEST_F(RefusalsTest, ControllerStyle_SetsItsPreset) {
  const auto port = Create<_CKespCOMPort3>(__uuidof(CKespCOMPort3));
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_ControllerStyle, CS_PRECIDIA), S_OK);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_TimeOut), 250);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_StripCRLF), VARIANT_FALSE);
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_ControllerStyle, CS_OMEGA), S_OK);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::GetSettings), L"9600,E,7,1");
}

TEST_F(RefusalsTest, SmartSwitchStyle_SetsTheNumberOfPorts) {
  const auto smart_switch =
      ReadObject(Create<_CKespCOMPort3>(__uuidof(CKespCOMPort3)), &_CKespCOMPort3::get_SmartSwitch);
  for (const auto& [style, ports] : {std::pair{ssBB4port, 4}, {ssBB8port, 8}, {ssBB6port, 6}}) {
    EXPECT_EQ(Write(smart_switch, &_CKespSmartSwitch3::put_Style, style), S_OK);
    EXPECT_EQ(Read(smart_switch, &_CKespSmartSwitch3::get_NumPorts), ports);
  }
}

}  // namespace
}  // namespace kesp::clients
