// Values of any type between the library and COM: VARIANTs.
#pragma once

#include <utility>

#include "network/instruments.h"
#include "server/com_headers.h"
#include "support/binary_value.h"
#include "support/enumerations.h"
#include "support/failure.h"

namespace kesp {

// A VARIANT that is cleared at the end of its life.
class ScopedVariant {
 public:
  ScopedVariant() { VariantInit(&value_); }
  ~ScopedVariant() { VariantClear(&value_); }
  ScopedVariant(const ScopedVariant&) = delete;
  ScopedVariant& operator=(const ScopedVariant&) = delete;

  VARIANT* get() { return &value_; }
  const VARIANT* get() const { return &value_; }

 private:
  VARIANT value_;
};

// The text that an in/out VARIANT argument holds, for reads that append to it. Other contents, earlier
// replies in bytes among them, are only ever replaced, so they are not read.
BinaryValue BinaryValueOf(const VARIANT& argument);

// What a read leaves in an in/out VARIANT argument.
enum class ReplyKind { kText, kBytes };

// What the serial transport's binary read leaves there.
inline ReplyKind ReplyKindOf(EInputMode mode) {
  return mode == EInputMode::imText ? ReplyKind::kText : ReplyKind::kBytes;
}

// TypeMismatch(), with what a typed variable must be to hold such a reply.
Failure WrongVariable(ReplyKind kind);

// To be called before anything is sent: throws WrongVariable() for an argument that refers to a typed
// variable (VT_BYREF) which cannot hold the reply.
void RequireRoomFor(ReplyKind kind, const VARIANT& argument);

// Stores text as VT_BSTR, bytes as an array of VT_UI1 with lower bound 0, and leaves the argument alone when
// there is nothing to store. An argument that refers to a typed variable of the client (VT_BYREF) gets the
// value in that variable. Throws WrongVariable() when that variable cannot hold it, and error 10 when it is
// an array that is fixed or locked.
void StoreBinaryValue(const BinaryValue& value, VARIANT* argument);

// Lets `read` work on the value of an in/out argument, stores what it leaves there, and returns its result.
template <class Read>
bool ReadInto(VARIANT* argument, Read&& read) {
  BinaryValue value = BinaryValueOf(*argument);
  const bool succeeded = std::forward<Read>(read)(value);
  StoreBinaryValue(value, argument);
  return succeeded;
}

// A position or a key, from a number or a text of any automation type. Throws TypeMismatch() for anything
// else.
CInstruments::IndexOrKey IndexOrKeyOf(const VARIANT& argument);

}  // namespace kesp
