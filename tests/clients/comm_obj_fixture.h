// A communication object that talks to the simulated instrument.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "KespCommObj.h"
#include "tests/clients/early_bound.h"
#include "tests/clients/instrument_address.h"

namespace kesp::clients {

class CommObjFixture : public testing::Test {
 protected:
  // A query; the reply is in reply_.
  bool Query(const std::wstring& cmd) {
    VARIANT_BOOL answer = VARIANT_FALSE;
    EXPECT_EQ(comm_->Query(reply_.in_out(), Text(cmd).get(), Text(L"").get(), nullptr, &answer), S_OK);
    return answer == VARIANT_TRUE;
  }
  bool QueryBinary(const std::wstring& cmd) {
    VARIANT_BOOL answer = VARIANT_FALSE;
    EXPECT_EQ(comm_->QueryBinary(bytes_.get(), Text(cmd).get(), nullptr, nullptr, &answer), S_OK);
    return answer == VARIANT_TRUE;
  }
  bool Update(const std::wstring& cmd) {
    VARIANT_BOOL answer = VARIANT_FALSE;
    EXPECT_EQ(comm_->Update(Text(cmd).get(), nullptr, nullptr, &answer), S_OK);
    return answer == VARIANT_TRUE;
  }

  void ExpectStatus(ECommError status, const std::wstring& source = {},
                    const std::wstring& description = {}) {
    EXPECT_EQ(Read(comm_, &_CKespCommObj::get_CommError), status);
    EXPECT_EQ(Read(comm_, &_CKespCommObj::get_CommErrorSource), source);
    EXPECT_EQ(Read(comm_, &_CKespCommObj::get_CommErrorDescr), description);
  }

  Apartment apartment_;
  ComPtr<_CKespCommObj> comm_ = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  ComPtr<_CKespTCP> tcp_ = UseInstrument(comm_.Get());
  Text reply_;
  Value bytes_;
};

}  // namespace kesp::clients
