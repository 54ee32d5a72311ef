// The names of the library's statuses and errors.
#pragma once

#include <string>

#include "KespCommObj.h"

namespace kesp::console {

// "cfrTimeout"
std::string StatusName(ECommError status);

// "ERR_INVALID_PORT"; of the general run-time errors "error 53"; of others the number in hexadecimal.
std::string ErrorName(HRESULT result);

}  // namespace kesp::console
