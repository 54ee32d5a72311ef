// What the samples share: texts for COM, errors with the library's own words, and the outcome of a query.
//
// Needs KespCommObj.h (include/, made from KespCommObj.idl) and links ole32, oleaut32 and uuid.
#pragma once

#include <KespCommObj.h>
#include <wrl/client.h>

#include <cstdio>
#include <stdexcept>
#include <string>

using Microsoft::WRL::ComPtr;

// A text for COM, freed at the end of its life.
class Text {
 public:
  Text() = default;
  explicit Text(const std::wstring& text) : bstr_(SysAllocString(text.c_str())) {}
  ~Text() { SysFreeString(bstr_); }
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;

  BSTR get() const { return bstr_; }
  BSTR* out() { return &bstr_; }
  const wchar_t* c_str() const { return bstr_ != nullptr ? bstr_ : L""; }

 private:
  BSTR bstr_ = nullptr;
};

// Turns a failed call into an exception with the library's own description.
inline void Check(HRESULT result) {
  if (SUCCEEDED(result)) return;
  Text description;
  if (ComPtr<IErrorInfo> info; GetErrorInfo(0, &info) == S_OK) info->GetDescription(description.out());
  const std::wstring text = description.c_str();
  throw std::runtime_error("error:       " + std::to_string(result) +
                           "\ndescription: " + std::string(text.begin(), text.end()));
}

// An argument of the command line, or what stands for it.
inline std::wstring Argument(int count, wchar_t** arguments, int position, const wchar_t* otherwise) {
  return count > position ? arguments[position] : otherwise;
}

// Runs `program` in this thread's apartment. Gives the exit code: 2 after an error.
template <typename Program>
int Run(Program&& program) {
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 2;
  int code = 2;
  try {
    code = program();
  } catch (const std::exception& error) {
    std::printf("%s\n", error.what());
  }
  CoUninitialize();
  return code;
}
