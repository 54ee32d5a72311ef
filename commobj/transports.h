// How the communication object comes by its three transports.
#pragma once

#include <functional>
#include <memory>

#include "gpib/kesp_ieee.h"
#include "network/kesp_tcp.h"
#include "serial/kesp_com_port.h"

namespace kesp {

// Makes one transport each. The maker decides what else lives as long as the transport (the COM border hands
// out transports that are part of a COM object).
struct TransportFactory {
  std::function<std::shared_ptr<CKespCOMPort3>()> make_serial;
  std::function<std::shared_ptr<CKespTCP>()> make_network;
  std::function<std::shared_ptr<CKespIEEE>()> make_ieee;
};

}  // namespace kesp
