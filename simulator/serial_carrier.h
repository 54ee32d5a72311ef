// A serial line of Linux as the carrier of a talk.
#pragma once

#include <asio/any_io_executor.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <string>

#include "simulator/pseudo_terminal.h"
#include "simulator/stream_carrier.h"

namespace kesp::simulator {

// Owns its pseudo-terminal. The client's coming and going is not seen. A client that does not read stops what
// is sent once the system's buffers, some kilobytes, are full.
class SerialCarrier : public StreamCarrier<asio::posix::stream_descriptor> {
 public:
  // link: the name of the line, as in PseudoTerminal.
  SerialCarrier(const asio::any_io_executor& executor, const std::string& link);

  std::string Opening() const override;
  void End(Ending ending) override;
  std::optional<LineSettings> Line() const override;
  std::string Rest() override;

 private:
  PseudoTerminal terminal_;
};

}  // namespace kesp::simulator
