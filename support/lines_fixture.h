// Texts in the order in which they came: what the tests compare journals, logs and traces with.
#pragma once

#include <string>
#include <vector>

namespace kesp {

using Lines = std::vector<std::wstring>;

}  // namespace kesp
