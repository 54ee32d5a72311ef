// Reading the command line.
#include "tests/variants/request.h"

#include <cstring>
#include <stdexcept>

namespace kesp::variants {

Request ReadRequest(int count, char** words) {
  if (count < 3) throw std::runtime_error("random_arguments HOST PORT [options]");
  Request request;
  request.device = {.host = std::wstring(words[1], words[1] + std::strlen(words[1])),
                    .port = static_cast<short>(std::stoi(words[2]))};
  for (int i = 3; i < count; ++i) {
    const std::string option = words[i];
    if (option == "--dialogs") {
      request.with_dialogs = true;
      continue;
    }
    if (++i == count) throw std::runtime_error(option + " takes a value");
    if (option == "--list")
      request.list = words[i];
    else if (option == "--seed")
      request.seed = std::stoull(words[i]);
    else if (option == "--from")
      request.from = std::stoull(words[i]);
    else if (option == "--calls")
      request.calls = std::stoul(words[i]);
    else if (option == "--com")
      request.com = static_cast<short>(std::stoi(words[i]));
    else if (option == "--only")
      request.only = std::stoull(words[i]);
    else
      throw std::runtime_error("unknown option " + option);
  }
  return request;
}

}  // namespace kesp::variants
