// The calls of a network transport.
#include "tests/hangs/tcp_stage.h"

namespace kesp::hangs {

using clients::Text;
using clients::Write;

TcpStage::TcpStage(const std::string& address, int port) : Stage(csTCPIP), peer(address, port) {
  PointAt(peer.address());
  EXPECT_EQ(Write(tcp, &_CKespTCP::put_Port, peer.port()), S_OK);
  EXPECT_EQ(Write(tcp, &_CKespTCP::put_TimeOutmSecs, kTcpTimeOut), S_OK);
  EXPECT_EQ(Write(comm, &_CKespCommObj::put_BinaryTimeoutms, kQuietGap), S_OK);
}

void TcpStage::PointAt(const std::string& address) {
  EXPECT_EQ(Write(tcp, &_CKespTCP::put_IPAddress, TextOfBytes(address)), S_OK);
}

void TcpStage::EndRepliesByEos(bool by_eos) {
  EXPECT_EQ(Write(tcp, &_CKespTCP::put_TerminateOnEOS, by_eos ? VARIANT_TRUE : VARIANT_FALSE), S_OK);
}

Outcome TcpStage::Initialize() {
  return Answering([&](VARIANT_BOOL* answer) { return tcp->Initialize(answer); });
}

Outcome TcpStage::Uninitialize() {
  return Answering([&](VARIANT_BOOL* answer) { return tcp->Uninitialize(answer); });
}

Outcome TcpStage::WriteLine(const std::string& cmd) {
  const Text text(TextOfBytes(cmd));
  return Answering([&](VARIANT_BOOL* answer) { return tcp->WriteLine(text.get(), answer); });
}

Outcome TcpStage::ReadLine() {
  return Reading([&](BSTR* reply, VARIANT_BOOL* answer) { return tcp->ReadLine(reply, answer); });
}

Outcome TcpStage::ReadLineBinary(long gap) {
  return ReadingBytes(
      [&](VARIANT* reply, VARIANT_BOOL* answer) { return tcp->ReadLineBinary(reply, gap, answer); });
}

Outcome TcpStage::AutoDetect() {
  return Reading(
      [&](BSTR* reply, VARIANT_BOOL* answer) { return tcp->AutoDetect(reply, dlSCPIOnly, answer); });
}

}  // namespace kesp::hangs
