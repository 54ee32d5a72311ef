// A conversation with one client, whatever is at the instrument's end.
#pragma once

#include <asio/awaitable.hpp>

namespace kesp::simulator {

class Talk {
 public:
  virtual ~Talk() = default;

  // Talks until either side ends the line; a client that is gone is a line in the log and no error.
  virtual asio::awaitable<void> Run() = 0;

  // Logs what came over a serial line and is not in the log yet. For the end, however Run came to it.
  virtual void Finish() = 0;
};

}  // namespace kesp::simulator
