// A transport for IEEE-488 in the hands of a test.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "KespCommObj.h"
#include "tests/clients/early_bound.h"

namespace kesp::clients {

// Sources of the transport's errors.
inline constexpr wchar_t kOpeningSource[] = L"[CKespIEEE - InitializeIEEEBoard()]";
inline constexpr wchar_t kClosingSource[] = L"[CKespIEEE - Uninitialize()]";
inline constexpr wchar_t kWritingSource[] = L"[CKespIEEE - WriteLine()]";
inline constexpr wchar_t kReadingSource[] = L"[CKespIEEE - ReadLine()]";

inline const Refusal kDone{};

// Owns the object. Each call returns what a client learns of a failure, kDone when there was none; then the
// result is expected to be True.
class IeeeClient {
 public:
  // A new object; the device has address 5, and commands end with a line feed.
  IeeeClient() : IeeeClient(Create<_CKespIEEE>(__uuidof(CKespIEEE))) {}
  explicit IeeeClient(ComPtr<_CKespIEEE> transport) : object(std::move(transport)) {
    SetAddress(5);
    SetEos(L"10");
  }

  void SetAddress(short address) { EXPECT_EQ(Write(object, &_CKespIEEE::put_PrimaryAddress, address), S_OK); }
  short Address() { return Read(object, &_CKespIEEE::get_PrimaryAddress); }
  void SetEos(const std::wstring& text) { EXPECT_EQ(Write(object, &_CKespIEEE::put_EOSChar, text), S_OK); }
  // Whether EOSChar is to end reads, too.
  void SetEndsReads(bool value) {
    EXPECT_EQ(Write(object, &_CKespIEEE::put_SetEOS, value ? VARIANT_TRUE : VARIANT_FALSE), S_OK);
  }
  void SetClears(bool value) {
    EXPECT_EQ(Write(object, &_CKespIEEE::put_ClearDevice, value ? VARIANT_TRUE : VARIANT_FALSE), S_OK);
  }
  void SetTimeOut(ETimeOutSecs code) { EXPECT_EQ(Write(object, &_CKespIEEE::put_TimeOutSecs, code), S_OK); }
  ETimeOutSecs TimeOut() { return Read(object, &_CKespIEEE::get_TimeOutSecs); }

  Refusal Initialize() { return Judge(object->Initialize(Answer())); }
  Refusal Uninitialize() { return Judge(object->Uninitialize(Answer())); }
  Refusal WriteLine(const std::wstring& cmd) { return Judge(object->WriteLine(Text(cmd).get(), Answer())); }
  // What was received is in reply.
  Refusal ReadLine() { return Judge(object->ReadLine(reply.in_out(), Answer())); }

  // The reply to a command; where one of the two fails, source and description of the error.
  std::wstring Exchange(const std::wstring& cmd) {
    Refusal refusal = WriteLine(cmd);
    if (refusal == kDone) refusal = ReadLine();
    return refusal == kDone ? reply.str() : refusal.source + L" " + refusal.description;
  }
  // The same with opening and closing.
  std::wstring Converse(const std::wstring& cmd) {
    const Refusal opening = Initialize();
    const std::wstring answer =
        opening == kDone ? Exchange(cmd) : opening.source + L" " + opening.description;
    EXPECT_EQ(Uninitialize(), kDone);
    return answer;
  }

  ComPtr<_CKespIEEE> object;
  Text reply;

 private:
  // Neither True nor False before the call.
  VARIANT_BOOL* Answer() {
    answer_ = 5;
    return &answer_;
  }
  Refusal Judge(HRESULT result) {
    EXPECT_EQ(answer_, SUCCEEDED(result) ? VARIANT_TRUE : VARIANT_FALSE);
    return RefusalOf(result);
  }

  VARIANT_BOOL answer_ = VARIANT_FALSE;
};

// How the driver's error of that number is described.
inline std::wstring DriverError(const std::wstring& call, const std::wstring& number_and_message) {
  return L"Error calling " + call + L": Error: " + number_and_message;
}

}  // namespace kesp::clients
