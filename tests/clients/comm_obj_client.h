// A communication object in the hands of a test, with whichever transport.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "KespCommObj.h"
#include "support/lines_fixture.h"
#include "tests/clients/early_bound.h"
#include "tests/clients/temporary_file.h"

namespace kesp::clients {

// The base of fixtures. Texts come back in reply_, bytes in bytes_.
class CommObjClient {
 protected:
  CommObjClient() : comm_(Create<_CKespCommObj>(__uuidof(CKespCommObj))) {}
  explicit CommObjClient(ComPtr<_CKespCommObj> object) : comm_(std::move(object)) {}

  // Each call is expected to succeed as a call and to set its result; True tells that the operation
  // succeeded.
  bool Query(const std::wstring& cmd, const std::wstring& address = {}, const std::wstring& value = {});
  bool QueryBinary(const std::wstring& cmd);
  bool Update(const std::wstring& cmd, const std::wstring& address = {}, const std::wstring& value = {});

  void ExpectStatus(ECommError status, const std::wstring& source = {}, const std::wstring& description = {});

  // The communication object's own trace, into a file of this test.
  void StartTrace();
  // The messages of the trace since the last time.
  void ExpectTrace(const Lines& expected);
  // How the trace tells a failure of a transport ("TCP", "RS-232", "IEEE") in an operation.
  static std::wstring ErrorInfo(const std::wstring& transport, const std::wstring& operation,
                                const std::wstring& source, const std::wstring& description);

  // The object's transport of that style.
  template <class Transport>
  ComPtr<Transport> Use(ECommStyle style) {
    EXPECT_EQ(WriteByReference(comm_, &_CKespCommObj::put_CommStyle, style), S_OK);
    ComPtr<Transport> transport;
    EXPECT_EQ(ReadObject(comm_, &_CKespCommObj::get_CommObject).As(&transport), S_OK);
    return transport;
  }

  // Made first: a fixture may have an apartment of its own besides.
  Apartment apartment_;
  ComPtr<_CKespCommObj> comm_;
  Text reply_;
  Value bytes_;
  TemporaryFile trace_;

 private:
  std::size_t seen_ = 0;
};

// A further object beside that of the fixture, or its own as another apartment sees it.
struct OtherCommObj : CommObjClient {
  OtherCommObj() = default;
  explicit OtherCommObj(ComPtr<_CKespCommObj> object) : CommObjClient(std::move(object)) {}
  using CommObjClient::bytes_;
  using CommObjClient::comm_;
  using CommObjClient::ExpectStatus;
  using CommObjClient::Query;
  using CommObjClient::QueryBinary;
  using CommObjClient::reply_;
  using CommObjClient::Use;
};

}  // namespace kesp::clients
