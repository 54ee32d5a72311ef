// Errors of the system that say what could not be done.
#pragma once

#include <stdexcept>
#include <string>
#include <system_error>

namespace kesp::simulator {

// What could not be had of the system; the text is "listen on 127.0.0.1 port 10001: the port is in use".
class CannotError : public std::runtime_error {
 public:
  CannotError(const std::string& what, const std::error_code& error);
};

// Calls `make`, and turns the error of the system into one that says what could not be done.
template <typename Make>
auto Making(const std::string& what, const Make& make) {
  try {
    return make();
  } catch (const std::system_error& error) {
    throw CannotError(what, error.code());
  }
}

}  // namespace kesp::simulator
