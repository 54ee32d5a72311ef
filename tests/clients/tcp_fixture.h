// A network transport pointed at the simulated instrument, and a handler of its events.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "KespCommObj.h"
#include "tests/clients/early_bound.h"
#include "tests/clients/event_recorder.h"
#include "tests/clients/instrument_address.h"

namespace kesp::clients {

class TcpFixture : public testing::Test {
 protected:
  TcpFixture() { SetTarget(tcp_.Get()); }

  bool Initialize() { return CallsTrue(tcp_, &_CKespTCP::Initialize); }
  bool Uninitialize() { return CallsTrue(tcp_, &_CKespTCP::Uninitialize); }
  HRESULT WriteLine(const std::wstring& cmd) {
    VARIANT_BOOL answer = VARIANT_FALSE;
    const HRESULT result = tcp_->WriteLine(Text(cmd).get(), &answer);
    EXPECT_EQ(answer == VARIANT_TRUE, result == S_OK);
    return result;
  }
  // The reply is in reply_.
  HRESULT ReadLine() {
    VARIANT_BOOL answer = VARIANT_FALSE;
    const HRESULT result = tcp_->ReadLine(reply_.in_out(), &answer);
    EXPECT_EQ(answer == VARIANT_TRUE, result == S_OK);
    return result;
  }
  HRESULT ReadLineBinary(long gap = 100) {
    VARIANT_BOOL answer = VARIANT_FALSE;
    const HRESULT result = tcp_->ReadLineBinary(bytes_.get(), gap, &answer);
    EXPECT_EQ(answer == VARIANT_TRUE, result == S_OK);
    return result;
  }
  // Sends a command on the open connection and reads the reply.
  std::wstring Exchange(const std::wstring& cmd) {
    EXPECT_EQ(WriteLine(cmd), S_OK);
    EXPECT_EQ(RefusalOf(ReadLine()), Refusal{});
    return reply_.str();
  }
  std::string ExchangeBytes(const std::wstring& cmd) {
    EXPECT_EQ(WriteLine(cmd), S_OK);
    EXPECT_EQ(RefusalOf(ReadLineBinary()), Refusal{});
    return BytesOf(*bytes_.get());
  }
  void SetTimeOut(short milliseconds) {
    EXPECT_EQ(Write(tcp_, &_CKespTCP::put_TimeOutmSecs, milliseconds), S_OK);
  }

  Apartment apartment_;
  ComPtr<_CKespTCP> tcp_ = Create<_CKespTCP>(__uuidof(CKespTCP));
  Text reply_;
  Value bytes_;
};

// With a recorder connected.
class TcpEventsFixture : public TcpFixture {
 protected:
  const Lines& journal() const { return recorder_->journal; }

  ComPtr<EventRecorder> recorder_ = EventRecorder::Make(__uuidof(__CKespTCP));
  Connection connection_{tcp_.Get(), __uuidof(__CKespTCP), recorder_.Get()};
};

}  // namespace kesp::clients
