// Text between the library (std::wstring) and COM (BSTR).
#pragma once

#include <new>
#include <string>
#include <utility>

#include "server/com_headers.h"

namespace kesp {

// Owns one BSTR. Embedded NULs are kept.
class Bstr {
 public:
  explicit Bstr(const std::wstring& text)
      : text_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {
    if (text_ == nullptr) throw std::bad_alloc();
  }
  ~Bstr() { SysFreeString(text_); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;

  BSTR get() const { return text_; }
  BSTR Detach() { return std::exchange(text_, nullptr); }

 private:
  BSTR text_;
};

// The text of a BSTR; a null one is the empty text.
inline std::wstring TextOf(BSTR text) {
  return text ? std::wstring(text, SysStringLen(text)) : std::wstring();
}

// An in/out text argument: read at the beginning, written back at the end, also when the call throws. What
// the argument held before is freed.
class InOutText {
 public:
  explicit InOutText(BSTR* argument) : argument_(argument), value_(TextOf(*argument)), original_(value_) {}
  ~InOutText() {
    if (value_ == original_) return;
    BSTR text = SysAllocStringLen(value_.data(), static_cast<UINT>(value_.size()));
    // Without memory for the new text the argument keeps the old one, which is at least a valid text.
    if (text == nullptr) return;
    SysFreeString(*argument_);
    *argument_ = text;
  }
  InOutText(const InOutText&) = delete;
  InOutText& operator=(const InOutText&) = delete;

  std::wstring& value() { return value_; }

 private:
  BSTR* argument_;
  std::wstring value_;
  std::wstring original_;
};

// Lets `read` work on the text of an in/out argument, as InOutText does, and returns its result.
template <class Read>
bool ReadInto(BSTR* argument, Read&& read) {
  InOutText text(argument);
  return std::forward<Read>(read)(text.value());
}

}  // namespace kesp
