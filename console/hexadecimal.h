// Bytes as people read them.
#pragma once

#include <string>
#include <string_view>

namespace kesp::console {

// "4B 45 53 50"; "(nothing)" where there are none.
std::string HexadecimalOf(std::string_view bytes);

}  // namespace kesp::console
