// A network transport pointed at the simulated instrument, and a handler of its events.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "KespCommObj.h"
#include "tests/clients/early_bound.h"
#include "tests/clients/event_recorder.h"
#include "tests/clients/instrument_address.h"

namespace kesp::clients {

// The reply to *IDN? of the instrument.
inline constexpr wchar_t kIdentity[] = L"KESP,TORTURE,SIM00666,1.0";

class TcpFixture : public testing::Test {
 protected:
  TcpFixture() { SetTarget(tcp_.Get()); }

  bool Initialize() { return CallsTrue(tcp_, &_CKespTCP::Initialize); }
  bool Uninitialize() { return CallsTrue(tcp_, &_CKespTCP::Uninitialize); }
  HRESULT WriteLine(const std::wstring& cmd) {
    return Judge([&](VARIANT_BOOL* answer) { return tcp_->WriteLine(Text(cmd).get(), answer); });
  }
  // The reply is in reply_.
  HRESULT ReadLine() {
    return Judge([&](VARIANT_BOOL* answer) { return tcp_->ReadLine(reply_.in_out(), answer); });
  }
  // The reply is in bytes_.
  HRESULT ReadLineBinary(long gap = 100) {
    return Judge([&](VARIANT_BOOL* answer) { return tcp_->ReadLineBinary(bytes_.get(), gap, answer); });
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
  // The result of a call. Its answer is at first neither True nor False, so that it is seen to be set.
  HRESULT Judge(const std::function<HRESULT(VARIANT_BOOL*)>& call) {
    VARIANT_BOOL answer = 5;
    const HRESULT result = call(&answer);
    EXPECT_EQ(answer, result == S_OK ? VARIANT_TRUE : VARIANT_FALSE);
    return result;
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
  void On(const std::wstring& event, const std::function<void()>& action) {
    recorder_->handlers[event] = [action](DISPPARAMS&) { action(); };
  }

  ComPtr<EventRecorder> recorder_ = EventRecorder::Make(__uuidof(__CKespTCP));
  Connection connection_{tcp_.Get(), __uuidof(__CKespTCP), recorder_.Get()};
};

}  // namespace kesp::clients
