// Judging results.
#include "tests/faults/verdict.h"

#include <cstdio>

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
  ExpectUndisturbed(false, std::string(step) + " fails: " + Hexadecimal(result));
  return false;
}

bool Verdict::Answered(HRESULT result, const VARIANT_BOOL& answer, const char* step) {
  if (!Succeeded(result, step)) return false;
  Expect(answer == VARIANT_TRUE || answer == VARIANT_FALSE, std::string(step) + " left its answer unset");
  ExpectUndisturbed(answer == VARIANT_TRUE, std::string(step) + " answers False");
  return answer == VARIANT_TRUE;
}

}  // namespace kesp::faults
