// A transport for IEEE-488 in the hands of a test.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>

#include "KespCommObj.h"
#include "tests/clients/early_bound.h"

namespace kesp::clients {

// Sources of the transport's errors.
inline constexpr wchar_t kOpeningSource[] = L"[CKespIEEE - InitializeIEEEBoard()]";
inline constexpr wchar_t kWritingSource[] = L"[CKespIEEE - WriteLine()]";
inline constexpr wchar_t kReadingSource[] = L"[CKespIEEE - ReadLine()]";

inline const Refusal kDone{};

// Owns the object. Each operation returns what a client learns of a failure, kDone when there was none.
class IeeeClient {
 public:
  // The device has address 5, and commands end with a line feed.
  explicit IeeeClient(ComPtr<_CKespIEEE> transport = Create<_CKespIEEE>(__uuidof(CKespIEEE)))
      : object(std::move(transport)) {
    Set(&_CKespIEEE::put_PrimaryAddress, 5);
    Set(&_CKespIEEE::put_EOSChar, L"10");
  }

  template <class Value>
  void Set(HRESULT (STDMETHODCALLTYPE _CKespIEEE::*setter)(Value),
           std::conditional_t<std::is_same_v<Value, BSTR>, const wchar_t*, Value> value) {
    EXPECT_EQ(Write(object, setter, value), S_OK);
  }

  // These are expected to answer with True unless they fail.
  Refusal Initialize() { return Judge(object->Initialize(Answer())); }
  Refusal Uninitialize() { return Judge(object->Uninitialize(Answer())); }
  Refusal WriteLine(const std::wstring& cmd) { return Judge(object->WriteLine(Text(cmd).get(), Answer())); }
  // What was received is in reply.
  Refusal ReadLine() { return Judge(object->ReadLine(reply.in_out(), Answer())); }

  // The device's answer is in reply, and whether there was one in answer.
  Refusal AutoDetect(EDetectLevel level = dlAllCommands, ESearchOption option = soFindFirst) {
    return RefusalOf(object->AutoDetect(reply.in_out(), level, option, Answer()));
  }

  // Opens the device, sends the command, reads the reply and closes; ends at the first call that fails.
  Refusal Converse(const std::wstring& cmd) {
    Refusal refusal = Initialize();
    if (refusal == kDone) refusal = WriteLine(cmd);
    if (refusal == kDone) refusal = ReadLine();
    return refusal == kDone ? Uninitialize() : refusal;
  }

  ComPtr<_CKespIEEE> object;
  Text reply{L"before"};
  VARIANT_BOOL answer = VARIANT_FALSE;

 private:
  // Neither True nor False before the call.
  VARIANT_BOOL* Answer() {
    answer = 5;
    return &answer;
  }
  Refusal Judge(HRESULT result) {
    EXPECT_EQ(answer, SUCCEEDED(result) ? VARIANT_TRUE : VARIANT_FALSE);
    return RefusalOf(result);
  }
};

}  // namespace kesp::clients
