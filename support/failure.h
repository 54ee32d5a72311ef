// The one exception type of the library: a failure that a client is to see, with number, source and text.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace kesp {

// A failed operation. Thrown by every room, caught by the communication object (which turns it into a
// status) and by the COM border (which turns it into an error for the client).
//
// number       one of support/error_numbers.h, an error number of a control (such as 8005), or a run-time
//              number from below.
// source       which class and member failed, for example "[CKespTCP - Initialize()]".
// description  what went wrong, in English.
class Failure : public std::exception {
 public:
  Failure(std::int32_t number, std::wstring source, std::wstring description);

  std::int32_t number() const noexcept { return number_; }
  const std::wstring& source() const noexcept { return source_; }
  const std::wstring& description() const noexcept { return description_; }

  // The description in ASCII (other characters as "?"), for test output and debuggers.
  const char* what() const noexcept override { return what_.c_str(); }

 private:
  std::int32_t number_;
  std::wstring source_;
  std::wstring description_;
  std::string what_;
};

// "10061 - Connection is forcefully rejected", as messages and log lines quote a failure.
std::wstring NumberAndDescription(const Failure& failure);

// Run-time failures that automation clients know by these numbers (the numbers of Visual Basic's own
// run-time errors), with the source "KespCommObj".
Failure InvalidCall();      // 5, "Invalid procedure call or argument"
Failure Overflow();         // 6, "Overflow"
Failure OutOfMemory();      // 7, "Out of memory"
Failure OutOfRange();       // 9, "Subscript out of range"
Failure TypeMismatch();     // 13, "Type mismatch"
Failure KeyAlreadyInUse();  // 457, "This key is already associated with an element of this collection"

// The exception being handled, as a Failure: itself when it is one, OutOfMemory() for std::bad_alloc, and
// otherwise number 51 ("Internal error") with the exception's own text. Where there is no memory for that,
// number 7 without texts, so that whoever catches can put things in order. Call it inside a catch block only.
Failure CurrentFailure() noexcept;

}  // namespace kesp
