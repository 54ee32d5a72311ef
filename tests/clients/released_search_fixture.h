// A search for instruments during which a handler lets the last reference to the transport go.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "KespCommObj.h"
#include "tests/clients/event_recorder.h"

namespace kesp::clients {

// The parameter is the event at which it is let go.
class ReleasedSearchFixture : public testing::TestWithParam<const wchar_t*> {
 protected:
  // True, with the answer in `result`, everything told to the end and nothing kept.
  void ExpectFoundAllTheSame(Text& result) {
    const ComPtr<EventRecorder> recorder = EventRecorder::Make(__uuidof(__CKespTCP));
    Connection(tcp_.Get(), __uuidof(__CKespTCP), recorder.Get()).Abandon();
    recorder->handlers[GetParam()] = [this](DISPPARAMS&) { tcp_.Reset(); };
    VARIANT_BOOL found = VARIANT_FALSE;
    EXPECT_EQ(tcp_.Get()->AutoDetect(result.in_out(), dlAllCommands, &found), S_OK);
    EXPECT_EQ(tcp_, nullptr) << "nothing let go";
    EXPECT_EQ(found, VARIANT_TRUE);
    EXPECT_EQ(recorder->Count(L"AutoDetectEnd"), 1U);
    EXPECT_EQ(recorder->references(), 1U);
  }

  Apartment apartment_;
  ComPtr<_CKespTCP> tcp_ = Create<_CKespTCP>(__uuidof(CKespTCP));
};

// The event as the name of the test.
inline std::string EventName(const testing::TestParamInfo<const wchar_t*>& info) {
  const std::wstring name = info.param;
  return {name.begin(), name.end()};
}

}  // namespace kesp::clients
