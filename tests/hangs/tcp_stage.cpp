// The calls of a network transport and of a communication object that uses it.
#include "tests/hangs/tcp_stage.h"

namespace kesp::hangs {

using clients::Text;
using clients::Write;
using clients::WriteByReference;

TcpStage::TcpStage(const std::string& address, int port)
    : peer(address, port), comm(clients::Create<_CKespCommObj>(__uuidof(CKespCommObj))) {
  EXPECT_EQ(WriteByReference(comm, &_CKespCommObj::put_CommStyle, csTCPIP), S_OK);
  EXPECT_EQ(clients::ReadObject(comm, &_CKespCommObj::get_CommObject).As(&tcp), S_OK);
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

Outcome TcpStage::Query(const std::string& cmd) {
  const Text text(TextOfBytes(cmd));
  return WithStatus(Reading([&](BSTR* reply, VARIANT_BOOL* answer) {
                      return comm->Query(reply, text.get(), nullptr, nullptr, answer);
                    }),
                    comm);
}

Outcome TcpStage::QueryBinary(const std::string& cmd) {
  const Text text(TextOfBytes(cmd));
  return WithStatus(ReadingBytes([&](VARIANT* reply, VARIANT_BOOL* answer) {
                      return comm->QueryBinary(reply, text.get(), nullptr, nullptr, answer);
                    }),
                    comm);
}

Outcome TcpStage::Update(const std::string& cmd) {
  const Text text(TextOfBytes(cmd));
  return WithStatus(
      Answering([&](VARIANT_BOOL* answer) { return comm->Update(text.get(), nullptr, nullptr, answer); }),
      comm);
}

Outcome TcpStage::DetectInstrument() {
  return Reading(
      [&](BSTR* reply, VARIANT_BOOL* answer) { return comm->DetectInstrument(reply, dlSCPIOnly, answer); });
}

Outcome TcpStage::Exchange(const std::string& cmd) {
  const Outcome sent = WriteLine(cmd);
  return sent.result == "True" ? ReadLine() : sent;
}

}  // namespace kesp::hangs
