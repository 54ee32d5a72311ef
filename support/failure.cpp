// The library's exception type and the run-time failures with fixed numbers.
#include "support/failure.h"

#include <new>
#include <utility>

namespace kesp {

namespace {

constexpr std::int32_t kOutOfMemory = 7;

std::string Ascii(const std::wstring& text) {
  std::string ascii;
  ascii.reserve(text.size());
  for (wchar_t c : text) ascii.push_back(c < 0x80 ? static_cast<char>(c) : '?');
  return ascii;
}

Failure RuntimeFailure(std::int32_t number, const wchar_t* description) {
  return {number, L"KespCommObj", description};
}

}  // namespace

Failure::Failure(std::int32_t number, std::wstring source, std::wstring description)
    : number_(number),
      source_(std::move(source)),
      description_(std::move(description)),
      what_(Ascii(description_)) {}

std::wstring NumberAndDescription(const Failure& failure) {
  return std::to_wstring(failure.number()) + L" - " + failure.description();
}

Failure InvalidCall() {
  return RuntimeFailure(5, L"Invalid procedure call or argument");
}
Failure Overflow() {
  return RuntimeFailure(6, L"Overflow");
}
Failure OutOfMemory() {
  return RuntimeFailure(kOutOfMemory, L"Out of memory");
}
Failure OutOfRange() {
  return RuntimeFailure(9, L"Subscript out of range");
}
Failure TypeMismatch() {
  return RuntimeFailure(13, L"Type mismatch");
}
Failure KeyAlreadyInUse() {
  return RuntimeFailure(457, L"This key is already associated with an element of this collection");
}

namespace {

// Throws std::bad_alloc where there is no memory for the texts.
Failure DescribedFailure() {
  try {
    throw;
  } catch (const Failure& failure) {
    return failure;
  } catch (const std::bad_alloc&) {
    return OutOfMemory();
  } catch (const std::exception& error) {
    const std::string text = error.what();
    return {51, L"KespCommObj", L"Internal error (" + std::wstring(text.begin(), text.end()) + L")"};
  } catch (...) {
    return RuntimeFailure(51, L"Internal error");
  }
}

}  // namespace

Failure CurrentFailure() noexcept {
  try {
    return DescribedFailure();
  } catch (...) {
    return {kOutOfMemory, {}, {}};
  }
}

}  // namespace kesp
