// What the program needs of the system and finds differently on Linux and on Windows.
#pragma once

#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/signal_set.hpp>
#include <ctime>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "simulator/carrier.h"
#include "simulator/line_rule.h"

namespace kesp::simulator {

// The arguments without the program's name, in UTF-8. To be called first: it also sees to it that a reader
// of the log that goes away does not take the program along.
std::vector<std::string> BeginProgram(int argc, char** argv);

// Has Ctrl-C, and the other ways in which the system asks a program to end, reported.
void AddEndingSignals(asio::signal_set& signals);

// The number of the sockets' error for an address that is not this machine's.
extern const int kAddressNotAvailable;

std::tm LocalTime(std::time_t seconds);

// Prepares an open socket so that its port is nobody else's while it listens, and can be had again at once
// when it has ended.
void PrepareToListen(asio::ip::tcp::acceptor& acceptor, asio::error_code& error);

// Opens the serial line of that name. On Linux it is made, with a link of that name to its client's end, and
// the link is gone with the carrier; on Windows it is a COM port, set as the rule says (9600,N,8,1 where that
// says nothing). Throws std::system_error.
std::unique_ptr<Carrier> OpenSerialLine(asio::io_context& io, const std::string& name,
                                        const std::optional<LineRule>& line);

}  // namespace kesp::simulator
