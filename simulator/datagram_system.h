// What the system does with datagrams differently on Linux and on Windows.
#pragma once

#include <asio/ip/address_v4.hpp>
#include <asio/ip/udp.hpp>
#include <optional>
#include <string_view>

namespace kesp::simulator {

// Keeps a reply that nobody takes from ending a later receive with its error, as Windows has it.
void PrepareForReplies(asio::ip::udp::socket& socket);

// One attempt to send, without waiting, from this address of the machine or from the one that the system
// chooses. asio::error::would_block when the system has no room at present.
asio::error_code SendNow(asio::ip::udp::socket& socket, std::string_view bytes,
                         const asio::ip::udp::endpoint& to, const std::optional<asio::ip::address_v4>& from);

}  // namespace kesp::simulator
