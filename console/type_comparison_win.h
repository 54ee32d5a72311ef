// Comparing type libraries.
#pragma once

#include <oleauto.h>

#include <string>

namespace kesp::console {

// Where the two differ; empty when they describe the same.
std::string DifferenceOf(ITypeLib* one, ITypeLib* other);

// "80040154"
std::string ResultText(HRESULT result);

}  // namespace kesp::console
