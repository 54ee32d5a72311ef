// A communication object in the hands of a test: its operations, status and trace.
#include "tests/clients/comm_obj_client.h"

namespace kesp::clients {
namespace {

// Neither True nor False, so that a result which was not set shows.
constexpr VARIANT_BOOL kUnset = 5;

bool Answered(HRESULT result, VARIANT_BOOL answer) {
  EXPECT_EQ(result, S_OK);
  EXPECT_TRUE(answer == VARIANT_TRUE || answer == VARIANT_FALSE) << answer;
  return answer == VARIANT_TRUE;
}

}  // namespace

bool CommObjClient::Query(const std::wstring& cmd, const std::wstring& address, const std::wstring& value) {
  VARIANT_BOOL answer = kUnset;
  const HRESULT result =
      comm_->Query(reply_.in_out(), Text(cmd).get(), Text(address).get(), Text(value).get(), &answer);
  return Answered(result, answer);
}

bool CommObjClient::QueryBinary(const std::wstring& cmd) {
  VARIANT_BOOL answer = kUnset;
  const HRESULT result = comm_->QueryBinary(bytes_.get(), Text(cmd).get(), nullptr, nullptr, &answer);
  return Answered(result, answer);
}

bool CommObjClient::Update(const std::wstring& cmd, const std::wstring& address, const std::wstring& value) {
  VARIANT_BOOL answer = kUnset;
  const HRESULT result = comm_->Update(Text(cmd).get(), Text(address).get(), Text(value).get(), &answer);
  return Answered(result, answer);
}

void CommObjClient::ExpectStatus(ECommError status, const std::wstring& source,
                                 const std::wstring& description) {
  EXPECT_EQ(Read(comm_, &_CKespCommObj::get_CommError), status);
  EXPECT_EQ(Read(comm_, &_CKespCommObj::get_CommErrorSource), source);
  EXPECT_EQ(Read(comm_, &_CKespCommObj::get_CommErrorDescr), description);
}

void CommObjClient::StartTrace() {
  EXPECT_EQ(Write(comm_, &_CKespCommObj::put_DebugFilename, trace_.path()), S_OK);
  EXPECT_EQ(Write(comm_, &_CKespCommObj::put_Debugging, VARIANT_TRUE), S_OK);
}

void CommObjClient::ExpectTrace(const Lines& expected) {
  const Lines all = trace_.Messages();
  EXPECT_EQ(Lines(all.begin() + static_cast<std::ptrdiff_t>(seen_), all.end()), expected);
  seen_ = all.size();
}

std::wstring CommObjClient::ErrorInfo(const std::wstring& transport, const std::wstring& operation,
                                      const std::wstring& source, const std::wstring& description) {
  return transport + L": ** " + operation + L" Error info: Source- " + source + L"  Description- " +
         description + L" **";
}

}  // namespace kesp::clients
