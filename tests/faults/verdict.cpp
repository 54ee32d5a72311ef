// Judging results.
#include "tests/faults/verdict.h"

#include <oleauto.h>

#include <cstdio>

#include "tests/clients/automation.h"

namespace kesp::faults {

std::string Hexadecimal(HRESULT result) {
  char text[16];
  std::snprintf(text, sizeof text, "%08lX", static_cast<unsigned long>(result));
  return text;
}

bool Verdict::Succeeded(HRESULT result, const char* step) {
  if (SUCCEEDED(result)) return true;
  clients::ComPtr<IErrorInfo> info;
  if (GetErrorInfo(0, &info) != S_OK && result != E_OUTOFMEMORY) {
    complaints_.push_back(std::string(step) + " failed without error information: " + Hexadecimal(result));
  }
  return SucceededBarely(result, step);
}

bool Verdict::SucceededBarely(HRESULT result, const char* step) {
  if (SUCCEEDED(result)) return true;
  all_succeeded_ = false;
  if (again_ != kNever) complaints_.push_back(std::string(step) + " fails: " + Hexadecimal(result));
  return false;
}

}  // namespace kesp::faults
