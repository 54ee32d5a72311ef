// A text for COM.
#pragma once

#include <oleauto.h>
#include <windows.h>

#include <string>

namespace kesp::bench {

// Owns a BSTR made of ASCII text.
class Text {
 public:
  explicit Text(const std::string& text)
      : text_(SysAllocString(std::wstring(text.begin(), text.end()).c_str())) {}
  ~Text() { SysFreeString(text_); }
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;

  BSTR get() const { return text_; }

 private:
  BSTR text_;
};

}  // namespace kesp::bench
