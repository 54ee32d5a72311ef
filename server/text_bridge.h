// Text between the library (std::wstring) and COM (BSTR).
#pragma once

#include <new>
#include <string>
#include <utility>

#include "server/com_headers.h"
#include "support/attempt.h"

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

  // Replaces the text of an in/out argument.
  void MoveTo(BSTR* argument) {
    SysFreeString(*argument);
    *argument = Detach();
  }

 private:
  BSTR text_;
};

// The text of a BSTR; a null one is the empty text.
inline std::wstring TextOf(BSTR text) {
  return text ? std::wstring(text, SysStringLen(text)) : std::wstring();
}

// Replaces the text of an in/out argument. Throws std::bad_alloc, and leaves the argument, when there is no
// memory for it.
inline void StoreText(const std::wstring& text, BSTR* argument) {
  Bstr(text).MoveTo(argument);
}

// Lets `read` work on the text of an in/out argument, stores what it leaves there, also when it throws, and
// returns its result. Throws std::bad_alloc when there is no memory for the text: the argument then keeps the
// old one, which must not pass for what was read.
template <class Read>
bool ReadInto(BSTR* argument, Read&& read) {
  const std::wstring before = TextOf(*argument);
  std::wstring text = before;
  bool succeeded = false;
  try {
    succeeded = std::forward<Read>(read)(text);
  } catch (...) {
    // What the read raised counts, also when there is no memory for the part that had come.
    if (text != before) Try([&] { return StoreText(text, argument), true; });
    throw;
  }
  if (text != before) StoreText(text, argument);
  return succeeded;
}

}  // namespace kesp
