// Addresses for the tests, from the environment and from the system.
#include "tests/clients/instrument_address.h"

#include <gtest/gtest.h>
#include <winsock2.h>

#include <cstdlib>

namespace kesp::clients {

std::wstring InstrumentHost() {
  const char* host = std::getenv("KESP_INSTRUMENT_HOST");
  EXPECT_NE(host, nullptr) << "no instrument: run this with tools/with-instrument";
  const std::string text = host ? host : "";
  return {text.begin(), text.end()};
}

short InstrumentPort() {
  const char* port = std::getenv("KESP_INSTRUMENT_PORT");
  EXPECT_NE(port, nullptr) << "no instrument: run this with tools/with-instrument";
  return static_cast<short>(port ? std::atoi(port) : 0);
}

RefusingPort::RefusingPort() {
  WSADATA data;
  WSAStartup(MAKEWORD(2, 2), &data);
  socket_ = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
  // Bound, so that nobody else takes it, and not listening.
  for (short port = 21000; port < 21500; ++port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<u_short>(port));
    if (bind(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) {
      number_ = port;
      break;
    }
  }
  EXPECT_NE(number_, 0);
}

RefusingPort::~RefusingPort() {
  closesocket(socket_);
  WSACleanup();
}

void SetTarget(_CKespTCP* tcp) {
  EXPECT_EQ(tcp->put_IPAddress(Text(InstrumentHost()).get()), S_OK);
  EXPECT_EQ(tcp->put_Port(InstrumentPort()), S_OK);
}

ComPtr<_CKespTCP> UseInstrument(_CKespCommObj* comm) {
  ECommStyle style = csTCPIP;
  EXPECT_EQ(comm->put_CommStyle(&style), S_OK);
  ComPtr<IDispatch> transport;
  EXPECT_EQ(comm->get_CommObject(&transport), S_OK);
  ComPtr<_CKespTCP> tcp;
  EXPECT_EQ(transport.As(&tcp), S_OK);
  SetTarget(tcp.Get());
  return tcp;
}

}  // namespace kesp::clients
